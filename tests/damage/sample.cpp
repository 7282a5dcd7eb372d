#include "sample.h"

#include "dbbuilder/rangefile.h"
#include "dbbuilder/writer.h"

namespace statecut::test {

PairImage imageOf(const builder::Model& model) {
  return {builder::referenceFile(model).bytes, builder::rangeFile(model.range)};
}

const PairImage& microPair() {
  static const PairImage pair = imageOf(microModel());
  return pair;
}

std::uint64_t seed() { return envNumber("STATECUT_DAMAGE_SEED", 1); }

bool hostile(const PairImage& pair, const Damages& damages, const Damage& damage) {
  constexpr std::uint64_t kHostile = 64U << 20;
  return prescribedBytes(pair, damages, damage) > kHostile;
}

}  // namespace statecut::test
