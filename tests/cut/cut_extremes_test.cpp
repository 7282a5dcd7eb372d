// Counts at the edges of their words: too heavy for the random pairs, one run each.

#include <gtest/gtest.h>

#include <string>

#include "dbbuilder/rangefile.h"
#include "dbbuilder/writer.h"
#include "support/cutcomparison.h"
#include "support/randomdb.h"

namespace statecut::test {
namespace {

// The random model of seed 1 with its list of states, all of them selected, at level 5.
struct Extreme {
  std::vector<std::string> states;
  builder::Model model;

  Extreme() {
    builder::Random random(1);
    model = randomModel(random, states);
  }

  [[nodiscard]] RandomCase made() const {
    RandomCase result;
    result.ref = builder::referenceFile(model).bytes;
    result.rng = builder::rangeFile(model.range);
    result.stateText = "";
    result.logLevel = 5;
    result.stamp = 1;
    return result;
  }
};

void expectNoDifference(const RandomCase& made, int exitStatus) {
  const ComparedRun run = runBoth(made);
  EXPECT_EQ(run.process.exitStatus, exitStatus);
  EXPECT_EQ(compareResults(run) + compareLog(run), "");
}

TEST(CutExtremes, MoreZipRecordsThanAnIndexEntryCanName) {
  Extreme extreme;
  expectNoDifference(extreme.made(), 0);
  // Position 65536 is stored as 0, position 65537 as 1.
  builder::ZipRecord empty;
  empty.zip = 100000;
  extreme.model.zips.resize(65538, empty);
  extreme.model.zipBytes.resize(65538, {extreme.states.front(), {}, {}, {}});
  extreme.model.zips[65536].zip = 11111;
  extreme.model.zips[65537].zip = 22222;
  extreme.model.zipIndex.emplace(100000);
  expectNoDifference(extreme.made(), 0);
}

TEST(CutExtremes, CityTableTooLargeForMemoryIsLeftOut) {
  Extreme extreme;
  expectNoDifference(extreme.made(), 0);
  extreme.model.words.push_back({188, 60000000});
  expectNoDifference(extreme.made(), 0);
}

TEST(CutExtremes, MultiZipTablesTooLargeForMemoryAreLeftOut) {
  Extreme extreme;
  expectNoDifference(extreme.made(), 0);
  extreme.model.words.push_back({256, 80000000});
  expectNoDifference(extreme.made(), 0);
}

}  // namespace
}  // namespace statecut::test
