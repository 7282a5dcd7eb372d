// Cuts against a bare program that moves the same bytes by the same steps and does nothing else.

#include <algorithm>
#include <stdexcept>

#include "processes/calls.h"
#include "processes/contest.h"
#include "programs/plan.h"

namespace statecut::bench {

namespace {

// A mapping covers whole pages, of which the last may reach beyond the end of the file.
std::uint64_t bytesThere(const Move& move) {
  if (!move.mapped) return move.bytes;
  const std::uint64_t size = bytesOf({move.path});
  return move.at < size ? std::min(move.bytes, size - move.at) : 0;
}

// What a cut moves between these files, in its order.
std::string planOf(const std::vector<Move>& moves, const Paths& files) {
  std::string plan;
  for (const Move& move : moves) {
    const auto file = std::find(files.begin(), files.end(), move.path);
    if (file == files.end()) continue;
    const PlannedMove step{static_cast<std::uint32_t>(file - files.begin()), move.write ? 1U : 0U,
                           move.at, bytesThere(move)};
    if (step.bytes != 0) plan.append(reinterpret_cast<const char*>(&step), sizeof step);
  }
  return plan;
}

Side replayOf(const Setup& setup, const Cut& cut) {
  const Path folder = setup.work / "replay";
  std::filesystem::create_directories(folder);
  const Paths reads = {setup.ref(), setup.rng()};
  Paths files = reads;
  for (const Path& path : {cut.outputs[0], cut.outputs[1], cut.log}) files.push_back(path);
  cut.remove();
  const std::vector<Move> moves = movesOf(setup, cut.command);
  const Path plan = folder / "plan";
  writeFile(plan, planOf(moves, files));
  cut.remove();
  Side side{{.words = {setup.program("bench_replay"), plan}}, reads, {}};
  for (std::size_t i = 0; i < files.size(); ++i) {
    const Path file = i < reads.size() ? files[i] : folder / files[i].filename();
    side.command.words.push_back(file);
    if (i >= reads.size()) side.writes.push_back(file);
  }
  return side;
}

void addFloor(const Setup& setup, const States& states, RowSamples& samples) {
  const Paths finished = finishedCut(setup, "finished", states);
  const Side ours = sideOf(setup, checkedCut(setup, states, finished));
  const Side peer = replayOf(setup, prepareCut(setup, setup.work / "cut", states));
  runWell(peer.command);
  for (std::size_t i = 0; i < finished.size(); ++i)
    if (bytesOf({peer.writes[i]}) != bytesOf({finished[i]}))
      throw std::runtime_error("a replayed cut writes another size");
  settle(peer.writes);
  Figure cpu = contest(setup, ours, peer, bytesOf(finished)).figures.back();
  cpu.name = joined(states) + ", CPU";
  samples.figures.push_back(cpu);
  removeFiles(finished);
}

}  // namespace

RowSamples cutFloor(const Setup& setup) {
  RowSamples samples;
  addFloor(setup, {"TX", "OK"}, samples);
  addFloor(setup, {"DE"}, samples);
  return samples;
}

}  // namespace statecut::bench
