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
constexpr std::uint64_t kEnoughOddOnes = 8;  // to judge how many of them can be cut
constexpr std::uint64_t kCutsOneIn = 3;

constexpr Variant kVariants[] = {
    {Mode::kMemory, 0, 0},  {Mode::kDisk, 0, 0},    {Mode::kDisk, 64, 1}, {Mode::kDisk, 64, 8},
    {Mode::kDisk, 4096, 1}, {Mode::kDisk, 4096, 8}, {Mode::kFirst, 0, 0}};

using Lawbook = std::vector<std::pair<std::string, std::string>>;

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

// The laws that hold for any pair.
Lawbook lawsOfAnyPair(const Baseline& base, std::uint64_t seed) {
  return {
      {"a run ends and harms no input", runEndsAndHarmsNoInput(base)},
      {"order and case of the list do not matter", orderAndCaseDoNotMatter(base, seed)},
      {"repeats add to the names by state alone", repeatsAddToTheNamesByStateAlone(base)},
      {"the stamp is all that SOURCE_DATE_EPOCH sets", stampIsAllThatTheEpochSets(base)},
      {"names and folders change the log alone", namesAndFoldersChangeTheLogAlone(base)},
  };
}

// The lookups of a cut: in memory and, quick, in one more variant, long, in all of them.
Lawbook lawsOfLookups(const Selection& chosen, const Pair& made, std::uint64_t seed) {
  Lawbook laws;
  for (std::size_t i = 0; i < std::size(kVariants); ++i) {
    if (i != 0 && i != 1 + seed % (std::size(kVariants) - 1) && !longRun()) continue;
    const std::string where = ", variant " + std::to_string(i);
    laws.emplace_back("kept answers stay" + where, keptAnswersStay(chosen, made, kVariants[i]));
    laws.emplace_back("the variants agree" + where, variantsAgree(made, kVariants[i], seed));
  }
  return laws;
}

TEST_P(Laws, HoldOnSoundDatabases) {
  forEachSeed([](std::uint64_t seed) -> Lawbook {
    const Source source = randomSource(seed);
    builder::Random random(seed);
    const States list = someOf(source.states, random);
    const Baseline base(source.pair, list);
    const CutRun& run = base.run;
    if (run.status != 0)
      return {{"a sound pair can be cut",
               "  status " + std::to_string(run.status) + "\n" + run.log + run.err}};
    const Selection chosen(source, list);
    Lawbook laws = {
        {"kept ZIP codes keep their partitions", keptZipCodesKeepTheirPartitions(chosen, run.made)},
        {"shared partitions are kept", sharedPartitionsAreKept(chosen, run.made)},
        {"the names are those of the states", namesAreThoseOfTheStates(chosen, run.made)},
        {"all states keep everything", allStatesKeepEverything(source)},
        {"a cut is not cut again", cutIsNotCutAgain(run.made, list)},
        {"a union keeps what either keeps",
         unionKeepsWhatEitherKeeps(base, someOf(source.states, random))},
    };
    for (auto& law : lawsOfLookups(chosen, run.made, seed)) laws.push_back(std::move(law));
    for (auto& law : lawsOfAnyPair(base, seed)) laws.push_back(std::move(law));
    return laws;
  });
}

// A pair of files that may be as odd as any, and a list of states for it.
struct OddCase {
  explicit OddCase(std::uint64_t seed) {
    const RandomCase made = makeRandomCase(seed);
    pair = {made.ref.value_or(FileBytes()), made.rng.value_or(FileBytes())};
    builder::Random random(seed);
    list = someOf({"AA", "AE", "CA", "NY", "OK", "TX", "VT"}, random);
  }
  Pair pair;
  States list;
};

TEST_P(Laws, OfAnyPairHoldOnOddDatabases) {
  std::uint64_t done = 0;
  std::uint64_t cuts = 0;
  forEachSeed([&](std::uint64_t seed) -> Lawbook {
    const OddCase odd(seed);
    const Baseline base(odd.pair, odd.list);
    ++done;
    if (base.run.status == 0) ++cuts;
    return lawsOfAnyPair(base, seed);
  });
  addCount("odd databases under the laws that can be cut", cuts);
  if (done >= kEnoughOddOnes) {
    EXPECT_GE(cuts * kCutsOneIn, done) << "too many fail alike";
  }
}

// A failure equals any other: the laws of any pair say most where there is a cut.
TEST(OddDatabases, ManyCanBeCut) {
  constexpr std::uint64_t kTried = 16;
  std::uint64_t cuts = 0;
  for (std::uint64_t seed = 1; seed <= kTried; ++seed) {
    const OddCase odd(seed);
    if (cut(odd.pair, odd.list).status == 0) ++cuts;
  }
  EXPECT_GE(cuts * kCutsOneIn, kTried);
  EXPECT_LT(cuts, kTried) << "none is odd enough to fail";
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
    EXPECT_EQ(repeatsAddToTheNamesByStateAlone(Baseline(source.pair, list)), "") << seed;
  }
  for (std::size_t i = 0; i < kExceptions; ++i)
    EXPECT_GT(exceptionTally()[i], 0U) << "never: " << kExceptionReasons[i];
}

INSTANTIATE_TEST_SUITE_P(Shard, Laws, testing::Range<std::uint64_t>(0, kShards));

}  // namespace
}  // namespace statecut::test
