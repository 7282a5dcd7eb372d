#include "cut/rangeplan.h"

#include <utility>
#include <vector>

#include "base/stream.h"
#include "cut/blockcopy.h"
#include "cut/guards.h"
#include "unit/cut/cutbench.h"

namespace {

using namespace statecut;
using cutbench::Bytes;
using cutbench::pattern;
using cutbench::slice;

using Partition = std::pair<std::uint32_t, std::uint32_t>;  // RBA, bytes

class Plan : public cutbench::CutBench {
 protected:
  void start(const Bytes& source) {
    source_ = source;
    openSources(source, source);
    openOutputs();
  }
  static void run(const std::vector<Partition>& partitions) {
    RangePlan plan;
    for (const auto& [rba, bytes] : partitions) plan.add(rba, bytes);
    for (const auto& [rba, bytes] : partitions) EXPECT_EQ(plan.copy(rba, bytes), 0);
  }
  // What the block copier makes of them, one by one, and the reads that it counts.
  std::pair<Bytes, std::int32_t> blockByBlock(const std::vector<Partition>& partitions) {
    start(source_);
    proc.stats->reads = 0;
    for (const auto& [rba, bytes] : partitions) copyEntryPoint(rba, bytes);
    return {writtenRange(), proc.stats->reads};
  }
  void expectAsBlockByBlock(const std::vector<Partition>& partitions) {
    const auto [bytes, reads] = blockByBlock(partitions);
    start(source_);
    proc.stats->reads = 0;
    run(partitions);
    EXPECT_EQ(writtenRange(), bytes);
    EXPECT_EQ(proc.stats->reads, reads);
  }
  Bytes source_;
};

TEST_F(Plan, NeighboursAndStrangersComeOutInTheirOrder) {
  source_ = pattern(2'000'000, 1);
  expectAsBlockByBlock({{700'001, 40'000},
                        {740'001, 100},
                        {740'101, 600'000},
                        {3, 12},
                        {15, 90'000},
                        {90'015, 1},
                        {1'900'000, 99'999},
                        {1'900'000, 99'999},
                        {0, 2'000'000}});
}

TEST_F(Plan, PartitionPastTheEndOfTheSourceIsFilledBlockByBlock) {
  source_ = pattern(100'000, 2);
  expectAsBlockByBlock({{10'000, 50'000},
                        {60'000, 45'000},  // 5,000 bytes too long
                        {60'000, 40'000},
                        {0xFFFFFF00, 40'000},
                        {10'000, 80'000}});
}

TEST_F(Plan, SizesThatCopyNothingAreLeftOut) {
  source_ = pattern(100'000, 3);
  expectAsBlockByBlock({{0, 0}, {0, 40'000}, {40'000, 0x80000000}, {40'000, 60'000}});
}

TEST_F(Plan, PartitionThatWasNotPlannedIsCopiedAllTheSame) {
  start(pattern(100'000, 4));
  RangePlan plan;
  plan.add(0, 50'000);
  EXPECT_EQ(plan.copy(50'000, 100), 0);
  EXPECT_EQ(writtenRange(), slice(source_, 50'000, 100));
}

TEST_F(Plan, FailedWriteIsSaidOfThePartitionThatMeetsIt) {
  start(pattern(200'000, 5));
  streamClose(newRangeDb);
  newRangeDb = streamOpen("/dev/full", "wb");
  ASSERT_NE(newRangeDb, nullptr);
  RangePlan plan;
  plan.add(0, 100'000);
  plan.add(100'000, 100'000);
  testing::internal::CaptureStdout();
  EXPECT_EQ(plan.copy(0, 100'000), -1);
  EXPECT_TRUE(inError(newRangeDb));
  EXPECT_EQ(plan.copy(100'000, 100'000), -1);
  const std::string said = testing::internal::GetCapturedStdout();
  EXPECT_NE(said.find("Error during write file in copyEntryPoint\nrba = 100000, bytes = 100000\n"),
            std::string::npos);
}

}  // namespace
