#pragma once
// Inside of the file layer: block reads that also tell the true count, and what it reports: log
// records with a formatted text, and errors of its caller.

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/procobj.h"
#include "base/stream.h"
#include "log/utllgmsg.h"

namespace statecut {

// `result` is what readFile or dbReadFile answers; `got` the bytes that really came.
struct BlockRead {
  std::int32_t result;
  std::size_t got;
};

BlockRead readBlock(Stream* fp, std::uint32_t rba, std::uint32_t count, void* buffer,
                    ProcObj* proc);
BlockRead dbReadBlock(Stream* fp, std::uint32_t rba, std::int32_t count, void* buffer,
                      ProcObj* proc);

// The records of a read that brought `got` bytes and shows as one of `requested`; silent at the end
// of the file.
// `error` is errno right after the read; `source` has a thousand lines for these records.
void reportShortRead(const Stream* fp, std::int32_t requested, std::size_t got, int error,
                     ProcObj* proc, LogSource source, std::span<char> buffer);

// One record of message 10, its text formatted into `buffer` and cut to it.
[[gnu::format(printf, 7, 8)]] void logFormatted(std::span<char> buffer, ProcObj* proc, LogSite site,
                                                std::int32_t severity, const char* title,
                                                std::uint32_t reason, const char* format, ...);

// A guard against errors of the caller, active in every build type: prints the standard assertion
// text, naming a source file of the system, and aborts.
[[noreturn]] void assertionFailed(const char* expression, const char* source, std::int32_t line,
                                  const char* function);

#define STATECUT_ASSERT(condition, expression, source, function) \
  ((condition) ? static_cast<void>(0)                            \
               : ::statecut::assertionFailed(expression, source, __LINE__, function))

inline constexpr std::size_t kMsgTextSize = 256;
extern char msgText[kMsgTextSize];  // the message buffer that all apiutil routines share

inline constexpr std::size_t kDbaccessTextSize = 2304;  // holds any path that settings allow
inline constexpr const char* kStampFormat = "%m-%d-%Y %H:%M:%S";  // of a control record's stamps
inline constexpr std::size_t kStampTextSize = 40;

}  // namespace statecut
