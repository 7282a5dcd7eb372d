#include "cut/logsites.h"

#include <string>

#include "base/procobj.h"

namespace statecut {

void logRequired(LogSite site, const char* title, const char* name, std::uint64_t bytes) {
  utlWriteLogMsg(pProcObj, site.source, site.line, kInfo, title, kReasonNone, kMsgSize, name,
                 static_cast<std::int32_t>(static_cast<std::uint32_t>(bytes)));
}

void logNoMemory(LogSite site, const char* name) {
  utlWriteLogMsg(pProcObj, site.source, site.line, kError, "Mem Alloc Err", kReasonNone,
                 kMsgNoMemory, name);
}

void logText(LogSite site, std::int32_t severity, const char* title, const char* text) {
  utlWriteLogMsg(pProcObj, site.source, site.line, severity, title, kReasonNone, kMsgText, text);
}

void logNumber(LogSite site, const char* title, const char* text, std::uint32_t number) {
  utlWriteLogMsg(pProcObj, site.source, site.line, kWarn, title, kReasonNone, kMsgTextNumber, text,
                 static_cast<std::int32_t>(number));
}

void logPathError(LogSite site, const char* title, std::uint32_t reason, const char* path,
                  const char* text) {
  const std::string message = std::string(path) + ";" + text + "\n";
  utlWriteLogMsg(pProcObj, site.source, site.line, kError, title, reason, kMsgText,
                 message.c_str());
}

}  // namespace statecut
