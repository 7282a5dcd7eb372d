// The program against the second derivation of the cut, on random database pairs.
//
// STATECUT_CUT_RUNS: number of random pairs (300); STATECUT_CUT_SEED: the first seed (1);
// STATECUT_CUT_KEEP: folder that keeps the files of the last pair.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "support/cutcomparison.h"
#include "support/randomdb.h"

namespace statecut::test {
namespace {

constexpr int kShards = 10;

std::uint64_t setting(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text != nullptr && *text != '\0' ? std::strtoull(text, nullptr, 10) : otherwise;
}

// Each shard takes every tenth seed, so that shards can run side by side.
class SecondCut : public testing::TestWithParam<int> {
 protected:
  template <typename Check>
  void forEachSeed(Check check) {
    const std::uint64_t first = setting("STATECUT_CUT_SEED", 1);
    const std::uint64_t runs = setting("STATECUT_CUT_RUNS", 300);
    for (auto i = static_cast<std::uint64_t>(GetParam()); i < runs; i += kShards) {
      const std::string difference = check(first + i);
      if (difference.empty()) continue;
      ADD_FAILURE() << difference << "rerun: STATECUT_CUT_RUNS=1 STATECUT_CUT_SEED=" << first + i
                    << " test_cut";
      if (++failures_ == kFailuresShown) return;
    }
  }

 private:
  static constexpr int kFailuresShown = 5;
  int failures_ = 0;
};

std::string described(const RandomCase& made, const std::string& difference) {
  if (difference.empty()) return {};
  return "seed " + std::to_string(made.seed) + ": " + made.shape + "\n" + difference;
}

TEST_P(SecondCut, AgreesWithTheProgramByteForByte) {
  forEachSeed([](std::uint64_t seed) {
    const RandomCase made = makeRandomCase(seed);
    return described(made, compareResults(runBoth(made)));
  });
}

TEST_P(SecondCut, AgreesWithTheLogLineByLine) {
  forEachSeed([](std::uint64_t seed) {
    RandomCase made = makeRandomCase(seed);
    // Half of the pairs at level 5, so that every line is seen; the others at all levels.
    made.logLevel = seed % 2 == 0 ? 5 : static_cast<int>(seed / 2 % 6);
    return described(made, compareLog(runBoth(made)));
  });
}

INSTANTIATE_TEST_SUITE_P(Shard, SecondCut, testing::Range(0, kShards));

}  // namespace
}  // namespace statecut::test
