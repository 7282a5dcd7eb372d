// `statedb plan` against the program on random database pairs, odd and damaged ones too: sizes to
// the byte.
//
// STATECUT_CUT_RUNS and STATECUT_CUT_SEED as for the second derivation.

#include <gtest/gtest.h>

#include "dbfiles/controlrec.h"
#include "plan/plan.h"
#include "support/counts.h"
#include "support/paths.h"
#include "support/process.h"
#include "support/randomdb.h"
#include "verify/cutchecks.h"

namespace statecut::test {
namespace {

constexpr int kPairShards = 10;

// The states that random pairs are made of, and one that none has.
const std::vector<std::string> kChoice = {"AA", "AE", "AK", "AP", "CA", "GU", "NY",
                                          "OK", "PR", "TX", "VT", "WY", "UM"};

std::vector<std::string> someStates(builder::Random& random) {
  std::vector<std::string> states(random.between(1, 6));
  for (std::string& state : states) state = pick(kChoice, random);
  return states;
}

struct Compared {
  bool compared = false;
  std::string difference;
};

class Trial {
 public:
  explicit Trial(std::uint64_t seed) : made_(makeRandomCase(seed)) {
    builder::Random random(seed ^ 0x706C616E);
    states_ = someStates(random);
  }

  Compared run() {
    Compared result;
    if (!made_.ref || !made_.rng) return result;
    writeWholeFile(folder_.file("city.dir"), *made_.ref);
    writeWholeFile(folder_.file("zip4us.dir"), *made_.rng);
    std::string error;
    const auto source =
        verify::Pair::open(folder_.file("city.dir"), folder_.file("zip4us.dir"), error);
    if (!error.empty() || !verify::sourceProblem(source).empty() || !cut()) return result;
    result.compared = true;
    const plan::Plan plan = plan::make(source, states_);
    compare("reference file", plan.referenceBytes, readWholeFile(folder_.file("city.sc"))->size());
    compare("range file", plan.rangeBytes(), readWholeFile(folder_.file("zip4us.sc"))->size());
    compareCounts(plan);
    result.difference = difference_;
    return result;
  }

  [[nodiscard]] const std::string& shape() const { return made_.shape; }

 private:
  bool cut() {
    Command command;
    command.program = kStatecut;
    for (const std::string& state : states_) command.input += state + "\n";
    command.folder = folder_.path();
    return runProcess(command).exitStatus == 0;
  }

  void compare(const char* what, std::uint64_t planned, std::uint64_t found) {
    if (planned != found)
      difference_ += std::string(what) + ": planned " + std::to_string(planned) + ", the cut has " +
                     std::to_string(found) + "\n";
  }

  void compareCounts(const plan::Plan& plan) {
    std::string error;
    const auto cut = verify::Pair::open(folder_.file("city.sc"), folder_.file("zip4us.sc"), error);
    if (!error.empty()) return compare(error.c_str(), 0, 1);
    compare("cities", plan.cities + 1, cut.ref().get(RefControlRec::cityNamesCount));
    const auto index = cut.table(verify::TableId::ZipIndex);
    std::uint64_t zips = 0;
    for (std::uint64_t zip = 0; zip < verify::kZipIndexEntries; ++zip)
      zips += verify::number16(index, zip) != 0 ? 1 : 0;
    compare("ZIP codes", plan.zips, zips);
  }

  RandomCase made_;
  std::vector<std::string> states_;
  TempDir folder_;
  std::string difference_;
};

class PlanOfRandomPairs : public testing::TestWithParam<int> {};

TEST_P(PlanOfRandomPairs, IsTheSizeOfTheCutToTheByte) {
  const std::uint64_t first = envNumber("STATECUT_CUT_SEED", 1);
  const std::uint64_t runs = envNumber("STATECUT_CUT_RUNS", 300);
  std::uint64_t compared = 0;
  for (auto i = static_cast<std::uint64_t>(GetParam()); i < runs; i += kPairShards) {
    Trial trial(first + i);
    const Compared result = trial.run();
    compared += result.compared ? 1 : 0;
    EXPECT_EQ(result.difference, "")
        << "seed " << first + i << ": " << trial.shape() << "\nrerun: STATECUT_CUT_RUNS=1 "
        << "STATECUT_CUT_SEED=" << first + i << " test_cut --gtest_filter='*Plan*'";
  }
  if (runs >= 10 * kPairShards) {
    EXPECT_GT(compared, runs / kPairShards / 4);
  }
  addCount("plans compared with their cuts", compared);
}

INSTANTIATE_TEST_SUITE_P(Shard, PlanOfRandomPairs, testing::Range(0, kPairShards));

}  // namespace
}  // namespace statecut::test
