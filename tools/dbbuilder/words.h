#pragma once
// Names and keys made from words: street and firm names, other spellings, phonetic keys.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace statecut::builder {

inline constexpr std::uint32_t minStreets = 8;
inline constexpr std::uint32_t maxStreets = 100000;
inline constexpr std::uint32_t maxFirms = 50000;

// Distinct names in ascending order; which ones follows from the seed. The first `minStreets`
// street names are always there: they make single and ambiguous variations.
std::vector<std::string> makeStreetNames(std::uint32_t count, std::uint64_t seed);  // at most 28
std::vector<std::string> makeFirmNames(std::uint32_t count, std::uint64_t seed);    // at most 40

// The other spelling of a place (SAINT ALBANS / ST ALBANS) in at most 28 characters, if any.
std::optional<std::string> otherSpelling(std::string_view name);

// The postal short form of a street name: MOUNT PINE and MT PINE are both MT PINE.
std::string standardForm(std::string_view name);

// First letter, then the classes of the consonants that follow: at most `most` characters.
std::string phoneticKey(std::string_view name, std::size_t most);

}  // namespace statecut::builder
