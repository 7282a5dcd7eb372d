// From the values of constraints to rows. A value leads to all rows that it can fit under any of
// SQLite's rules of comparison, maybe to more, or to none.

#include <charconv>
#include <cmath>
#include <optional>

#include "format/latin1.h"
#include "vtab.h"

SQLITE_EXTENSION_INIT3

namespace statecut::sql {

namespace {

using relations::Match;
using relations::Path;

enum class Fit { kNothing, kEverything, kSome };

constexpr std::uint64_t kLastZip = 99999;

std::string_view textOf(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (text == nullptr) throw std::bad_alloc();
  return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

// The number that a text stands for in a comparison with numbers. SQLite's own conversion would
// change the value, which it compares afterwards.
std::optional<double> numberIn(std::string_view text) {
  constexpr std::string_view kSpaces = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(kSpaces);
  if (first == std::string_view::npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(kSpaces) - first + 1);
  if (text.front() == '+') text.remove_prefix(1);
  const std::size_t digit = text.find_first_not_of("-.");
  if (digit == std::string_view::npos || text[digit] < '0' || text[digit] > '9')
    return std::nullopt;
  double number = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// The value as a number of a column that holds none below 0.
Fit keyOf(sqlite3_value* value, std::uint64_t& key) {
  std::optional<double> number;
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER: {
      const sqlite3_int64 held = sqlite3_value_int64(value);
      key = static_cast<std::uint64_t>(held);
      return held < 0 ? Fit::kNothing : Fit::kSome;
    }
    case SQLITE_FLOAT:
      number = sqlite3_value_double(value);
      break;
    case SQLITE_TEXT:
      number = numberIn(textOf(value));
      break;
    default:
      break;
  }
  constexpr double kMost =
      9007199254740992.0;  // up to here a number with a fraction has all integers
  if (!number || *number < 0 || *number != std::floor(*number)) return Fit::kNothing;
  if (*number > kMost) return Fit::kEverything;
  key = static_cast<std::uint64_t>(*number);
  return Fit::kSome;
}

// A text is compared as it is. A number may be compared as a text or, as that of a column of
// numbers, with the number that a name stands for, which no index knows.
Fit nameOf(sqlite3_value* value, std::string& bytes) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_TEXT:
      return format::bytesOfUtf8(textOf(value), bytes) ? Fit::kSome : Fit::kNothing;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return Fit::kEverything;
    default:
      return Fit::kNothing;
  }
}

std::string_view digitsIn(const std::array<char, 5>& digits) {
  return {digits.data(), digits.size()};
}

// Of the codes 0 to 99999 those before the first whose digits are not before the text, or, with
// `behind`, are behind it.
std::uint64_t codesBefore(std::string_view text, bool behind) {
  std::uint64_t low = 0;
  std::uint64_t high = kLastZip + 1;
  while (low < high) {
    const std::uint64_t middle = (low + high) / 2;
    const int order = digitsIn(relations::digitsOf(middle)).compare(text);
    if (order < 0 || (behind && order == 0))
      low = middle + 1;
    else
      high = middle;
  }
  return low;
}

// Numbers are as many texts and numbers as one likes: no bound. Every text is before every blob,
// and before a text that is no number stands every ZIP code that is compared as a number.
Fit boundOf(sqlite3_value* value, bool isUpper, std::uint64_t& bound) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_TEXT: {
      const std::string_view text = textOf(value);
      if (!isUpper) {
        bound = codesBefore(text, false);
        return bound > kLastZip ? Fit::kNothing : Fit::kSome;
      }
      if (!numberIn(text)) return Fit::kEverything;
      bound = codesBefore(text, true);
      return bound-- == 0 ? Fit::kNothing : Fit::kSome;
    }
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return Fit::kEverything;
    case SQLITE_BLOB:
      return isUpper ? Fit::kEverything : Fit::kNothing;
    default:
      return Fit::kNothing;
  }
}

// What a name begins with that fits a pattern. A character that no name can have ends it.
Fit prefixOf(sqlite3_value* value, std::string& prefix) {
  if (sqlite3_value_type(value) == SQLITE_NULL) return Fit::kNothing;
  prefix.clear();
  if (sqlite3_value_type(value) != SQLITE_TEXT) return Fit::kSome;
  const std::string_view pattern = textOf(value);
  std::size_t length = 0;
  const std::string_view ends("*?[\0", 4);
  while (length < pattern.size() && ends.find(pattern[length]) == std::string_view::npos) ++length;
  while (length > 0 && !format::bytesOfUtf8(pattern.substr(0, length), prefix)) --length;
  if (length == 0) prefix.clear();
  return Fit::kSome;
}

Fit fitOf(Match match, sqlite3_value* value, std::string& text, Wanted& wanted) {
  switch (match) {
    case Match::kText:
      return nameOf(value, text);
    case Match::kPrefix:
      return prefixOf(value, text);
    default:
      return keyOf(value, wanted.low);
  }
}

Fit rangeOf(int plan, std::span<sqlite3_value*> values, Wanted& wanted) {
  wanted.low = 0;
  wanted.high = kLastZip;
  std::size_t at = 0;
  Fit fit = Fit::kSome;
  if ((plan & kLowerBound) != 0) fit = boundOf(values[at++], false, wanted.low);
  if (fit == Fit::kNothing || (plan & kUpperBound) == 0) return fit;
  const Fit upper = boundOf(values[at], true, wanted.high);
  return upper == Fit::kNothing ? upper : Fit::kSome;
}

}  // namespace

bool startRows(const Table& table, Rows& rows, int plan, std::span<sqlite3_value*> values) {
  if (plan == 0) {
    rows.cursor->startAll();
    return true;
  }
  const auto number = static_cast<std::size_t>((plan & kPathMask) - 1);
  const Path& path = table.relation->paths[number];
  std::array<Wanted, 2> wanted;
  rows.texts.assign(path.count, "");
  Fit fit = Fit::kSome;
  for (std::size_t i = 0; i < path.count; ++i) {
    const Match match = path.terms[i].match;
    const Fit one = match == Match::kZips ? rangeOf(plan, values, wanted[i])
                                          : fitOf(match, values[i], rows.texts[i], wanted[i]);
    if (one == Fit::kNothing) return false;
    if (one == Fit::kEverything) fit = one;
    wanted[i].text = rows.texts[i];
  }
  if (fit == Fit::kEverything)
    rows.cursor->startAll();
  else
    rows.cursor->start(number, {wanted.data(), path.count});
  return true;
}

}  // namespace statecut::sql
