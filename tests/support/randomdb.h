#pragma once
// Small random database pairs and state lists: a function of the seed alone. Every shape stays
// defined, however odd: no size in it asks for more than a few MB.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dbbuilder/model.h"
#include "dbbuilder/random.h"

namespace statecut::test {

struct RandomCase {
  std::uint64_t seed = 0;
  std::string shape;  // what is odd about it, in words
  std::optional<std::vector<unsigned char>> ref;
  std::optional<std::vector<unsigned char>> rng;
  bool statesFromFile = false;
  std::optional<std::string> stateText;  // none: the state file is missing
  int logLevel = 3;
  std::uint32_t stamp = 0;  // for SOURCE_DATE_EPOCH
};

RandomCase makeRandomCase(std::uint64_t seed);

// The parts, in the order in which makeRandomCase uses them.

// A valid pair over some states; `states` receives them, sorted.
builder::Model randomModel(builder::Random& random, std::vector<std::string>& states);

// Makes the model odd in one to four ways; returns their names.
std::string makeOdd(builder::Model& model, const std::vector<std::string>& states,
                    builder::Random& random);

// Damages finished files in at most one way each; returns what was done.
std::string damageFiles(RandomCase& made, builder::Random& random);

// A state list as a user might give it; returns what kind of list it is.
std::string chooseStates(RandomCase& made, const std::vector<std::string>& states,
                         builder::Random& random);

template <typename T>
const T& pick(const std::vector<T>& from, builder::Random& random) {
  return from[random.below(static_cast<std::uint32_t>(from.size()))];
}

}  // namespace statecut::test
