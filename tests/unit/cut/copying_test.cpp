#include <filesystem>

#include "base/stream.h"
#include "cut/blockcopy.h"
#include "cut/openfiles.h"
#include "cut/rangecopy.h"
#include "cut/refcopy.h"
#include "unit/cut/cutfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

class Copying : public CutFixture {};

TEST_F(Copying, EntryPointIsCopiedByteForByteWithoutCounting) {
  start(pattern(20000, 1));
  EXPECT_EQ(copyEntryPoint(100, 10000), 0);
  EXPECT_EQ(writtenRange(), slice(source_, 100, 10000));
  EXPECT_EQ(totalRngBytes, 0u);
}

TEST_F(Copying, ReadsAreCountedPerBlock) {
  start(pattern(20000, 1));
  copyEntryPoint(0, 4088);
  EXPECT_EQ(proc.stats->reads, 1);
  copyEntryPoint(0, 4089);
  EXPECT_EQ(proc.stats->reads, 3);
  copyPartition(0, 8177);
  EXPECT_EQ(proc.stats->reads, 6);
}

TEST_F(Copying, NothingIsCopiedForZeroAndNegativeSizes) {
  start(pattern(5000, 1));
  for (const std::uint32_t bytes : {0u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(copyEntryPoint(0, bytes), 0);
    EXPECT_EQ(copyPartition(0, bytes), 0);
  }
  EXPECT_TRUE(writtenRange().empty());
  EXPECT_TRUE(writtenReference().empty());
  EXPECT_EQ(totalBytes, 0u);
  EXPECT_EQ(proc.stats->reads, 0);
}

TEST_F(Copying, PartitionIsCopiedAndCounted) {
  start(pattern(9000, 2));
  EXPECT_EQ(copyPartition(10, 5000), 0);
  EXPECT_EQ(copyPartition(6000, 100), 0);
  EXPECT_EQ(totalBytes, 5100u);
  Bytes expected = slice(source_, 10, 5000);
  const Bytes second = slice(source_, 6000, 100);
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(writtenReference(), expected);
}

// Where the source ends, a block keeps the bytes of the block before it, and zeros in the first.
TEST_F(Copying, SourceThatEndsEarlyIsFilledWithTheBlockBefore) {
  start(pattern(5000, 3));
  EXPECT_EQ(copyEntryPoint(0, 8000), 0);
  Bytes expected = slice(source_, 0, 5000);
  const Bytes stale = slice(source_, 5000 - 4088, 8000 - 5000);
  expected.insert(expected.end(), stale.begin(), stale.end());
  EXPECT_EQ(writtenRange(), expected);
  EXPECT_EQ(copyPartition(0, 8000), 0);
  EXPECT_EQ(writtenReference(), expected);
  EXPECT_TRUE(log().empty());
}

TEST_F(Copying, BytesOfAnEarlierCallAreNotCarriedOver) {
  start(pattern(4088, 3));
  copyEntryPoint(0, 100);
  copyEntryPoint(4000, 200);
  Bytes expected = slice(source_, 4000, 88);
  expected.resize(200);
  EXPECT_EQ(slice(writtenRange(), 100, 200), expected);
}

TEST_F(Copying, FailedWriteIsSaidOnStandardOutput) {
  start(pattern(9000, 4));
  Stream* good = newRangeDb;
  newRangeDb = nullptr;
  testing::internal::CaptureStdout();
  EXPECT_EQ(copyEntryPoint(0xFFFFF000, 5000), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Error during write file in copyEntryPoint\nrba = -4096, bytes = 5000\n");
  newRangeDb = good;
}

// A source that cannot seek at all, as a pipe is.
TEST_F(Copying, FailedReadIsSaidOnStandardOutput) {
  start(pattern(100, 4));
  ASSERT_EQ(std::system(("mkfifo " + path("pipe")).c_str()), 0);
  Stream* keepsItOpen = streamOpen(path("pipe").c_str(), "a+");
  streamClose(proc.files->range);
  proc.files->range = streamOpen(path("pipe").c_str(), "rb");
  testing::internal::CaptureStdout();
  EXPECT_EQ(copyEntryPoint(7, 50), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Error during read file in copyEntryPoint\nrba = 7, bytes = 50\n");
  EXPECT_TRUE(writtenRange().empty());
  streamClose(keepsItOpen);
}

TEST_F(Copying, TableOfASourceThatCannotSeekIsReportedAsUnread) {
  start(pattern(200, 4));
  setWord(RefControlRec::cityDataCount, 2);
  EXPECT_EQ(readCityData4SC1(), 0);
  keepTables();
  ASSERT_EQ(std::system(("mkfifo " + path("pipe")).c_str()), 0);
  Stream* keepsItOpen = streamOpen(path("pipe").c_str(), "a+");
  streamClose(proc.files->reference);
  proc.files->reference = streamOpen(path("pipe").c_str(), "rb");
  log();
  EXPECT_EQ(readCityData4SC1(), -2);
  const std::vector<std::string> said = log();
  ASSERT_EQ(said.size(), 2U) << "the size and the failure";
  EXPECT_NE(said[1].find("Could not read Reference db partition: City Data"), std::string::npos)
      << said[1];
  streamClose(keepsItOpen);
}

TEST_F(Copying, ReadErrorEndsTheCopyAndIsNeverReadAgain) {
  start(pattern(100, 4));
  streamClose(proc.files->range);
  proc.files->range = streamOpen(path(".").c_str(), "rb");  // a folder cannot be read
  ASSERT_NE(proc.files->range, nullptr);
  testing::internal::CaptureStdout();
  EXPECT_EQ(copyEntryPoint(0, 50), -1);
  EXPECT_EQ(copyEntryPoint(0, 50), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_TRUE(writtenRange().empty());
  EXPECT_EQ(proc.stats->reads, 1);
}

class RangeCopy : public Copying {
 protected:
  // Three selected ZIP codes, keys 1 to 3 with ZIP codes in descending order.
  RangeCopy() {
    start(pattern(30000, 5));
    setWord(RefControlRec::zipDataCount, 4);
    zips = makeTable<ZipDataRow>(kSlotZipData, 4);
    sizes = makeTable<ZipBytesRow>(kSlotZipBytes, 4);
    makeZipIndex();
    select(10003, 1);
    select(10002, 2);
    select(10001, 3);
    totalRngBytes = 624;
  }
  ZipDataRow* zips;
  ZipBytesRow* sizes;
};

TEST_F(RangeCopy, PassesRunByKindAndZipCode) {
  zips[1].set(ZipDataRow::sfhRba, 1000);
  sizes[1].set(ZipBytesRow::sfhBytes, 5000);
  zips[3].set(ZipDataRow::sfhRba, 7000);
  sizes[3].set(ZipBytesRow::sfhBytes, 100);
  zips[2].set(ZipDataRow::rrRba, 8000);
  sizes[2].set(ZipBytesRow::rrBytes, 10);
  zips[2].set(ZipDataRow::pobRba, 9000);
  sizes[2].set(ZipBytesRow::pobBytes, 65535);
  sizes[2].set(ZipBytesRow::pobBytes, 20);
  EXPECT_EQ(buildZipEntryPoints(), 0);
  EXPECT_EQ(zips[3].get(ZipDataRow::sfhRba), 624u);
  EXPECT_EQ(zips[1].get(ZipDataRow::sfhRba), 724u);
  EXPECT_EQ(zips[2].get(ZipDataRow::pobRba), 5724u);
  EXPECT_EQ(zips[2].get(ZipDataRow::rrRba), 5744u);
  EXPECT_EQ(totalRngBytes, 5754u);
  Bytes expected = slice(source_, 7000, 100);
  for (const auto& [at, count] : {std::pair{1000, 5000}, {9000, 20}, {8000, 10}}) {
    const Bytes part =
        slice(source_, static_cast<std::size_t>(at), static_cast<std::size_t>(count));
    expected.insert(expected.end(), part.begin(), part.end());
  }
  EXPECT_EQ(writtenRange(), expected);
  EXPECT_TRUE(log().empty());
}

TEST_F(RangeCopy, ZipWithoutPartitionsKeepsItsZeros) {
  EXPECT_EQ(buildZipEntryPoints(), 0);
  EXPECT_TRUE(writtenRange().empty());
  EXPECT_EQ(zips[1].get(ZipDataRow::sfhRba), 0u);
  EXPECT_EQ(totalRngBytes, 624u);
}

TEST_F(RangeCopy, PartitionOfSizeZeroIsWarnedOfAndPointsAtTheEnd) {
  zips[1].set(ZipDataRow::sfhRba, 1000);
  zips[1].set(ZipDataRow::rrRba, 1000);
  zips[1].set(ZipDataRow::pobRba, 1000);
  EXPECT_EQ(buildZipEntryPoints(), 0);
  EXPECT_EQ(zips[1].get(ZipDataRow::sfhRba), 624u);
  EXPECT_EQ(totalRngBytes, 624u);
  EXPECT_EQ(log(), (std::vector<std::string>{"WARN;cutstate:1531;0;Get Bytes;Zp SFH 1",
                                             "WARN;cutstate:1531;0;Get Bytes;Zp POB 1",
                                             "WARN;cutstate:1531;0;Get Bytes;Zp RR 1"}));
}

TEST_F(RangeCopy, NegativeSizeIsCountedButNotCopied) {
  zips[1].set(ZipDataRow::sfhRba, 1000);
  sizes[1].set(ZipBytesRow::sfhBytes, 0xFFFFFFF0);
  zips[3].set(ZipDataRow::rrRba, 1000);
  sizes[3].set(ZipBytesRow::rrBytes, 4);
  EXPECT_EQ(buildZipEntryPoints(), 0);
  EXPECT_EQ(zips[3].get(ZipDataRow::rrRba), 608u);  // 624 - 16, modulo 2^32
  EXPECT_EQ(writtenRange().size(), 4u);
}

TEST_F(RangeCopy, SharedKeyIsCopiedAgainFromItsNewPlace) {
  select(10004, 3);
  zips[3].set(ZipDataRow::sfhRba, 7000);
  sizes[3].set(ZipBytesRow::sfhBytes, 100);
  EXPECT_EQ(buildZipEntryPoints(), 0);
  EXPECT_EQ(zips[3].get(ZipDataRow::sfhRba), 724u);
  EXPECT_EQ(slice(writtenRange(), 100, 100), slice(source_, 624, 100));
}

// Its first place stands behind that of the ZIP code before, with which it would move together.
TEST_F(RangeCopy, SharedKeyBehindItsNeighbourIsCopiedFromItsNewPlace) {
  start(pattern(200000, 6));
  totalRngBytes = 624;
  select(10004, 3);
  zips[1].set(ZipDataRow::sfhRba, 50000);
  sizes[1].set(ZipBytesRow::sfhBytes, 10000);
  zips[3].set(ZipDataRow::sfhRba, 60000);
  sizes[3].set(ZipBytesRow::sfhBytes, 40000);
  EXPECT_EQ(buildZipEntryPoints(), 0);
  EXPECT_EQ(zips[1].get(ZipDataRow::sfhRba), 40624u);
  EXPECT_EQ(zips[3].get(ZipDataRow::sfhRba), 50624u);
  const Bytes written = writtenRange();
  ASSERT_EQ(written.size(), 90000u);
  EXPECT_EQ(slice(written, 0, 40000), slice(source_, 60000, 40000));
  EXPECT_EQ(slice(written, 40000, 10000), slice(source_, 50000, 10000));
  EXPECT_EQ(slice(written, 50000, 40000), slice(source_, 624, 40000));
}

// Three passes over three ZIP codes; what plans them asks for nothing.
TEST_F(RangeCopy, EachPassTracesItsLookupOfEachZipCodeOnce) {
  zips[1].set(ZipDataRow::sfhRba, 1000);
  sizes[1].set(ZipBytesRow::sfhBytes, 50);
  proc.options->debugSwitch = 'D';
  EXPECT_EQ(buildZipEntryPoints(), 0);
  const std::vector<std::string> records = log();
  EXPECT_EQ(records.size(), 18u);
  for (std::size_t i = 0; i < records.size(); ++i) {
    const std::string verb = i % 2 == 0 ? "Entering" : "Leaving";
    EXPECT_EQ(records[i].substr(records[i].find(";20070;")),
              ";20070;Debug;" + verb + " dbGetZipDataFromKeyIn");
  }
}

TEST_F(RangeCopy, BadKeyStopsAtItsPass) {
  select(50000, 5);
  EXPECT_EQ(buildZipEntryPoints(), -1);
  EXPECT_EQ(log(), (std::vector<std::string>{"ERR;cutstate:1581;0;Build Single Zips;Bad Zip Key"}));
}

TEST_F(RangeCopy, FailedCopyDoesNotStopTheCut) {
  zips[1].set(ZipDataRow::sfhRba, 1000);
  sizes[1].set(ZipBytesRow::sfhBytes, 10);
  Stream* good = newRangeDb;
  newRangeDb = nullptr;
  testing::internal::CaptureStdout();
  EXPECT_EQ(buildZipEntryPoints(), 0);
  EXPECT_NE(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(totalRngBytes, 634u);
  newRangeDb = good;
}

TEST_F(RangeCopy, ReadErrorOfTheSourceStopsTheCut) {
  zips[1].set(ZipDataRow::sfhRba, 1000);
  sizes[1].set(ZipBytesRow::sfhBytes, 10);
  streamClose(proc.files->range);
  proc.files->range = streamOpen(path(".").c_str(), "rb");
  EXPECT_EQ(buildZipEntryPoints(), -1);
}

TEST_F(RangeCopy, SizesAreThoseOfTheKind) {
  sizes[2].set(ZipBytesRow::pobBytes, 40000);
  sizes[2].set(ZipBytesRow::rrBytes, 0x80000001);
  sizes[2].set(ZipBytesRow::sfhBytes, 3);
  EXPECT_EQ(getEntryPointSize(2, kPob), 40000);
  EXPECT_EQ(getEntryPointSize(2, kSfh), 3);
  EXPECT_EQ(getEntryPointSize(2, kRr), -2147483647);
  EXPECT_TRUE(log().empty());
}

TEST_F(RangeCopy, SizeOfAnUnknownKindOrKeyIsZeroWithAWarning) {
  sizes[2].set(ZipBytesRow::sfhBytes, 3);
  ASSERT_EQ(getEntryPointSize(2, kSfh), 3);
  EXPECT_EQ(getEntryPointSize(2, 3), 0);
  EXPECT_EQ(getEntryPointSize(4, kSfh), 0);
  EXPECT_EQ(getEntryPointSize(0xFFFFFFFF, kPob), 0);
  EXPECT_EQ(log(), (std::vector<std::string>{"WARN;cutstate:1531;0;Get Bytes;2",
                                             "WARN;cutstate:1531;0;Get Bytes;Zp SFH 4",
                                             "WARN;cutstate:1531;0;Get Bytes;Zp POB -1"}));
}

}  // namespace
