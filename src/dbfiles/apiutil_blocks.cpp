#include <cerrno>

#include "dbfiles/apiutil.h"
#include "dbfiles/reports.h"

namespace statecut {

namespace {

constexpr LogSource kHere{kApiutil, 1000};
constexpr LogSource kShortRead{kApiutil, 2000};

}  // namespace

BlockRead dbReadBlock(Stream* fp, std::uint32_t rba, std::int32_t count, void* buffer,
                      ProcObj* proc) {
  STATECUT_ASSERT(fp != nullptr, "fp != ((void *)0)", kApiutil, "dbReadFile");
  STATECUT_ASSERT(buffer != nullptr, "buffer != ((void *)0)", kApiutil, "dbReadFile");
  STATECUT_ASSERT(!streamError(fp), "ferror(fp) == 0", kApiutil, "dbReadFile");
  if (proc == nullptr || count < 0) return {-1, 0};
  if (count == 0) return {0, 0};

  // Deliberate: a failed seek leaves no record and no read is counted, unlike in readFile.
  if (streamSeek(fp, rba) != 0) return {-1, 0};
  const auto wanted = static_cast<std::size_t>(count);
  const std::size_t got = streamRead(fp, buffer, wanted);
  const int error = errno;
  if (got < wanted) reportShortRead(fp, count, got, error, proc, kShortRead, msgText);
  // Deliberate: a short read answers the requested count, as in readFile.
  return {count, got};
}

std::int32_t dbReadFile(Stream* fp, std::uint32_t rba, std::int32_t count, void* buffer,
                        ProcObj* proc) {
  return dbReadBlock(fp, rba, count, buffer, proc).result;
}

Stream* openReadFile(ProcObj* proc, const char* path) {
  if (proc == nullptr) return nullptr;
  Stream* const stream = streamOpen(path, "rb");
  if (stream == nullptr) {
    const int error = errno;
    logFormatted(msgText, proc, kHere.at(__LINE__), kError, "Error", kReasonOpen,
                 "Failed to open (%d) %s\n", error, orEmpty(path));
  }
  return stream;
}

Stream* openOutFile(ProcObj* proc, const char* path) {
  if (proc == nullptr) return nullptr;
  Stream* const stream = streamOpen(path, "w");
  if (stream == nullptr) {
    logFormatted(msgText, proc, kHere.at(__LINE__), kError, "Error", kReasonOpen,
                 "Could not open out file: %s\n", orEmpty(path));
  }
  return stream;
}

void memoryError(const char* text, ProcObj* proc) {
  if (proc == nullptr) return;
  utlWriteLogMsg(proc, kApiutil, kHere.line(__LINE__), kError, "Mem Alloc Err", kReasonMemory,
                 kMsgNoMemory, orEmpty(text));
}

void memoryWarning(const char* text, ProcObj* proc) {
  if (proc == nullptr) return;
  utlWriteLogMsg(proc, kApiutil, kHere.line(__LINE__), kWarn, "Mem Alloc", kReasonMemory,
                 kMsgNoMemory, orEmpty(text));
}

void readRefError(const char* text, ProcObj* proc) {
  if (proc == nullptr) return;
  utlWriteLogMsg(proc, kApiutil, kHere.line(__LINE__), kError, "RefDB Read Err", kReasonRefRead,
                 kMsgRefRead, orEmpty(text));
}

void readRefWarning(const char* text, ProcObj* proc) {
  if (proc == nullptr) return;
  utlWriteLogMsg(proc, kApiutil, kHere.line(__LINE__), kWarn, "RefDB Read", kReasonRefRead,
                 kMsgRefRead, orEmpty(text));
}

void readRangeError(const char* text, ProcObj* proc) {
  if (proc == nullptr) return;
  utlWriteLogMsg(proc, kApiutil, kHere.line(__LINE__), kError, "RangeDB Read Err", kReasonRangeRead,
                 kMsgRangeRead, orEmpty(text));
}

}  // namespace statecut
