#include "cut/blockcopy.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "cut/guards.h"
#include "cut/workstate.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"
#include "log/procobj.h"

namespace statecut {

namespace {

using CopyBuffer = std::array<unsigned char, 4096>;

// On standard output, not in the log. This is meant.
std::int32_t copyFailed(const char* what, std::uint32_t rba, std::int32_t bytes) {
  std::printf("Error during %s file in copyEntryPoint\n", what);
  std::printf("rba = %d, bytes = %d\n", static_cast<std::int32_t>(rba), bytes);
  return -1;
}

}  // namespace

std::int32_t copyEntryPoint(std::uint32_t rba, std::uint32_t bytes) {
  CopyBuffer buffer{};
  Stream* from = pProcObj->files->range;
  auto left = static_cast<std::int32_t>(bytes);
  while (left > 0) {
    if (inError(from)) return -1;
    const std::int32_t got = readFile(from, rba, kBlockBytes, buffer.data(), pProcObj);
    if (inError(from)) return -1;  // ends the cut, which logs it
    if (got <= 0) return copyFailed("read", rba, left);
    const std::int32_t chunk = std::min(left, got);
    const auto size = static_cast<std::uint32_t>(chunk);
    if (writeFile(newRangeDb, size, buffer.data(), pProcObj) == -1) {
      return copyFailed("write", rba, left);
    }
    left -= chunk;
    rba += size;
  }
  return 0;
}

// The results of the reads and writes are not looked at. This is meant; the cut tests both streams
// for errors behind its steps.
std::int32_t copyPartition(std::uint32_t rba, std::uint32_t bytes) {
  CopyBuffer buffer{};
  Stream* from = pProcObj->files->reference;
  auto left = static_cast<std::int32_t>(bytes);
  while (left > 0 && !inError(from)) {
    readFile(from, rba, kBlockBytes, buffer.data(), pProcObj);
    const std::int32_t chunk = std::min(left, static_cast<std::int32_t>(kBlockBytes));
    const auto size = static_cast<std::uint32_t>(chunk);
    writeFile(newRefDb, size, buffer.data(), pProcObj);
    left -= chunk;
    rba += size;
    totalBytes += size;
  }
  return 0;
}

}  // namespace statecut
