#include <algorithm>
#include <array>

#include "dbfiles/apiutil.h"

namespace statecut {

namespace {

constexpr int kPoint = -1;

// Picks characters by position into a terminated text; kPoint stands for ".".
template <std::size_t N>
void pick(const unsigned char* from, const std::array<int, N>& positions, char (&to)[N + 1]) {
  for (std::size_t i = 0; i < N; ++i)
    to[i] = positions[i] == kPoint ? '.' : static_cast<char>(from[positions[i]]);
  to[N] = '\0';
}

}  // namespace

const char* formatVersion(const unsigned char* version) {
  static char text[13];
  if (version == nullptr) return "";
  constexpr std::array kShape{0, 1, kPoint, 2, 3, kPoint, 4, kPoint, 5, kPoint, 6, 7};
  pick(version, kShape, text);
  return text;
}

const char* formatEngineVersion(const unsigned char* version) {
  static char text[13];
  if (version == nullptr) return "";
  constexpr std::array kShape{0, kPoint, 1, 2, kPoint, 3, 4, kPoint, 5, kPoint, 17, 18};
  pick(version, kShape, text);
  return text;
}

const char* formatCopyRight(const unsigned char* date) {
  static char text[11];
  if (date == nullptr) return "";
  // The day is always the 15th, or 99 with an unknown month; that is meant.
  const bool monthUnknown = date[0] == '9' && date[1] == '9';
  const char* const middle = monthUnknown ? "-99-20" : "-15-20";
  std::copy_n(date, 2, text);
  std::copy_n(middle, 6, text + 2);
  std::copy_n(date + 2, 2, text + 8);
  text[10] = '\0';
  return text;
}

}  // namespace statecut
