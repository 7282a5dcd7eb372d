#pragma once
// The areas that the postal database covers, and their two-letter abbreviations.

#include <array>
#include <cstddef>
#include <cstdint>

namespace statecut {

inline constexpr std::size_t kStateRows = 66;
inline constexpr std::size_t kAbbreviations = 63;

struct State {
  char name[41];  // padded with blanks to 40 characters
  char abbreviation[3];
  std::int32_t selected;  // 1 once the user's list held the abbreviation
};

extern std::array<State, kStateRows> states;

// The distinct abbreviations, in the order in which the entire database lists them.
extern const std::array<char[3], kAbbreviations> abvstates;

// 0 when the first two characters are an abbreviation, whose first row is then marked selected;
// otherwise 1.
[[nodiscard]] std::int32_t verifyState(const char* text);

void displayStates();  // the table, on standard error

}  // namespace statecut
