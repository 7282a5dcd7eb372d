#include "cut/openfiles.h"

#include <cerrno>
#include <cstring>

#include "base/cmdline.h"
#include "base/procobj.h"
#include "cut/logsites.h"
#include "cut/workstate.h"
#include "dbfiles/dbaccess.h"

namespace statecut {

namespace {

constexpr LogSource kHere{kCutstate, 2000};

struct OutputState {
  int failure = 0;  // errno of the first failed write, flush, close or rewind
  bool reported = false;
};

OutputState refOutput;
OutputState rangeOutput;
bool refSourceReported = false;
bool rangeSourceReported = false;

// A file that is short from the start is read as far as it goes: databases without their last bytes
// have always been accepted. One that becomes shorter while it is read is no database of any
// moment.
bool sourceFailed(LogSite site, const Stream* stream, const char* path, bool& reported) {
  const bool error = inError(stream);
  if (!error && (stream == nullptr || !streamShrank(stream))) return false;
  if (!reported) {
    logPathError(site, "DB Read Error", kReasonRead, path,
                 error ? std::strerror(streamErrno(stream)) : "became shorter while it was read");
  }
  reported = true;
  return true;
}

bool outputFailed(LogSite site, const Stream* stream, const char* path, OutputState& state) {
  if (state.failure == 0 && inError(stream)) state.failure = streamErrno(stream);
  if (state.failure == 0) return false;
  if (!state.reported) {
    logPathError(site, "DB Write Error", kReasonWrite, path, std::strerror(state.failure));
  }
  state.reported = true;
  return true;
}

// Keeps the first failure of an output.
void note(OutputState& state, int result) {
  if (result != 0 && state.failure == 0) state.failure = errno != 0 ? errno : EIO;
}

void closeOutput(Stream*& stream, OutputState& state) {
  errno = 0;
  note(state, flushFile(stream, pProcObj));
  errno = 0;
  note(state, streamClose(stream));
  stream = nullptr;
}

}  // namespace

Stream* openOutput(const char* path) {
  if (std::strlen(path) > kMaxOutputPath) {
    errno = ENAMETOOLONG;
    return nullptr;
  }
  return streamOpen(path, "wb");
}

void reserveOutput(Stream* stream, std::uint64_t bytes) {
  if (stream != nullptr) streamReserve(stream, bytes);
}

void forgetEarlierCut() {
  for (Stream** left : {&newRefDb, &newRangeDb}) {
    streamClose(*left);
    *left = nullptr;
  }
  refOutput = {};
  rangeOutput = {};
  refSourceReported = false;
  rangeSourceReported = false;
}

bool inError(const Stream* stream) { return stream != nullptr && streamError(stream); }

bool refSourceFailed() {
  return sourceFailed(kHere.at(__LINE__), pProcObj->files->reference, orEmpty(cmdLine.refDb),
                      refSourceReported);
}

bool rangeSourceFailed() {
  return sourceFailed(kHere.at(__LINE__), pProcObj->files->range, orEmpty(cmdLine.rangeDb),
                      rangeSourceReported);
}

bool outputsFailed() {
  const bool ref = outputFailed(kHere.at(__LINE__), newRefDb, orEmpty(cmdLine.refOut), refOutput);
  const bool range =
      outputFailed(kHere.at(__LINE__), newRangeDb, orEmpty(cmdLine.rangeOut), rangeOutput);
  return ref || range;
}

void flushOutputs() {
  // The reference file's last record, still in its buffer, goes last: with it the pair is complete.
  errno = 0;
  note(rangeOutput, flushFile(newRangeDb, pProcObj));
  errno = 0;
  note(refOutput, flushFile(newRefDb, pProcObj));
}

void closeOutputs() {
  closeOutput(newRefDb, refOutput);
  closeOutput(newRangeDb, rangeOutput);
  outputsFailed();
}

bool rewindReferenceOutput() {
  if (newRefDb == nullptr) return false;
  errno = 0;
  const int flushed = flushFile(newRefDb, pProcObj);
  const int result = flushed != 0 ? flushed : streamSeek(newRefDb, 0);
  note(refOutput, result);
  return result == 0;
}

}  // namespace statecut
