#include "cut/guards.h"

#include <cerrno>
#include <cstring>
#include <string>

#include "base/cmdline.h"
#include "base/procobj.h"
#include "base/samefile.h"
#include "cut/cutlog.h"
#include "cut/workstate.h"
#include "dbfiles/dbaccess.h"

namespace statecut {

namespace {

constexpr LogSource kHere{kCutstate, 2000};

struct OutputState {
  int failure = 0;  // errno of a failed flush, close or rewind
  bool reported = false;
};

OutputState refOutput;
OutputState rangeOutput;
bool refSourceReported = false;
bool rangeSourceReported = false;

bool tooLong(const char* path) { return std::strlen(path) > kMaxOutputPath; }

bool sourceFailed(LogSite site, const Stream* stream, const char* path, bool& reported) {
  const bool error = inError(stream);
  // A short file is read as it stands; one that loses bytes meanwhile is no state of a database.
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

bool refuseIfSame(LogSite site, const char* output, const char* other) {
  if (tooLong(output) || !sameFile(output, other)) return false;
  logPathError(site, "Open Error", kReasonOpen, output,
               ("same file as " + std::string(other)).c_str());
  return true;
}

}  // namespace

const char* pathOf(const char* setting) { return setting == nullptr ? "" : setting; }

Stream* openOutput(const char* path) {
  if (tooLong(path)) {
    errno = ENAMETOOLONG;
    return nullptr;
  }
  return streamOpen(path, "wb");
}

std::int32_t checkOutputNames() {
  const char* outputs[] = {pathOf(cmdLine.refOut), pathOf(cmdLine.rangeOut)};
  for (const char* output : outputs) {
    for (const char* input : {cmdLine.refDb, cmdLine.rangeDb, cmdLine.stateFile}) {
      if (refuseIfSame(kHere.at(__LINE__), output, pathOf(input))) return -1;
    }
  }
  return refuseIfSame(kHere.at(__LINE__), outputs[1], outputs[0]) ? -1 : 0;
}

void resetGuards() {
  for (Stream** left : {&newRefDb, &newRangeDb}) {
    streamClose(*left);
    *left = nullptr;
  }
  refOutput = {};
  rangeOutput = {};
  refSourceReported = false;
  rangeSourceReported = false;
}

bool inError(const Stream* source) { return source != nullptr && streamError(source); }

bool refSourceFailed() {
  return sourceFailed(kHere.at(__LINE__), pProcObj->files->reference, pathOf(cmdLine.refDb),
                      refSourceReported);
}

bool rangeSourceFailed() {
  return sourceFailed(kHere.at(__LINE__), pProcObj->files->range, pathOf(cmdLine.rangeDb),
                      rangeSourceReported);
}

bool outputsFailed() {
  const bool ref = outputFailed(kHere.at(__LINE__), newRefDb, pathOf(cmdLine.refOut), refOutput);
  const bool range =
      outputFailed(kHere.at(__LINE__), newRangeDb, pathOf(cmdLine.rangeOut), rangeOutput);
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
