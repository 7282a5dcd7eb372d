#include "log/utllgmsg.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "base/clock.h"
#include "base/stream.h"
#include "log/firsterror.h"

namespace statecut {

std::int32_t processId = 0;

namespace {

constexpr const char* kSource = "utllgmsg";
constexpr const char* kEngineVersion = "10.00.0.O.F1";
constexpr std::size_t kMessageSize = 4096;

// Deliberate: "CRITCAL" is spelled so; log filters match on it.
constexpr const char* msgTypes[] = {"", "CRITCAL", "ERR", "WARN", "INFO", "DBG"};

char logText[8192];  // the record being written

const char* severityName(std::int32_t severity) {
  return severity >= 0 && severity <= kDebug ? msgTypes[severity] : "";
}

// A record that does not fit is cut and still ends in a new line.
void formatRecord(const char* source, std::int32_t line, std::int32_t severity, const char* title,
                  std::uint32_t reason, const char* message) {
  char date[40];
  // Deliberate: a point, not a colon, stands before the seconds, for programs that read the log.
  formatLocalTime(date, sizeof date, "%m/%d/%y %H:%M.%S", currentTime());
  const int wanted = std::snprintf(logText, sizeof logText - 1, "%s;%s;%s;%d;%u;%s;%s", date,
                                   severityName(severity), buildLogID(source, line), processId,
                                   reason, orEmpty(title), message);
  const std::size_t length =
      wanted < 0 ? 0 : std::min(static_cast<std::size_t>(wanted), sizeof logText - 2);
  if (length == 0 || logText[length - 1] != '\n') {
    logText[length] = '\n';
    logText[length + 1] = '\0';
  }
}

// Tells the operator once a run that a record, or text without one (null), is not in the log.
std::int32_t reportWriteFailure(FileRecord* files, const char* record, int error) {
  if (files != nullptr) {
    if (files->logWriteFailureReported != 0) return kLogWriteFailed;
    files->logWriteFailureReported = 1;
  }
  utlWTO("Could not write log message.\n");
  utlWTO(record);
  std::fprintf(stderr, "Errno = %d : %s\n", error, std::strerror(error));
  return kLogWriteFailed;
}

std::int32_t writeFirstRecords(ProcObj* proc, const char* fileName) {
  char date[40];
  formatLocalTime(date, sizeof date, "%Y-%m-%d", currentTime());
  std::int32_t result =
      utlWriteLogMsg(proc, kSource, __LINE__, kInfo, "Log", kReasonNone, kMsgDate, date);
  if (result == 0) {
    result =
        utlWriteLogMsg(proc, kSource, __LINE__, kInfo, "Log", kReasonNone, kMsgLogFile, fileName);
  }
  // Deliberate: its result is not looked at; a run whose log filled up right here goes on.
  utlWriteLogMsg(proc, kSource, __LINE__, kInfo, "Velandor Engine", kReasonNone, kMsgText,
                 kEngineVersion);
  return result;
}

void trace(ProcObj* proc, LogSource source, std::int32_t line, const char* verb, const char* name) {
  if (!traceOn(proc)) return;
  char text[128];
  std::snprintf(text, sizeof text, "%s%s", verb, orEmpty(name));
  utlWriteLogMsg(proc, source.name, source.line(line), kDebug, "Debug", kReasonTrace, kMsgText,
                 text);
}

}  // namespace

std::int32_t utlInitLog(std::int32_t level, const char* fileName, ProcObj* proc) {
  if (proc == nullptr || proc->files == nullptr) return kLogOpenFailed;
  proc->files->logWriteFailureReported = 0;
  proc->logLevel = level;
  if (level == 0) return 0;
  processId = currentProcessId();
  if (fileName == nullptr || *fileName == '\0') {
    proc->logLevel = kError;
    return 0;
  }
  proc->files->log = streamOpen(fileName, "a+");
  if (proc->files->log == nullptr) return utlLogOpenFailed(fileName, errno);
  utlTOF(proc->topOfForm);
  return writeFirstRecords(proc, fileName);
}

std::int32_t utlLogOpenFailed(const char* fileName, int error) {
  std::fprintf(stderr, "Could not open log file <%s>\n", orEmpty(fileName));
  std::fprintf(stderr, "Errno = %d : %s\n", error, std::strerror(error));
  return kLogOpenFailed;
}

std::int32_t utlWriteLogMsg(ProcObj* proc, const char* source, std::int32_t line,
                            std::int32_t severity, const char* title, std::uint32_t reason,
                            std::int32_t number, ...) {
  int error = errno;  // shown when there is no stream
  if (proc == nullptr) return kLogWriteFailed;
  char message[kMessageSize];
  const char* format = logMsgText(number);
  if (format == nullptr) {
    std::snprintf(message, sizeof message, "Msg Log Number < %d > Has No Message Text\n", number);
  } else {
    std::va_list arguments;
    va_start(arguments, number);
    if (std::vsnprintf(message, sizeof message, format, arguments) < 0) message[0] = '\0';
    va_end(arguments);
  }

  rememberFirstError(proc, orEmpty(source), severity, reason, number, message);
  if (proc->logLevel == 0) return 0;
  if (severity >= kCritical && severity <= kDebug && severity > proc->logLevel) return 0;

  formatRecord(source, line, severity, title, reason, message);
  Stream* log = proc->files == nullptr ? nullptr : proc->files->log;
  if (log != nullptr) {
    if (utlWriteText(logText, log, proc->topOfForm) >= 0 && streamFlush(log) == 0) return 0;
    error = errno;
  }
  return reportWriteFailure(proc->files, logText, error);
}

std::int32_t utlWriteText(const char* text, Stream* stream, const char* /*topOfForm*/) {
  if (text == nullptr) return 0;
  const std::size_t length = std::strlen(text);
  const std::size_t written =
      stream == nullptr ? std::fwrite(text, 1, length, stdout) : streamWrite(stream, text, length);
  return written == length ? static_cast<std::int32_t>(length) : -1;
}

void utlWTO(const char* text) {
  if (text != nullptr) std::fputs(text, stderr);
}

char* utlTOF(char* flag) {
  if (flag != nullptr) std::memcpy(flag, "1", 2);
  return flag;
}

std::int32_t utlLogMsgClose(Stream** stream) {
  if (stream == nullptr || *stream == nullptr) return 0;
  const int closed = streamClose(*stream);
  const int error = errno;
  *stream = nullptr;
  FileRecord* const files = pProcObj == nullptr ? nullptr : pProcObj->files;
  if (closed != 0) reportWriteFailure(files, nullptr, error);
  return 0;
}

const char* buildLogID(const char* source, std::int32_t line) {
  static char id[55];
  constexpr std::size_t kLineSize = sizeof ":-2147483648" - 1;
  std::memset(id, 0, sizeof id);
  if (source == nullptr) return id;
  const char* slash = std::strrchr(source, '/');
  const char* name = slash == nullptr ? source : slash + 1;
  const char* point = std::strrchr(name, '.');
  const std::size_t full =
      point == nullptr ? std::strlen(name) : static_cast<std::size_t>(point - name);
  const std::size_t length = std::min(full, sizeof id - 1 - kLineSize);
  std::memcpy(id, name, length);
  std::snprintf(id + length, sizeof id - length, ":%04d", line);
  return id;
}

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
