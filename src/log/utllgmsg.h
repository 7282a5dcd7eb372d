#pragma once
// The message log: numbered, dated, severity-filtered records and plain text lines.

#include <cstdint>

#include "../base/procobj.h"

namespace statecut {

enum Severity : std::int32_t { kCritical = 1, kError = 2, kWarn = 3, kInfo = 4, kDebug = 5 };

// Reason codes.
inline constexpr std::uint32_t kReasonNone = 0;
inline constexpr std::uint32_t kReasonMemory = 20001;
inline constexpr std::uint32_t kReasonRead = 20002;  // seek or read
inline constexpr std::uint32_t kReasonOpen = 20003;
inline constexpr std::uint32_t kReasonWrite = 20006;
inline constexpr std::uint32_t kReasonRangeRead = 20044;
inline constexpr std::uint32_t kReasonRefRead = 20045;
inline constexpr std::uint32_t kReasonTrace = 20070;

// Numbers of the message table that this system uses.
inline constexpr std::int32_t kMsgDate = 1;
inline constexpr std::int32_t kMsgLogFile = 2;
inline constexpr std::int32_t kMsgNoMemory = 3;    // "Could not allocate memory for %s."
inline constexpr std::int32_t kMsgNotFreed = 4;    // "Could not free memory for %s."
inline constexpr std::int32_t kMsgTextNumber = 6;  // "%s%d"
inline constexpr std::int32_t kMsgTextText = 7;    // "%s%s"
inline constexpr std::int32_t kMsgSize = 9;        // "%40s - required - %10d bytes"
inline constexpr std::int32_t kMsgText = 10;       // "%s"
inline constexpr std::int32_t kMsgRefRead = 25;    // "Could not read Reference db partition: %s"
inline constexpr std::int32_t kMsgRangeRead = 26;  // "Could not read Range db record: %s"

inline constexpr std::int32_t kLogMsgCount = 100;  // numbers 0 to 99

// The printf format of a message number, or null when the number has none.
[[nodiscard]] const char* logMsgText(std::int32_t number);

// The place that a record names: a source file of the system and a line in it. No two places of the
// code share both. Records with a fixed line carry it as a constant, whatever C++ file they stand
// in.
struct LogSite {
  const char* source;
  std::int32_t line;
};

// A source name whose other places count their lines from `base`: where several C++ files log under
// one name, or two functions through the same statements, each has a thousand lines of its own.
struct LogSource {
  constexpr LogSource(const char* source, std::int32_t from = 0) : name(source), base(from) {}
  [[nodiscard]] constexpr std::int32_t line(std::int32_t at) const { return base + at; }
  [[nodiscard]] constexpr LogSite at(std::int32_t lineOfFile) const {
    return {name, base + lineOfFile};
  }

  const char* name;
  std::int32_t base;
};

inline constexpr std::int32_t kLogOpenFailed = -2001;
inline constexpr std::int32_t kLogWriteFailed = -2003;

extern std::int32_t processId;  // taken when the log opens, shown in every record

// Opens the log for appending and writes its first records. Level 0 and an empty or null name open
// no file; the empty name lowers the level to 2. 0, kLogOpenFailed or kLogWriteFailed.
[[nodiscard]] std::int32_t utlInitLog(std::int32_t level, const char* fileName, ProcObj* proc);

// Reports a log that cannot be opened on standard error; returns kLogOpenFailed.
[[nodiscard]] std::int32_t utlLogOpenFailed(const char* fileName, int error);

// Formats message `number` with the further arguments and writes one record when the level lets
// it. A null text argument must be passed as "". 0 (written or filtered out) or kLogWriteFailed.
std::int32_t utlWriteLogMsg(ProcObj* proc, const char* source, std::int32_t line,
                            std::int32_t severity, const char* title, std::uint32_t reason,
                            std::int32_t number, ...);

// Characters written to the stream, or to standard output when it is null; negative on failure.
// No level filters it, and the top-of-form flag has no effect.
std::int32_t utlWriteText(const char* text, Stream* stream, const char* topOfForm);
void utlWTO(const char* text);  // to standard error
char* utlTOF(char* flag);       // sets the 2-character flag to "1", returns it
// Closes and nulls the log of pProcObj. Always 0; what could not be written is reported on standard
// error, unless a failure was before.
std::int32_t utlLogMsgClose(Stream** stream);

// "name:0007" in a static buffer of 55 characters, overwritten by the next call. The name loses
// its directory and extension; a null one gives the empty text.
const char* buildLogID(const char* source, std::int32_t line);

// Copies at most `width` (1 to 255) characters; pads up to `width` without a terminator when the
// switch is on, else terminates within `width`. Nothing for nulls and other widths.
void UtlLogCopyPad(char* to, const char* from, std::int32_t width, std::int32_t padSwitch,
                   char padCharacter);

// The debug trace switch: true when library functions log Entering and Leaving.
[[nodiscard]] bool traceOn(const ProcObj* proc);

// "Entering <name>" / "Leaving <name>" at severity 5 when the trace is on.
void traceEntering(ProcObj* proc, LogSource source, std::int32_t line, const char* name);
void traceLeaving(ProcObj* proc, LogSource source, std::int32_t line, const char* name);

}  // namespace statecut
