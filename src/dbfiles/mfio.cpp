#include <cerrno>

#include "dbfiles/apiutil.h"
#include "dbfiles/blockread.h"

namespace statecut {

std::uint32_t previousRecordNumber = 0;

namespace {

void reportNullStream(ProcObj* proc) {
  utlWriteLogMsg(proc, kApiutil, __LINE__, kError, "Invalid DB Pointer", kReasonRead, kMsgText,
                 "fp is NULL\n");
}

// One block from the current position; a null buffer counts as a read that brought nothing.
void readNextBlock(Stream* fp, void* buffer, ProcObj* proc) {
  const std::size_t got = buffer == nullptr ? 0 : streamRead(fp, buffer, kBlockBytes);
  const int error = errno;
  if (got < kBlockBytes)
    reportShortRead(fp, kBlockBytes, got, error, proc, {kApiutil, __LINE__}, msgText);
}

void countSeek(ProcObj* proc) {
  if (proc->stats == nullptr) return;
  proc->stats->seeks =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(proc->stats->seeks) + 1);
}

}  // namespace

std::uint32_t readMFIORngCntrl(Stream* fp, std::uint32_t rba, std::int32_t /*length*/, void* buffer,
                               ProcObj* proc) {
  if (proc == nullptr) return rba;
  if (fp == nullptr) {
    reportNullStream(proc);
  } else {
    readNextBlock(fp, buffer, proc);
  }
  previousRecordNumber = 0;
  return rba;
}

std::int32_t readMFIO(Stream* fp, std::uint32_t rba, std::int32_t /*length*/, void* buffer,
                      ProcObj* proc) {
  if (proc == nullptr) return -1;
  if (fp == nullptr) reportNullStream(proc);
  const std::uint32_t block = rba / kBlockBytes;
  const auto offset = static_cast<std::int32_t>(rba % kBlockBytes);
  if (block == previousRecordNumber) return offset;

  const bool skips = block != previousRecordNumber + 1;
  // The distance counts blocks but is skipped in bytes; that is meant.
  const std::uint32_t distance = block - previousRecordNumber - 1;
  const int seek = fp == nullptr ? -1 : (skips ? streamSkip(fp, distance) : 0);
  if (seek != 0) {
    logFormatted(msgText, proc, {kApiutil, __LINE__}, kError, "Seek Error - readMFIO", kReasonRead,
                 "errno=%d:%d\n", seek, static_cast<std::int32_t>(rba));
    return -1;
  }
  if (skips) countSeek(proc);
  readNextBlock(fp, buffer, proc);
  previousRecordNumber = block;
  return offset;
}

}  // namespace statecut
