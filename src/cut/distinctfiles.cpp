#include "cut/distinctfiles.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <string>

#include "base/cmdline.h"
#include "base/samefile.h"
#include "cut/logsites.h"
#include "cut/openfiles.h"

namespace statecut {

namespace {

constexpr LogSource kHere{kCutstate, 3000};

// A name that is too long is no output: it can't be opened.
bool refuseIfSame(LogSite site, const char* output, const char* other) {
  if (std::strlen(output) > kMaxOutputPath || !sameFile(output, other)) return false;
  logPathError(site, "Open Error", kReasonOpen, output,
               ("same file as " + std::string(other)).c_str());
  return true;
}

}  // namespace

std::int32_t checkOutputNames() {
  const char* outputs[] = {orEmpty(cmdLine.refOut), orEmpty(cmdLine.rangeOut)};
  for (const char* output : outputs) {
    for (const char* input : {cmdLine.refDb, cmdLine.rangeDb, cmdLine.stateFile}) {
      if (refuseIfSame(kHere.at(__LINE__), output, orEmpty(input))) return -1;
    }
  }
  return refuseIfSame(kHere.at(__LINE__), outputs[1], outputs[0]) ? -1 : 0;
}

bool logIsOtherFile() {
  const char* log = cmdLine.logFile;
  if (cmdLine.logLevel <= 0) return false;
  const char* const others[] = {cmdLine.refDb, cmdLine.rangeDb, cmdLine.stateFile, cmdLine.refOut,
                                cmdLine.rangeOut};
  return std::any_of(std::begin(others), std::end(others),
                     [log](const char* other) { return sameFile(log, other); });
}

std::int32_t logRefused() { return utlLogOpenFailed(cmdLine.logFile, EEXIST); }

}  // namespace statecut
