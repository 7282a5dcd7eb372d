#include <cerrno>

#include "dbfiles/apiutil.h"
#include "dbfiles/reports.h"

namespace statecut {

std::uint32_t previousRecordNumber = 0;

namespace {

// A reader's own places and those of its short reads.
struct Places {
  LogSource own;
  LogSource shortRead;
};

constexpr Places kFirstBlock{{kApiutil, 4000}, {kApiutil, 5000}};
constexpr Places kAnyBlock{{kApiutil, 6000}, {kApiutil, 7000}};

void reportNullStream(const Places& places, ProcObj* proc) {
  utlWriteLogMsg(proc, kApiutil, places.own.line(__LINE__), kError, "Invalid DB Pointer",
                 kReasonRead, kMsgText, "fp is NULL\n");
}

// One block from the current position, reported as `length` bytes; a null buffer counts as a read
// that brought nothing.
void readNextBlock(const Places& places, Stream* fp, std::int32_t length, void* buffer,
                   ProcObj* proc) {
  const std::size_t got = buffer == nullptr ? 0 : streamRead(fp, buffer, kBlockBytes);
  const int error = errno;
  if (got < kBlockBytes) reportShortRead(fp, length, got, error, proc, places.shortRead, msgText);
}

}  // namespace

std::uint32_t readMFIORngCntrl(Stream* fp, std::uint32_t rba, std::int32_t length, void* buffer,
                               ProcObj* proc) {
  if (proc == nullptr) return rba;
  if (fp == nullptr) {
    reportNullStream(kFirstBlock, proc);
  } else {
    readNextBlock(kFirstBlock, fp, length, buffer, proc);
  }
  previousRecordNumber = 0;
  return rba;
}

std::int32_t readMFIO(Stream* fp, std::uint32_t rba, std::int32_t length, void* buffer,
                      ProcObj* proc) {
  if (proc == nullptr) return -1;
  if (fp == nullptr) reportNullStream(kAnyBlock, proc);
  const std::uint32_t block = rba / kBlockBytes;
  const auto offset = static_cast<std::int32_t>(rba % kBlockBytes);
  if (block == previousRecordNumber) return offset;

  const bool skips = block != previousRecordNumber + 1;
  // Deliberate: the distance counts blocks but is skipped in bytes; callers of this reader get the
  // blocks that they always got.
  const std::uint32_t distance = block - previousRecordNumber - 1;
  const int seek = fp == nullptr ? -1 : (skips ? streamSkip(fp, distance) : 0);
  if (seek != 0) {
    logFormatted(msgText, proc, kAnyBlock.own.at(__LINE__), kError, "Seek Error - readMFIO",
                 kReasonRead, "errno=%d:%d\n", seek, static_cast<std::int32_t>(rba));
    return -1;
  }
  if (skips) tally(proc, &Statistics::seeks);
  readNextBlock(kAnyBlock, fp, length, buffer, proc);
  previousRecordNumber = block;
  return offset;
}

}  // namespace statecut
