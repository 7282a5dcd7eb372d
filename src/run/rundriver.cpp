#include "run/rundriver.h"

#include <cstdio>
#include <cstring>
#include <new>

#include "base/clock.h"
#include "base/cmdline.h"
#include "base/procobj.h"
#include "cut/cutstate.h"
#include "cut/distinctfiles.h"
#include "log/utllgmsg.h"
#include "run/settings.h"
#include "run/statelist.h"
#include "run/statetable.h"

namespace statecut {
namespace {

// Static, because what the cut leaves allocated on a failure hangs on them until the process ends.
ProcObj procObj;
OptionsRecord optionsRecord;

constexpr std::int32_t kLogNotOpen = -9;
constexpr std::int32_t kOutOfMemory = -1;

void initProcObj() {
  procObj = ProcObj{};
  optionsRecord = OptionsRecord{};
  pProcObj = &procObj;
  procObj.callerError = nullptr;
  procObj.files = &procObj.fileRecord;
  procObj.stats = &procObj.statistics;
  procObj.options = &optionsRecord;
  std::memcpy(optionsRecord.unnamed, "OFF", sizeof "OFF");
}

// Writes the label and the current time, which becomes dateAndTime.
void writeTimeLine(const char* label) {
  char time[40];
  char line[80];
  dateAndTime = currentTime();
  // Deliberate: blanks, not slashes, stand between month, day and year, for readers of the log.
  formatLocalTime(time, sizeof time, "%m %d %Y %H:%M:%S", dateAndTime);
  std::snprintf(line, sizeof line, "%s Time: %s\n", label, time);
  utlWriteText(line, procObj.files->log, cmdLine.topOfForm);
}

std::int32_t openLog() {
  if (logIsOtherFile()) return logRefused();
  return utlInitLog(cmdLine.logLevel, cmdLine.logFile, pProcObj);
}

void waitForEnter() {
  std::fputs("\nPlease hit <Enter> key to continue...\n", stdout);
  std::fflush(stdout);
  if (stdinClosed()) return;  // the state list came from there: no more to read
  int c = 0;
  do {
    c = std::getchar();
  } while (c != '\n' && c != EOF);
}

std::int32_t runWithLog() {
  writeTimeLine("Start");
  logCmdLine(procObj.files->log);
  const std::int32_t result = cutStates();
  writeTimeLine("End");
  utlLogMsgClose(&procObj.files->log);
  if (cmdLine.prompt != 0) waitForEnter();
  freeCmdLine();
  return result;
}

std::int32_t run(int argc, char** argv) {
  initProcObj();
  const std::int32_t status = parseCmdLine(argc, argv);
  if (status != 0) {
    printUsage(argc > 0 ? argv[0] : nullptr);
    return status;
  }
  if (cmdLine.displayInfo != 0) {
    displayStates();
    freeCmdLine();
    return 0;
  }
  std::fputs("Processing ... please wait.\n", stdout);
  utlTOF(cmdLine.topOfForm);
  if (static_cast<std::int16_t>(openLog()) < 0) {
    std::fprintf(stderr, "Could not open log file/utility: %s\n", orEmpty(cmdLine.logFile));
    return kLogNotOpen;
  }
  return runWithLog();
}

}  // namespace

std::int32_t runMain(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fputs("statecut: out of memory\n", stderr);
    return kOutOfMemory;
  }
}

}  // namespace statecut
