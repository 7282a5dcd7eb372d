#pragma once
// Calls of operations: one, or a stream of JSON lines.

#include <cstdint>
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

enum class Outcome : std::uint8_t {
  kAnswered,
  kNotUnderstood,  // the call is not one that can be made
  kUnanswered      // a file cannot be read, or a table cannot be loaded
};

// Each appends one answer line to `out`, an error where there is no answer. The "id" of a JSON
// line comes back in front of its answer, as it was written.
Outcome answerWords(Session& session, bool decode, std::span<const std::string> words,
                    std::string& out);
Outcome answerLine(Session& session, bool decode, std::string_view line, std::string& out);

// What calls without an answer do to the exit status.
enum class Errors : std::uint8_t {
  kStatus,  // any of them: kFailed
  kAnswer   // not understood: kDone, as the answer says it; unanswered: kCannotRun
};

[[nodiscard]] int statusOf(Outcome outcome, Errors errors);

// Answers the lines of a descriptor until its end, on another. Answers are held back only while
// a further whole line is there to be read. With Errors::kAnswer, tells on standard error how many
// there were. An exit status.
int serve(Session& session, bool decode, Errors errors, int in, int out);

// Writes all bytes; false when that fails.
[[nodiscard]] bool writeAll(int out, std::string_view bytes);

}  // namespace statecut::query
