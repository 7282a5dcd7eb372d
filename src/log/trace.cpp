// The debug trace of the library functions.

#include <cstdio>

#include "log/utllgmsg.h"

namespace statecut {
namespace {

void trace(ProcObj* proc, LogSource source, std::int32_t line, const char* verb, const char* name) {
  if (!traceOn(proc)) return;
  char text[128];
  std::snprintf(text, sizeof text, "%s%s", verb, name == nullptr ? "" : name);
  utlWriteLogMsg(proc, source.name, source.line(line), kDebug, "Debug", kReasonTrace, kMsgText,
                 text);
}

}  // namespace

bool traceOn(const ProcObj* proc) {
  return proc != nullptr && proc->options != nullptr && proc->options->debugSwitch == 'D';
}

void traceEntering(ProcObj* proc, LogSource source, std::int32_t line, const char* name) {
  trace(proc, source, line, "Entering ", name);
}

void traceLeaving(ProcObj* proc, LogSource source, std::int32_t line, const char* name) {
  trace(proc, source, line, "Leaving ", name);
}

}  // namespace statecut
