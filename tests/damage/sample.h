#pragma once
// The tiny pair that is damaged, and which of its damages a run tries.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "damages.h"
#include "dbbuilder/random.h"
#include "support/counts.h"

namespace statecut::test {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kSanitized = __has_feature(address_sanitizer);
#else
inline constexpr bool kSanitized = false;
#endif

PairImage imageOf(const builder::Model& model);
const PairImage& microPair();

std::uint64_t seed();  // STATECUT_DAMAGE_SEED

// A damage to a count that makes some table larger than 64 MiB.
bool hostile(const PairImage& pair, const Damages& damages, const Damage& damage);

// How many damages: one in `every` in the long tier, `quick` of them otherwise.
struct Share {
  std::size_t every;
  std::size_t quick;
};

// Positions of the damages that `wanted` takes and the seed chooses; of these, the shard's part.
template <typename Wanted>
std::vector<std::size_t> choose(const Damages& damages, std::size_t shard, std::size_t shards,
                                Share share, Wanted&& wanted) {
  std::vector<std::size_t> all;
  for (std::size_t i = 0; i < damages.list.size(); ++i)
    if (wanted(damages.list[i])) all.push_back(i);
  if (std::getenv("STATECUT_DAMAGE") != nullptr)  // one of them, by name: Damager finds it
    return shard == 0 ? all : std::vector<std::size_t>{};
  const std::size_t every =
      longRun() ? share.every : std::max<std::size_t>(1, all.size() / share.quick);
  builder::Random random(seed());
  std::vector<std::size_t> chosen;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const bool taken = random.below(static_cast<std::uint32_t>(every)) == 0;
    if (taken && i % shards == shard) chosen.push_back(all[i]);
  }
  return chosen;
}

}  // namespace statecut::test
