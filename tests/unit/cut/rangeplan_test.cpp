#include "cut/rangeplan.h"

#include <fstream>
#include <utility>
#include <vector>

#include "base/stream.h"
#include "cut/openfiles.h"
#include "cut/rangecopy.h"
#include "unit/cut/cutfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

using Partition = std::pair<std::uint32_t, std::uint32_t>;  // RBA, bytes

class Plan : public CutFixture {
 protected:
  static void run(const std::vector<Partition>& partitions) {
    RangePlan plan(rangePath());
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
  RangePlan plan(rangePath());
  plan.add(0, 50'000);
  EXPECT_EQ(plan.copy(50'000, 100), 0);
  EXPECT_EQ(writtenRange(), slice(source_, 50'000, 100));
}

// A source of more than 4 GiB, of which only the two ends are kept by the disk.
class PlanOfALargeSource : public Plan {
 protected:
  static constexpr std::uint64_t kWrap = std::uint64_t{1} << 32;
  static constexpr std::uint32_t kLead = 100'000;  // before 2^32
  PlanOfALargeSource() : first_(pattern(200'000, 8)), last_(pattern(2 * kLead, 9)) {
    start({});
    std::fstream file(path("source.rng"), std::ios::binary | std::ios::in | std::ios::out);
    file.write(reinterpret_cast<const char*>(first_.data()), 200'000);
    file.seekp(static_cast<std::streamoff>(kWrap - kLead));
    file.write(reinterpret_cast<const char*>(last_.data()), 2 * kLead);
    file.close();
    for (Stream** source : {&proc.files->range, &proc.files->reference}) {
      streamClose(*source);
      *source = streamOpen(path("source.rng").c_str(), "rb");
    }
  }
  // Blocks are read straight on over 2^32; the next one begins behind it, counted from 0.
  [[nodiscard]] Bytes wrapped(std::uint32_t bytes) const {
    const std::uint32_t blocks = (kLead + 4087) / 4088 * 4088;
    Bytes expected = slice(last_, 0, blocks);
    const Bytes rest = slice(first_, blocks - kLead, bytes - blocks);
    expected.insert(expected.end(), rest.begin(), rest.end());
    return expected;
  }
  Bytes first_, last_;
};

TEST_F(PlanOfALargeSource, PartitionThatPasses2To32WrapsWhateverItsSize) {
  run({{static_cast<std::uint32_t>(kWrap - kLead), kLead}});
  EXPECT_EQ(writtenRange(), slice(last_, 0, kLead));
  for (const std::uint32_t bytes : {105'000u, 190'000u}) {
    openOutputs();
    run({{static_cast<std::uint32_t>(kWrap - kLead), bytes}, {0, 40'000}});
    Bytes expected = wrapped(bytes);
    const Bytes next = slice(first_, 0, 40'000);
    expected.insert(expected.end(), next.begin(), next.end());
    EXPECT_EQ(writtenRange(), expected) << bytes;
  }
}

TEST_F(PlanOfALargeSource, TableThatPasses2To32Wraps) {
  EXPECT_EQ(copyPartition(static_cast<std::uint32_t>(kWrap - kLead), kLead), 0);
  EXPECT_EQ(writtenReference(), slice(last_, 0, kLead));
  openOutputs();
  EXPECT_EQ(copyPartition(static_cast<std::uint32_t>(kWrap - kLead), 190'000), 0);
  EXPECT_EQ(writtenReference(), wrapped(190'000));
}

TEST_F(Plan, FailedWriteIsSaidOfThePartitionThatMeetsIt) {
  start(pattern(200'000, 5));
  streamClose(newRangeDb);
  newRangeDb = streamOpen("/dev/full", "wb");
  ASSERT_NE(newRangeDb, nullptr);
  RangePlan plan(rangePath());
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

// What waits in the buffer is written first, and meets the full disk.
TEST_F(Plan, FailedFlushInFrontOfAWindowIsLoggedAsTheFailedWriteThatItIs) {
  start(pattern(200'000, 5));
  streamClose(newRangeDb);
  newRangeDb = streamOpen("/dev/full", "wb");
  ASSERT_EQ(streamWrite(newRangeDb, source_.data(), 624), 624u);
  RangePlan plan(rangePath());
  plan.add(0, 100'000);
  plan.add(100'000, 100'000);
  testing::internal::CaptureStdout();
  EXPECT_EQ(plan.copy(0, 100'000), -1);
  EXPECT_EQ(plan.copy(100'000, 100'000), -1);
  testing::internal::GetCapturedStdout();
  const std::vector<std::string> said = log();
  ASSERT_EQ(said.size(), 1u);
  EXPECT_EQ(said[0].substr(said[0].find(";20006;")),
            ";20006;DB Write Error;Requested bytes: 624, Actual bytes written: 0");
  EXPECT_EQ(said[0].substr(0, 13), "ERR;dbaccess:");
}

TEST_F(Plan, FailedFlushInFrontOfATableIsLoggedTheSame) {
  start(pattern(200'000, 5));
  streamClose(newRefDb);
  newRefDb = streamOpen("/dev/full", "wb");
  ASSERT_EQ(streamWrite(newRefDb, source_.data(), 844), 844u);
  EXPECT_EQ(copyPartition(0, 100'000), 0);
  EXPECT_EQ(copyPartition(0, 100'000), 0);
  const std::vector<std::string> said = log();
  ASSERT_EQ(said.size(), 1u);
  EXPECT_EQ(said[0].substr(said[0].find(";20006;")),
            ";20006;DB Write Error;Requested bytes: 844, Actual bytes written: 0");
}

}  // namespace
