#include "run/logguard.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "base/cmdline.h"
#include "base/samefile.h"
#include "log/utllgmsg.h"

namespace statecut {

bool logIsOtherFile() {
  const char* log = cmdLine.logFile;
  if (cmdLine.logLevel <= 0 || log == nullptr || *log == '\0') return false;
  const char* const others[] = {cmdLine.refDb, cmdLine.rangeDb, cmdLine.stateFile, cmdLine.refOut,
                                cmdLine.rangeOut};
  return std::any_of(std::begin(others), std::end(others), [log](const char* other) {
    return other != nullptr && *other != '\0' && sameFile(log, other);
  });
}

std::int32_t logRefused() { return utlLogOpenFailed(cmdLine.logFile, EEXIST); }

}  // namespace statecut
