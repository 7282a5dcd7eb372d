#pragma once
// The calls on a database, in one variant: what differs from the oracle, and which differences
// between memory and file occurred.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "call.h"
#include "databases.h"
#include "differences.h"
#include "variantsession.h"

namespace statecut::test {

struct Tally {
  std::array<std::size_t, kDifferences> occurred{};
  std::array<std::size_t, kOps> calls{};
};

enum class Soundness : std::uint8_t { kSound, kDamaged };

// The first few differences as a text, empty when there are none.
std::string compareAnswers(const Variant& variant, const Database& database,
                           const std::vector<Call>& calls, Soundness soundness, Tally& tally);

}  // namespace statecut::test
