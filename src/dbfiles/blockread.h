#pragma once
// Inside of the file layer: block reads that also tell the true count, and formatted log records.

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

// As streamOpen; a null path fails with EINVAL.
[[nodiscard]] Stream* openPath(const char* path, const char* mode);
[[nodiscard]] inline const char* textOf(const char* text) { return text == nullptr ? "" : text; }

inline constexpr std::size_t kMsgTextSize = 256;
extern char msgText[kMsgTextSize];  // the message buffer that all apiutil routines share

inline constexpr std::size_t kDbaccessTextSize = 2304;  // holds any path that settings allow
inline constexpr std::size_t kTimeTextSize = 40;

// Local time "MM-DD-YYYY HH:MM:SS" of seconds since 1970; "" when it has no local time.
void formatTimeStamp(std::uint32_t stamp, char (&text)[kTimeTextSize]);

}  // namespace statecut
