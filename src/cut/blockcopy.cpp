#include "cut/blockcopy.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "cut/openfiles.h"
#include "cut/workstate.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"

namespace statecut {

namespace {

using CopyBuffer = std::array<unsigned char, 4096>;

// Deliberate: on standard output, not in the log; who runs a cut looks there.
std::int32_t copyFailed(const char* what, std::uint32_t rba, std::int32_t bytes) {
  std::printf("Error during %s file in copyEntryPoint\n", what);
  std::printf("rba = %d, bytes = %d\n", static_cast<std::int32_t>(rba), bytes);
  return -1;
}

// What is left for a block copier of a copy of which the first `moved` bytes are done: from the
// block that holds the first byte to copy, of which `skip` bytes are done.
struct Rest {
  std::uint32_t rba;
  std::int32_t left;
  std::uint32_t skip;
};

// Blocks that moved without being read count as reads all the same.
Rest restOf(const ProcObj* proc, std::uint32_t rba, std::uint32_t bytes, std::uint32_t moved) {
  if (moved >= bytes) {
    tally(proc, &Statistics::reads, (bytes - 1) / kBlockBytes + 1);
    return {rba, 0, 0};
  }
  const std::uint32_t blocks = moved / kBlockBytes;
  tally(proc, &Statistics::reads, blocks);
  const std::uint32_t done = blocks * kBlockBytes;
  return {rba + done, static_cast<std::int32_t>(bytes - done), moved - done};
}

}  // namespace

std::uint64_t moveAtOnce(const CopyPath& path, std::uint64_t offset, std::uint64_t bytes,
                         Pages pages) {
  if (path.from == nullptr || path.to == nullptr || inError(path.from) || inError(path.to)) {
    return 0;
  }
  return appendFile(path.to, path.from, offset, bytes, pages, path.proc);
}

std::int32_t copyRest(const CopyPath& path, std::uint32_t rba, std::uint32_t bytes,
                      std::uint32_t moved) {
  if (static_cast<std::int32_t>(bytes) <= 0) return 0;
  Rest rest = restOf(path.proc, rba, bytes, moved);
  if (rest.left == 0) return 0;
  CopyBuffer buffer{};
  while (rest.left > 0) {
    if (inError(path.from)) return -1;
    const std::int32_t got = readFile(path.from, rest.rba, kBlockBytes, buffer.data(), path.proc);
    if (inError(path.from)) return -1;  // ends the cut, which logs it
    if (got <= 0) return copyFailed("read", rest.rba, rest.left);
    const std::int32_t chunk = std::min(rest.left, got);
    const auto size = static_cast<std::uint32_t>(chunk);
    if (writeFile(path.to, size - rest.skip, buffer.data() + rest.skip, path.proc) == -1) {
      return copyFailed("write", rest.rba, rest.left);
    }
    rest = {rest.rba + size, rest.left - chunk, 0};
  }
  return 0;
}

std::int32_t copyEntryPoint(std::uint32_t rba, std::uint32_t bytes) {
  return copyRest({pProcObj->files->range, newRangeDb, pProcObj}, rba, bytes, 0);
}

// Deliberate: the results of the reads and writes are not looked at, so that a failing run copies
// what it always copied; the cut looks at both streams behind its steps.
std::int32_t copyPartition(std::uint32_t rba, std::uint32_t bytes) {
  if (static_cast<std::int32_t>(bytes) <= 0) return 0;
  const CopyPath path{pProcObj->files->reference, newRefDb, pProcObj};
  std::uint32_t moved = 0;
  if (path.from != nullptr && inOnePiece(rba, bytes, streamSize(path.from))) {
    std::uint64_t part = 1;
    while (part != 0) {
      part = moveAtOnce(path, std::uint64_t{rba} + moved, bytes - moved, Pages::kAny);
      moved += static_cast<std::uint32_t>(part);
    }
  }
  Rest rest = restOf(path.proc, rba, bytes, moved);
  CopyBuffer buffer{};
  while (rest.left > 0 && !inError(path.from)) {
    readFile(path.from, rest.rba, kBlockBytes, buffer.data(), path.proc);
    const std::int32_t chunk = std::min(rest.left, static_cast<std::int32_t>(kBlockBytes));
    const auto size = static_cast<std::uint32_t>(chunk);
    writeFile(path.to, size - rest.skip, buffer.data() + rest.skip, path.proc);
    rest = {rest.rba + size, rest.left - chunk, 0};
  }
  totalBytes += bytes - static_cast<std::uint32_t>(rest.left) + rest.skip;
  return 0;
}

}  // namespace statecut
