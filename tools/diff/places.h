#pragma once
// ZIP codes and cities of two releases.

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "diff/changes.h"
#include "diff/release.h"

namespace statecut::diff {

struct Comparison {
  const Release& before;
  const Release& after;
  std::vector<std::string> states;  // empty: all
  bool byCity = false;              // how ZIP codes have their states, see Release::stateOf
  std::unordered_map<std::string_view, std::string_view> renamed = {};  // old name -> new name

  // Whether the state was asked for; whether that of a ZIP code was, as far as the release knows
  // it.
  bool wants(std::string_view state) const;
  bool wantsZip(const Release& release, std::uint32_t zipKey) const;
  // The name of a city of `before` in `after`.
  std::string_view nameAfter(std::string_view city) const;
};

// First the cities: what is renamed decides which ZIP codes moved. A city that is gone is renamed
// when a new one of the same state has its ZIP codes, more than half of the ones of either.
void compareCities(Comparison& comparison, Changes& changes);
void compareZips(const Comparison& comparison, Changes& changes);

}  // namespace statecut::diff
