#pragma once
// Where the names that a cut renumbers stand in the hash of its source: derived once, for all of
// the source's cuts.

#include <cstdint>
#include <limits>
#include <vector>

#include "verify/pair.h"

namespace statecut::verify {

struct HashPlaces {
  // The offset of the number of the one entry that a search for the name can end at, in the hash
  // table with the overflow table behind it; or one of these two.
  using Place = std::uint32_t;
  static constexpr Place kNone = std::numeric_limits<Place>::max();  // no search finds the name
  static constexpr Place kSearch = kNone - 1;                        // what the numbers say decides

  std::vector<Place> cities;     // by position of the city name
  std::vector<Place> phonetics;  // the same of city phonetic keys
};

HashPlaces findHashPlaces(const Pair& source);

// The source's hash table with its overflow table behind it, the number of each name that is found
// put as a map of positions says, 0 for a name that a cut drops.
std::vector<unsigned char> renumberedHash(const Pair& source, const HashPlaces& places,
                                          const std::vector<std::uint32_t>& cities,
                                          const std::vector<std::uint32_t>& phonetics);

}  // namespace statecut::verify
