#pragma once
// Calls of operations: one, or a stream of JSON lines.

#include <span>
#include <string>
#include <string_view>

#include "lookup/session.h"

namespace statecut::query {

// Exit statuses.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;     // a call without an answer; not found, in the short forms
inline constexpr int kCannotRun = 2;  // usage, files, standard streams

// What is wrong when the reference file could not be read, by any call so far; else empty.
[[nodiscard]] std::string readFailure();

// Each appends one answer line to `out`; false when that is an error.
bool answerWords(Session& session, bool decode, std::span<const std::string> words,
                 std::string& out);
bool answerLine(Session& session, bool decode, std::string_view line, std::string& out);

// Answers the lines of a descriptor until its end, on another. Answers are held back only while
// a further whole line is there to be read. An exit status.
int serve(Session& session, bool decode, int in, int out);

// Writes all bytes; false when that fails.
[[nodiscard]] bool writeAll(int out, std::string_view bytes);

}  // namespace statecut::query
