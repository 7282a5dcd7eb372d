// Bytes that a cut reads and writes, by its system calls.

#include <algorithm>

#include "info/info.h"
#include "processes/calls.h"
#include "processes/cuts.h"

namespace statecut::bench {

namespace {

// Control records, tables of the reference file that a cut uses, partitions that it keeps.
std::uint64_t neededBytes(const Setup& setup, const Cut& cut) {
  constexpr std::uint64_t refRecord = 844;
  const std::string bytes = readFile(setup.ref());
  const info::FileInfo file = info::describe(
      setup.ref(), {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  std::uint64_t sum = refRecord;
  for (const info::TableInfo& table : file.tables)
    if (table.name != "Street RBOs" && table.name != "Firm RBOs" && table.name != "SCFs")
      sum += table.bytes;
  return sum + bytesOf({cut.outputs[1]});  // which begins with the range control record
}

std::uint64_t sumOf(const std::vector<Move>& moves, bool written, const Paths& paths) {
  std::uint64_t sum = 0;
  for (const Move& move : moves)
    if (move.write == written && std::find(paths.begin(), paths.end(), move.path) != paths.end())
      sum += move.bytes;
  return sum;
}

// What a traced cut moves against what it must.
template <typename Moved, typename Needed>
RowSamples compare(const Setup& setup, Moved moved, Needed needed) {
  const Cut cut = prepareCut(setup, setup.work / "traced", {"TX", "OK"});
  cut.remove();
  const std::vector<Move> moves = movesOf(setup, cut.command);
  const auto ours = static_cast<double>(moved(cut, moves));
  const auto peer = static_cast<double>(needed(cut));
  cut.remove();
  return {{{"", "bytes", {ours}, {peer}}}, {}};
}

}  // namespace

RowSamples bytesRead(const Setup& setup) {
  return compare(
      setup,
      [&](const Cut&, const std::vector<Move>& moves) {
        return sumOf(moves, false, {setup.ref(), setup.rng()});
      },
      [&](const Cut& cut) { return neededBytes(setup, cut); });
}

RowSamples bytesWritten(const Setup& setup) {
  const auto written = [](const Cut& cut) {
    return Paths{cut.outputs[0], cut.outputs[1], cut.log};
  };
  return compare(
      setup,
      [&](const Cut& cut, const std::vector<Move>& moves) {
        return sumOf(moves, true, written(cut));
      },
      [&](const Cut& cut) { return bytesOf(written(cut)); });
}

}  // namespace statecut::bench
