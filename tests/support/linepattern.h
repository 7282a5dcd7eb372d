#pragma once
// Expected lines with wild cards, for logs that carry times, process ids and free line numbers.

#include <string>
#include <string_view>
#include <vector>

namespace statecut::test {

inline constexpr char kDigit = '\1';    // exactly one decimal digit
inline constexpr char kDigits = '\2';   // one decimal digit or more
inline constexpr char kAnyText = '\3';  // any text without ';', empty included

// True when the whole line fits the pattern.
bool matchesLine(std::string_view pattern, std::string_view line);

// The pattern with its wild cards made visible.
std::string showPattern(std::string_view pattern);

// Cuts text at its new lines; a last line without one counts, a final new line adds none.
std::vector<std::string> splitLines(std::string_view text);

// Empty when all lines fit their patterns in order, else the first difference in words.
std::string compareLines(const std::string& what, const std::vector<std::string>& patterns,
                         std::string_view text);

}  // namespace statecut::test
