#pragma once
// Oddities: each makes one thing of a valid model unusual, or plainly wrong, but still defined.

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "support/randomdb.h"

namespace statecut::test {

using States = std::vector<std::string>;

struct Oddity {
  const char* name;
  void (*apply)(builder::Model& model, const States& states, builder::Random& random);
  bool clears = false;  // empties a table: goes after all that look into tables
};

// The families.
const std::vector<Oddity>& zipOddities();
const std::vector<Oddity>& cityOddities();
const std::vector<Oddity>& multiZipOddities();
const std::vector<Oddity>& indexOddities();
const std::vector<Oddity>& recordOddities();

inline std::uint32_t sizeOf(std::size_t size) { return static_cast<std::uint32_t>(size); }

template <typename T>
T* anyRecord(std::vector<T>& from, builder::Random& random) {
  return from.empty() ? nullptr : &from[random.below(sizeOf(from.size()))];
}

template <typename T>
void swapAny(std::vector<T>& in, builder::Random& random) {
  if (in.size() > 1) std::swap(*anyRecord(in, random), *anyRecord(in, random));
}

inline void patch(builder::Model& model, std::uint32_t offset, std::uint32_t value) {
  model.words.push_back({offset, value});
}

inline std::uint32_t anyOf(std::initializer_list<std::uint32_t> values, builder::Random& random) {
  return *(values.begin() + random.below(sizeOf(values.size())));
}

}  // namespace statecut::test
