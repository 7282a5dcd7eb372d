#pragma once
// Guards around the files of a cut: no output may be an input or the other output, and no read or
// write may fail unseen. None of them changes a run that is in order.

#include <cstdint>

#include "base/stream.h"

namespace statecut {

inline constexpr std::size_t kMaxOutputPath = 255;  // bytes of an output's name

// The name from the settings, "" when there is none.
[[nodiscard]] const char* pathOf(const char* setting);

// Creates or truncates an output. Null on failure, errno set: ENAMETOOLONG for a longer name.
[[nodiscard]] Stream* openOutput(const char* path);

// 0, or -1 when an output is an input or the other output (logged). Touches no file.
std::int32_t checkOutputNames();

// Closes what an earlier, failed cut left open and forgets its failures.
void resetGuards();

// True when the source stream is in error; logged once a stream. Null: false.
bool refSourceFailed();
bool rangeSourceFailed();

// The source stream is in error, so reading from it would abort. Logs nothing.
[[nodiscard]] bool inError(const Stream* source);

// True when a write, flush, close or rewind of an output failed; logged once an output.
bool outputsFailed();
void flushOutputs();
void closeOutputs();           // also sets the streams to null; a failure is logged
bool rewindReferenceOutput();  // false when the seek failed

}  // namespace statecut
