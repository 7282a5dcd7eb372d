// The laws of a cut on random databases.
//
// STATECUT_LAW_RUNS: number of sound and of odd databases (each: 16, long 1,004; under the address
// sanitizer 4 and 60);
// STATECUT_LAW_SEED: the first seed (1).

#include <gtest/gtest.h>

#include "dbbuilder/random.h"
#include "laws/laws.h"
#include "support/counts.h"
#include "support/randomdb.h"

namespace statecut::test {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
constexpr bool kSanitized = __has_feature(address_sanitizer);
#else
constexpr bool kSanitized = false;
#endif

constexpr std::uint64_t kShards = 4;
constexpr std::uint64_t kQuickRuns = kSanitized ? 4 : 16;
constexpr std::uint64_t kLongRuns = kSanitized ? 60 : 1004;
constexpr int kFailuresShown = 3;

constexpr Variant kVariants[] = {
    {Mode::kMemory, 0, 0},  {Mode::kDisk, 0, 0},    {Mode::kDisk, 64, 1}, {Mode::kDisk, 64, 8},
    {Mode::kDisk, 4096, 1}, {Mode::kDisk, 4096, 8}, {Mode::kFirst, 0, 0}};

using Lawbook = std::vector<std::pair<const char*, std::string>>;

class Laws : public testing::TestWithParam<std::uint64_t> {
 protected:
  template <typename Check>
  void forEachSeed(Check check) {
    const std::uint64_t first = envNumber("STATECUT_LAW_SEED", 1);
    const std::uint64_t runs = envNumber("STATECUT_LAW_RUNS", longRun() ? kLongRuns : kQuickRuns);
    int failures = 0;
    std::uint64_t done = 0;
    for (std::uint64_t i = GetParam(); i < runs; i += kShards, ++done) {
      for (const auto& [law, breach] : check(first + i)) {
        if (breach.empty()) continue;
        ADD_FAILURE() << "seed " << first + i << ": " << law << "\n"
                      << breach << "rerun: STATECUT_LAW_RUNS=1 STATECUT_LAW_SEED=" << first + i
                      << " test_laws";
        ++failures;
      }
      if (failures >= kFailuresShown) return;
    }
    addCount("random databases under the laws", done);
  }
};

// Some of the states, at least one.
States someOf(const States& states, builder::Random& random) {
  States chosen;
  for (const std::string& state : states)
    if (random.percent(50)) chosen.push_back(state);
  if (chosen.empty()) chosen.push_back(states.empty() ? "TX" : pick(states, random));
  return chosen;
}

TEST_P(Laws, HoldOnSoundDatabases) {
  forEachSeed([](std::uint64_t seed) -> Lawbook {
    const Source source = randomSource(seed);
    builder::Random random(seed);
    const States list = someOf(source.states, random);
    const CutRun run = cut(source.pair, list);
    if (run.status != 0 || !run.harm.empty())
      return {{"a sound pair can be cut",
               "  status " + std::to_string(run.status) + "\n" + run.harm + run.log + run.err}};
    const Selection chosen(source, list);
    const Variant& variant = kVariants[seed % std::size(kVariants)];
    return {
        {"kept ZIP codes keep their partitions", keptZipCodesKeepTheirPartitions(chosen, run.made)},
        {"shared partitions are kept", sharedPartitionsAreKept(chosen, run.made)},
        {"the names are those of the states", namesAreThoseOfTheStates(chosen, run.made)},
        {"kept answers stay, in memory", keptAnswersStay(chosen, run.made, kVariants[0])},
        {"kept answers stay, in a variant", keptAnswersStay(chosen, run.made, variant)},
        {"the variants agree", variantsAgree(run.made, variant, seed)},
        {"all states keep everything", allStatesKeepEverything(source)},
        {"a cut is not cut again", cutIsNotCutAgain(run.made, list)},
        {"a union keeps what either keeps",
         unionKeepsWhatEitherKeeps(source, list, someOf(source.states, random))},
        {"repeats add to the names by state alone",
         repeatsAddToTheNamesByStateAlone(source.pair, list)},
    };
  });
}

TEST_P(Laws, OfTheListHoldOnOddDatabases) {
  forEachSeed([](std::uint64_t seed) -> Lawbook {
    const RandomCase made = makeRandomCase(seed);
    const Pair pair{made.ref.value_or(FileBytes()), made.rng.value_or(FileBytes())};
    builder::Random random(seed);
    const States list = someOf({"AA", "AE", "CA", "NY", "OK", "TX", "VT"}, random);
    return {
        {"order and case of the list do not matter", orderAndCaseDoNotMatter(pair, list, seed)},
        {"repeats add to the names by state alone", repeatsAddToTheNamesByStateAlone(pair, list)},
        {"runs with one stamp are equal", runsWithOneStampAreEqual(pair, list)},
        {"names and folders change the log alone", namesAndFoldersChangeTheLogAlone(pair, list)},
    };
  });
}

TEST(LawExceptions, EachOccurs) {
  constexpr std::uint64_t kBetweenThemAll[] = {4, 10};
  Source none = randomSource(1);
  none.model.zips.clear();
  none.model.zipBytes.clear();
  const CutRun run = cut(pairOf(none.model), none.states);
  ASSERT_EQ(run.status, 0) << run.log;
  EXPECT_EQ(cutIsNotCutAgain(run.made, none.states), "");
  for (const std::uint64_t seed : kBetweenThemAll) {
    const Source source = randomSource(seed);
    const States list = {source.states.front()};
    const CutRun made = cut(source.pair, list);
    ASSERT_EQ(made.status, 0) << seed << made.log;
    const Selection chosen(source, list);
    EXPECT_EQ(keptZipCodesKeepTheirPartitions(chosen, made.made), "") << seed;
    EXPECT_EQ(sharedPartitionsAreKept(chosen, made.made), "") << seed;
    EXPECT_EQ(namesAreThoseOfTheStates(chosen, made.made), "") << seed;
    EXPECT_EQ(keptAnswersStay(chosen, made.made, kVariants[0]), "") << seed;
    EXPECT_EQ(allStatesKeepEverything(source), "") << seed;
    EXPECT_EQ(repeatsAddToTheNamesByStateAlone(source.pair, list), "") << seed;
  }
  for (std::size_t i = 0; i < kExceptions; ++i)
    EXPECT_GT(exceptionTally()[i], 0U) << "never: " << kExceptionReasons[i];
}

INSTANTIATE_TEST_SUITE_P(Shard, Laws, testing::Range<std::uint64_t>(0, kShards));

}  // namespace
}  // namespace statecut::test
