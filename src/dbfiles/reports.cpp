#include "dbfiles/reports.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace statecut {

char msgText[kMsgTextSize] = {};

void logFormatted(std::span<char> buffer, ProcObj* proc, LogSite site, std::int32_t severity,
                  const char* title, std::uint32_t reason, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
  va_end(arguments);
  utlWriteLogMsg(proc, site.source, site.line, severity, title, reason, kMsgText, buffer.data());
}

void reportShortRead(const Stream* fp, std::int32_t requested, std::size_t got, int error,
                     ProcObj* proc, LogSource source, std::span<char> buffer) {
  const auto requestedLine = [&](LogSite site) {
    logFormatted(buffer, proc, site, kDebug, "DB Read Error", kReasonRead,
                 "Requested Bytes: %d, Actual bytes read: %d\n", requested,
                 static_cast<std::int32_t>(got));
  };
  if (!streamEof(fp)) requestedLine(source.at(__LINE__));
  if (streamError(fp)) {
    logFormatted(buffer, proc, source.at(__LINE__), kError, "DB Read Error", kReasonRead,
                 "errno=%d:%s\n", error, std::strerror(error));
    requestedLine(source.at(__LINE__));
  }
}

void assertionFailed(const char* expression, const char* source, std::int32_t line,
                     const char* function) {
  std::fprintf(stderr, "%s: %s:%d: %s: Assertion `%s' failed.\n", program_invocation_short_name,
               source, line, function, expression);
  std::fflush(stderr);
  std::abort();
}

}  // namespace statecut
