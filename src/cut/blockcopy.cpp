#include "cut/blockcopy.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "base/procobj.h"
#include "cut/guards.h"
#include "cut/workstate.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"

namespace statecut {

namespace {

using CopyBuffer = std::array<unsigned char, 4096>;

// On standard output, not in the log. This is meant.
std::int32_t copyFailed(const char* what, std::uint32_t rba, std::int32_t bytes) {
  std::printf("Error during %s file in copyEntryPoint\n", what);
  std::printf("rba = %d, bytes = %d\n", static_cast<std::int32_t>(rba), bytes);
  return -1;
}

// Blocks that move without being read count as reads all the same.
void countReads(std::uint32_t blocks) {
  if (pProcObj->stats == nullptr) return;
  std::int32_t& reads = pProcObj->stats->reads;
  reads = static_cast<std::int32_t>(static_cast<std::uint32_t>(reads) + blocks);
}

// What is left of a copy of which the first `moved` bytes are done: from the block that holds the
// first byte to copy, of which `skip` bytes are done.
struct Rest {
  std::uint32_t rba;
  std::int32_t left;
  std::uint32_t skip;
};

Rest restOf(std::uint32_t rba, std::uint32_t bytes, std::uint32_t moved) {
  const std::uint32_t blocks = moved < bytes ? moved / kBlockBytes : 0;
  countReads(moved < bytes ? blocks : (bytes - 1) / kBlockBytes + 1);
  if (moved >= bytes) return {rba, 0, 0};
  const std::uint32_t done = blocks * kBlockBytes;
  return {rba + done, static_cast<std::int32_t>(bytes - done), moved - done};
}

// Moves what it can of a table that the source has in full. The bytes moved.
std::uint32_t moveTable(Stream* from, std::uint32_t rba, std::uint32_t bytes) {
  if (newRefDb == nullptr || from == nullptr || inError(from)) return 0;
  if (!inOnePiece(rba, bytes, streamSize(from))) return 0;
  std::uint32_t moved = 0;
  std::size_t part = 1;
  while (part != 0) {
    part = appendFile(newRefDb, from, std::uint64_t{rba} + moved, bytes - moved, pProcObj);
    moved += static_cast<std::uint32_t>(part);
  }
  return moved;
}

}  // namespace

std::int32_t copyEntryPoint(std::uint32_t rba, std::uint32_t bytes, std::uint32_t moved) {
  if (static_cast<std::int32_t>(bytes) <= 0) return 0;
  Rest rest = restOf(rba, bytes, moved);
  if (rest.left == 0) return 0;
  CopyBuffer buffer{};
  Stream* from = pProcObj->files->range;
  while (rest.left > 0) {
    if (inError(from)) return -1;
    const std::int32_t got = readFile(from, rest.rba, kBlockBytes, buffer.data(), pProcObj);
    if (inError(from)) return -1;  // ends the cut, which logs it
    if (got <= 0) return copyFailed("read", rest.rba, rest.left);
    const std::int32_t chunk = std::min(rest.left, got);
    const auto size = static_cast<std::uint32_t>(chunk);
    if (writeFile(newRangeDb, size - rest.skip, buffer.data() + rest.skip, pProcObj) == -1) {
      return copyFailed("write", rest.rba, rest.left);
    }
    rest = {rest.rba + size, rest.left - chunk, 0};
  }
  return 0;
}

// The results of the reads and writes are not looked at. This is meant; the cut tests both streams
// for errors behind its steps.
std::int32_t copyPartition(std::uint32_t rba, std::uint32_t bytes) {
  if (static_cast<std::int32_t>(bytes) <= 0) return 0;
  Stream* from = pProcObj->files->reference;
  const std::uint32_t moved = moveTable(from, rba, bytes);
  totalBytes += moved;
  Rest rest = restOf(rba, bytes, moved);
  CopyBuffer buffer{};
  while (rest.left > 0 && !inError(from)) {
    readFile(from, rest.rba, kBlockBytes, buffer.data(), pProcObj);
    const std::int32_t chunk = std::min(rest.left, static_cast<std::int32_t>(kBlockBytes));
    const auto size = static_cast<std::uint32_t>(chunk);
    writeFile(newRefDb, size - rest.skip, buffer.data() + rest.skip, pProcObj);
    totalBytes += size - rest.skip;
    rest = {rest.rba + size, rest.left - chunk, 0};
  }
  return 0;
}

}  // namespace statecut
