#pragma once
// The arguments of an operation: what kinds there are and how they are made from JSON and from
// command-line text.

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "format/latin1.h"
#include "lookup/cities.h"

namespace statecut::query {

enum class ArgKind : std::uint8_t {
  kNumber,   // 32 bits, signed or not as the parameter is
  kState,    // exactly two characters
  kText,     // counted, may be empty
  kPattern,  // ends at its first NUL
  kMatcher,  // contains, starts, ends
  kTable,    // 3 or 4
  kScfKeys   // list of 16-bit keys
};

// How an argument of the kind is written, for people.
const char* kindText(ArgKind kind);

// Numbers are integers of this range, taken modulo 2^32 (lists: 2^16).
inline constexpr std::int64_t kLeastNumber = -2147483648LL;
inline constexpr std::int64_t kMostNumber = 4294967295LL;

// The member of the kind is set.
struct Arg {
  std::uint32_t number = 0;
  std::string text;
  NameMatcher matcher = nullptr;
  std::vector<std::uint16_t> keys;

  [[nodiscard]] std::int32_t asSigned() const { return static_cast<std::int32_t>(number); }
  [[nodiscard]] std::int32_t length() const { return static_cast<std::int32_t>(text.size()); }
};

// Null when it worked, else what is wrong.
const char* argFromJson(const nlohmann::json& value, ArgKind kind, Arg& arg);
// Numbers are decimal, lists separated by commas; text is taken byte by byte.
const char* argFromText(std::string_view text, ArgKind kind, Arg& arg);

using format::bytesOfUtf8;

}  // namespace statecut::query
