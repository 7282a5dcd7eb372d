#include <cerrno>
#include <cstring>

#include "base/assertion.h"
#include "dbfiles/blockread.h"
#include "dbfiles/dbaccess.h"

namespace statecut {

namespace {

constexpr std::uint32_t kMaxCount = 2147483647;  // results are signed 32-bit

void countRead(ProcObj* proc) {
  if (proc->stats == nullptr) return;
  proc->stats->reads =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(proc->stats->reads) + 1);
}

}  // namespace

BlockRead readBlock(Stream* fp, std::uint32_t rba, std::uint32_t count, void* buffer,
                    ProcObj* proc) {
  STATECUT_ASSERT(fp != nullptr, "fp != ((void *)0)", kDbaccess, "readFile");
  STATECUT_ASSERT(buffer != nullptr, "buffer != ((void *)0)", kDbaccess, "readFile");
  STATECUT_ASSERT(!streamError(fp), "ferror(fp) == 0", kDbaccess, "readFile");
  if (proc == nullptr) return {-1, 0};
  countRead(proc);
  if (count > kMaxCount) return {-1, 0};

  char text[kDbaccessTextSize];
  if (streamSeek(fp, rba) != 0) {
    const int error = errno;
    // An RBA above 2147483647 is shown negative; that is meant.
    logFormatted(text, proc, {kDbaccess, __LINE__}, kError, "DB Seek Error", kReasonRead,
                 "rba=%d, %s\n", static_cast<std::int32_t>(rba), std::strerror(error));
    return {-1, 0};
  }
  const std::size_t got = streamRead(fp, buffer, count);
  const int error = errno;
  if (got < count) reportShortRead(fp, count, got, error, proc, {kDbaccess, __LINE__}, text);
  // A short read answers the requested count; that is meant, callers read whole blocks.
  return {static_cast<std::int32_t>(count), got};
}

std::int32_t readFile(Stream* fp, std::uint32_t rba, std::uint32_t count, void* buffer,
                      ProcObj* proc) {
  return readBlock(fp, rba, count, buffer, proc).result;
}

std::int32_t writeFile(Stream* fp, std::uint32_t count, const void* buffer, ProcObj* proc) {
  if (fp == nullptr || buffer == nullptr || proc == nullptr || streamError(fp)) return -1;
  const std::size_t written = streamWrite(fp, buffer, count);
  if (written < count) {
    char text[kDbaccessTextSize];
    logFormatted(text, proc, {kDbaccess, __LINE__}, kError, "DB Write Error", kReasonWrite,
                 "Requested bytes: %d, Actual bytes written: %d\n",
                 static_cast<std::int32_t>(count), static_cast<std::int32_t>(written));
  }
  return static_cast<std::int32_t>(written);
}

Stream* openWriteFile(ProcObj* proc, const char* path) {
  if (proc == nullptr) return nullptr;
  Stream* const stream = openPath(path, "wb");
  if (stream == nullptr) {
    char text[kDbaccessTextSize];
    logFormatted(text, proc, {kDbaccess, __LINE__}, kError, "Error", kReasonOpen,
                 "Could not open out file: %s\n", textOf(path));
  }
  return stream;
}

}  // namespace statecut
