// All states of a national database: what is planned, what `statedb cuts` makes, and what single
// runs of the program make. Runs in the long tier.

#include <gtest/gtest.h>

#include <filesystem>

#include "cuts/cuts.h"
#include "run/statetable.h"
#include "support/counts.h"
#include "support/paths.h"
#include "support/process.h"

namespace statecut::test {
namespace {

class National : public testing::Test {
 protected:
  [[nodiscard]] ProcessResult run(const char* program, std::vector<std::string> arguments,
                                  const std::string& input = "") const {
    Command command;
    command.program = program;
    command.arguments = std::move(arguments);
    command.input = input;
    command.environment = {{"SOURCE_DATE_EPOCH", "1500000000"}};
    command.folder = folder_.path();
    command.timeoutSeconds = 1200;
    return runProcess(command);
  }

  TempDir folder_;
};

TEST_F(National, StatesAreAsPlannedAndAsSingleRunsMakeThem) {
  if (!longRun()) return;
  ASSERT_EQ(run(kStatedb, {"build", "--profile", "national", "--out", "."}).exitStatus, 0);
  const ProcessResult many =
      run(kStatedb, {"cuts", "--ref", "city.dir", "--rng", "zip4us.dir", "--out", "out", "--each"});
  ASSERT_EQ(many.exitStatus, 0) << many.err;
  verify::Pair source;
  std::string error;
  ASSERT_TRUE(
      cuts::openSource(folder_.file("city.dir"), folder_.file("zip4us.dir"), source, error));
  std::uint64_t compared = 0;
  for (const char* state : abvstates) {
    SCOPED_TRACE(state);
    ASSERT_EQ(run(kStatecut, {}, std::string(state) + "\n").exitStatus, 0);
    const auto ref = readWholeFile(folder_.file("city.sc"));
    const auto rng = readWholeFile(folder_.file("zip4us.sc"));
    const plan::Plan plan = plan::make(source, {state});
    EXPECT_EQ(plan.referenceBytes, ref->size());
    EXPECT_EQ(plan.rangeBytes(), rng->size());
    const std::string product = folder_.file("out") + "/" + state;
    EXPECT_EQ(std::filesystem::exists(product), plan.zips > 0);
    if (plan.zips > 0) {
      EXPECT_TRUE(readWholeFile(product + "/city.sc") == ref);
      EXPECT_TRUE(readWholeFile(product + "/zip4us.sc") == rng);
    }
    ++compared;
  }
  addCount("states of a national database, planned and cut both ways", compared);
}

}  // namespace
}  // namespace statecut::test
