// Failures whose status and text are fixed: of the state list, of a name, and of the tables that a
// cut goes on without.

#include <set>

#include "faults.h"
#include "support/childcut.h"

namespace statecut::test {
namespace {

class RunFaults : public testing::Test {
 protected:
  RunFaults() {
    writeWholeFile(folder_.file("city.dir"), microPair().ref);
    writeWholeFile(folder_.file("zip4us.dir"), microPair().rng);
    const std::string states = "TX\nOK\n";
    writeWholeFile(folder_.file("states"), {states.begin(), states.end()});
  }
  int status(const FaultPlan& plan) {
    removeOutputs(folder_);
    const ChildCut run = runChildCut(folder_, 3, [&] {
      allowMaps(maps_);
      armFaults(plan);
    });
    EXPECT_EQ(run.signal, 0);
    return run.status;
  }
  [[nodiscard]] std::string text(const char* name) const {
    return readTextFile(folder_.file(name));
  }

  TempDir folder_;
  bool maps_ = true;
};

constexpr char kNoStateFile[] = "Could not open state file: ";

TEST_F(RunFaults, StateFileThatReadsShortOrNotAtAllIsMinusEight) {
  ASSERT_EQ(status({}), 0);
  for (const FaultPlan& plan : {FaultPlan{FaultKind::kRead, 1, FaultMode::kNothing, 0},
                                FaultPlan{FaultKind::kRead, 1, FaultMode::kOnce, EIO}}) {
    EXPECT_EQ(status(plan), 248) << described(plan);
    EXPECT_NE(text("err").find(kNoStateFile), std::string::npos) << text("err");
    EXPECT_FALSE(readWholeFile(folder_.file("city.sc")));
  }
}

TEST_F(RunFaults, NameWithoutMemoryEndsTheRunWithItsMessage) {
  ASSERT_EQ(status({}), 0);
  EXPECT_EQ(status({FaultKind::kAllocate, 1, FaultMode::kOnce, ENOMEM}), 255);
  EXPECT_EQ(text("err"), "statecut: out of memory\n");
  EXPECT_FALSE(readWholeFile(folder_.file("city.sc")));
}

TEST_F(RunFaults, TableOfTheCutWithoutMemoryIsLoggedAndTheFinishedRunEndsInMinusOne) {
  maps_ = false;  // each table has its own memory
  ASSERT_EQ(status({}), 0);
  const std::uint32_t blocks = callsOf(FaultKind::kAllocate);
  const std::string lost = "20001;Mem Alloc Err;Could not allocate memory for ";
  std::multiset<std::string> tables;
  for (std::uint32_t n = 1; n <= blocks; ++n) {
    const int ended = status({FaultKind::kAllocate, n, FaultMode::kOnce, ENOMEM});
    const std::optional<FileBytes> rng = readWholeFile(folder_.file("zip4us.sc"));
    if (!rng || rng->size() < 624 || text("log").find(lost) == std::string::npos) continue;
    const std::string log = text("log");
    const std::size_t at = log.find(lost) + lost.size();
    tables.insert(log.substr(at, log.find('\n', at) - at));
    EXPECT_EQ(ended, 255) << n;
    EXPECT_EQ(log.find(";ERR;"), log.rfind(";ERR;")) << log;
    EXPECT_NE(log.find("\nEnd Time: "), std::string::npos);
  }
  EXPECT_EQ(tables, (std::multiset<std::string>{"City Data.", "City Multiple Zip RBAs.",
                                                "Zip Finance Multi Zip Data.", "Zip Code Data.",
                                                "Zip Code Index."}));
}

}  // namespace
}  // namespace statecut::test
