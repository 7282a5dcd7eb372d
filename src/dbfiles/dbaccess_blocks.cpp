#include <cerrno>
#include <cstring>

#include "dbfiles/dbaccess.h"
#include "dbfiles/reports.h"

namespace statecut {

namespace {

constexpr LogSource kHere{kDbaccess, 5000};
constexpr LogSource kShortRead{kDbaccess, 6000};
constexpr LogSite kSeekFailed{kDbaccess, 1326};  // part of the log's format

constexpr std::uint32_t kMaxCount = 2147483647;  // results are signed 32-bit

void reportShortWrite(std::size_t requested, std::size_t written, ProcObj* proc) {
  char text[kDbaccessTextSize];
  logFormatted(text, proc, kHere.at(__LINE__), kError, "DB Write Error", kReasonWrite,
               "Requested bytes: %d, Actual bytes written: %d\n",
               static_cast<std::int32_t>(requested), static_cast<std::int32_t>(written));
}

// What an output's buffer holds before it is flushed.
class Waiting {
 public:
  explicit Waiting(const Stream* fp)
      : fp_(fp), bytes_(streamPending(fp)), sound_(!streamError(fp)) {}
  // A stream that came into error in the flush did not take all of them: a failed write.
  void reportLost(ProcObj* proc) const {
    if (sound_ && streamError(fp_)) reportShortWrite(bytes_, bytes_ - streamPending(fp_), proc);
  }

 private:
  const Stream* fp_;
  std::size_t bytes_;
  bool sound_;
};

}  // namespace

BlockRead readBlock(Stream* fp, std::uint32_t rba, std::uint32_t count, void* buffer,
                    ProcObj* proc) {
  STATECUT_ASSERT(fp != nullptr, "fp != ((void *)0)", kDbaccess, "readFile");
  STATECUT_ASSERT(buffer != nullptr, "buffer != ((void *)0)", kDbaccess, "readFile");
  STATECUT_ASSERT(!streamError(fp), "ferror(fp) == 0", kDbaccess, "readFile");
  if (proc == nullptr) return {-1, 0};
  tally(proc, &Statistics::reads);
  if (count > kMaxCount) return {-1, 0};

  char text[kDbaccessTextSize];
  if (streamSeek(fp, rba) != 0) {
    const int error = errno;
    // Deliberate: an RBA above 2147483647 is shown negative; the text is part of the log's format.
    logFormatted(text, proc, kSeekFailed, kError, "DB Seek Error", kReasonRead, "rba=%d, %s\n",
                 static_cast<std::int32_t>(rba), std::strerror(error));
    return {-1, 0};
  }
  const std::size_t got = streamRead(fp, buffer, count);
  const int error = errno;
  const auto requested = static_cast<std::int32_t>(count);
  if (got < count) reportShortRead(fp, requested, got, error, proc, kShortRead, text);
  // Deliberate: a short read answers the requested count, for callers that read whole blocks past
  // the end of a file.
  return {requested, got};
}

std::int32_t readFile(Stream* fp, std::uint32_t rba, std::uint32_t count, void* buffer,
                      ProcObj* proc) {
  return readBlock(fp, rba, count, buffer, proc).result;
}

std::int32_t writeFile(Stream* fp, std::uint32_t count, const void* buffer, ProcObj* proc) {
  if (fp == nullptr || buffer == nullptr || proc == nullptr || streamError(fp)) return -1;
  const std::size_t written = streamWrite(fp, buffer, count);
  if (written < count) reportShortWrite(count, written, proc);
  return static_cast<std::int32_t>(written);
}

std::size_t appendFile(Stream* to, Stream* from, std::uint64_t rba, std::uint64_t count,
                       Pages pages, ProcObj* proc) {
  const Waiting waiting(to);
  const std::size_t moved = streamAppend(to, from, rba, count, pages);
  waiting.reportLost(proc);
  return moved;
}

int flushFile(Stream* fp, ProcObj* proc) {
  if (fp == nullptr) return 0;
  const Waiting waiting(fp);
  const int result = streamFlush(fp);
  const int error = errno;
  waiting.reportLost(proc);
  errno = error;
  return result;
}

Stream* openWriteFile(ProcObj* proc, const char* path) {
  if (proc == nullptr) return nullptr;
  Stream* const stream = streamOpen(path, "wb");
  if (stream == nullptr) {
    char text[kDbaccessTextSize];
    logFormatted(text, proc, kHere.at(__LINE__), kError, "Error", kReasonOpen,
                 "Could not open out file: %s\n", orEmpty(path));
  }
  return stream;
}

}  // namespace statecut
