#pragma once
// The files of a cut while they are open: outputs opened, flushed and closed, and failures of
// sources and outputs, each told once. Nothing here changes a run that is in order.

#include <cstdint>

#include "base/stream.h"

namespace statecut {

inline constexpr std::size_t kMaxOutputPath = 255;  // bytes of an output's name

// Creates or truncates an output. Null on failure, errno set: ENAMETOOLONG for a longer name.
[[nodiscard]] Stream* openOutput(const char* path);

// Tells how many bytes an output will get next. Null: nothing.
void reserveOutput(Stream* stream, std::uint64_t bytes);

// Closes the outputs that an earlier, failed cut left open and forgets its failures.
void forgetEarlierCut();

// True when the source stream is in error or its file became shorter; logged once a stream. Null:
// false.
bool refSourceFailed();
bool rangeSourceFailed();

// The stream is in error, so reading from it would abort. Logs nothing. Null: false.
[[nodiscard]] bool inError(const Stream* stream);

// True when a write, flush, close or rewind of an output failed; logged once an output.
bool outputsFailed();
void flushOutputs();
void closeOutputs();           // also sets the streams to null; a failure is logged
bool rewindReferenceOutput();  // false when what waits can't be written or the seek failed

}  // namespace statecut
