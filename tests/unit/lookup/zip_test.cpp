#include "lookupfixture.h"

namespace statecut::test {

namespace {

using ZipLookup = SmallDatabase;
using Keys = std::vector<std::uint32_t>;
using Lines = std::vector<std::string>;

constexpr std::uint32_t kUntouched = 77;

// First in this file: the memo of the list lookup is process-wide.
TEST_F(ZipLookup, FirstListOnDiskWithStart65535IsTheUntouchedBuffer) {
  word(RefControlRec::multiZipListsCount.at, 65535);
  open();
  EXPECT_EQ(keysOf(dbGetMultiZipsOff(2, 0xFFFF), 2), (Keys{0, 0}));
}

TEST_F(ZipLookup, IndexAcceptsOneTo99999) {
  open();
  load();
  for (const auto lookup : {dbGetZipIndexIn, dbGetZipIndexOff}) {
    EXPECT_EQ(lookup(0), -1);
    EXPECT_EQ(lookup(100000), -1);
    EXPECT_EQ(lookup(-5), -1);
    EXPECT_EQ(lookup(1), 1);
    EXPECT_EQ(lookup(99999), 4);
    EXPECT_EQ(lookup(2), 0);
  }
}

TEST_F(ZipLookup, DataByCodeGivesRecordAndKey) {
  open();
  load();
  for (const auto lookup : {dbGetZipDataIn, dbGetZipDataOff}) {
    std::uint32_t key = kUntouched;
    EXPECT_EQ(lookup(0, &key), nullptr);
    EXPECT_EQ(lookup(100000, &key), nullptr);
    EXPECT_EQ(key, kUntouched);
    EXPECT_EQ(lookup(73302, &key), nullptr);
    EXPECT_EQ(key, 0u);
    const ZipDataRow* record = lookup(73301, &key);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->get(ZipDataRow::zip), 73301u);
    EXPECT_EQ(key, 2u);
  }
}

TEST_F(ZipLookup, KeyAboveTheCountIsRefusedInMemoryAndReadOnDisk) {
  open();
  load();
  std::uint32_t key = kUntouched;
  EXPECT_EQ(dbGetZipDataIn(600, &key), nullptr);
  EXPECT_EQ(key, 6u);
  EXPECT_NE(dbGetZipDataOff(600, &key), nullptr);
}

TEST_F(ZipLookup, DataByKeyAcceptsOneToTheCount) {
  open();
  load();
  for (const auto lookup : {dbGetZipDataFromKeyIn, dbGetZipDataFromKeyOff}) {
    EXPECT_EQ(lookup(0), nullptr);
    EXPECT_EQ(lookup(-1), nullptr);
    EXPECT_EQ(lookup(6), nullptr);
    EXPECT_NE(lookup(5), nullptr);
    ASSERT_NE(lookup(3), nullptr);
    EXPECT_EQ(lookup(3)->get(ZipDataRow::zip), 501u);
  }
  EXPECT_EQ(dbGetZipDataFromKeyIn(5)->bytes, ZipDataRow{}.bytes) << "the zero tail";
}

TEST_F(ZipLookup, SingleCityKeyStandsInTheRecord) {
  open();
  load();
  const ZipDataRow* record = dbGetZipDataFromKeyIn(1);
  for (const auto lookup : {dbGetCityKeysPtrIn, dbGetCityKeysPtrOff}) {
    const auto* keys = lookup(record);
    EXPECT_EQ(reinterpret_cast<const unsigned char*>(keys), record->bytes.data() + 30);
    EXPECT_EQ(keys->get(KeyRow::key), 0x1234u);
  }
}

TEST_F(ZipLookup, CityKeysOfAList) {
  open();
  load();
  for (const auto lookup : {dbGetCityKeysPtrIn, dbGetCityKeysPtrOff}) {
    EXPECT_EQ(keysOf(lookup(dbGetZipDataFromKeyIn(2)), 3), (Keys{12, 13, 14}));
    EXPECT_EQ(lookup(dbGetZipDataFromKeyIn(3)), nullptr) << "index 0";
    EXPECT_EQ(lookup(dbGetZipDataFromKeyIn(4)), nullptr) << "index above the count";
    EXPECT_EQ(lookup(nullptr), nullptr);
  }
}

TEST_F(ZipLookup, FinanceEntryByIndexAndByZip) {
  open();
  load();
  for (const auto lookup : {dbGetMultiZipFinRBAIn, dbGetMultiZipFinRBAOff}) {
    EXPECT_EQ(lookup(0), nullptr);
    EXPECT_EQ(lookup(4), nullptr);
    EXPECT_NE(lookup(3), nullptr);
    ASSERT_NE(lookup(1), nullptr);
    EXPECT_EQ(lookup(1)->get(FinMultiZipRow::rba), 1000u);
  }
  for (const auto lookup : {dbGetZipFinMltZpRBAIn, dbGetZipFinMltZpRBAOff}) {
    EXPECT_EQ(lookup(dbGetZipDataFromKeyIn(1)), nullptr) << "index 0";
    EXPECT_EQ(lookup(dbGetZipDataFromKeyIn(4)), nullptr) << "index above the count";
    ASSERT_NE(lookup(dbGetZipDataFromKeyIn(3)), nullptr);
    EXPECT_EQ(lookup(dbGetZipDataFromKeyIn(3))->get(FinMultiZipRow::rba), 2000u);
  }
}

TEST_F(ZipLookup, ListStartEqualToTheCountPasses) {
  open();
  load();
  for (const auto lookup : {dbGetMultiZipsIn, dbGetMultiZipsOff}) {
    EXPECT_NE(lookup(1, 8), nullptr);
    EXPECT_EQ(lookup(1, 9), nullptr);
    EXPECT_NE(lookup(1, 0x10008), nullptr) << "low 16 bits";
  }
}

TEST_F(ZipLookup, ListStepsTwoBytesInMemoryAndFourOnDisk) {
  open();
  load();
  EXPECT_EQ(keysOf(dbGetMultiZipsIn(2, 3), 2), (Keys{103, 104}));
  EXPECT_EQ(keysOf(dbGetMultiZipsOff(2, 3), 2), (Keys{106, 107}));
}

TEST_F(ZipLookup, SameStartReadsTheFileOnceWhateverTheCount) {
  open();
  EXPECT_EQ(keysOf(dbGetMultiZipsOff(1, 2), 1), (Keys{104}));
  putWord(file_, record().get(RefControlRec::multiZipListsRba) + 8, 0);
  proc_.files->reference = holding(file_, "changed");
  EXPECT_EQ(keysOf(dbGetMultiZipsOff(300, 2), 1), (Keys{104}));
  dbGetMultiZipsOff(1, 4);
  EXPECT_EQ(keysOf(dbGetMultiZipsOff(1, 2), 1), (Keys{0}));
}

TEST_F(ZipLookup, ListOnDiskIsClampedToItsBuffer) {
  open();
  EXPECT_NE(dbGetMultiZipsOff(0xFFFFFFFF, 1), nullptr);
}

TEST_F(ZipLookup, FailedCacheReadGivesNull) {
  open();
  buildCache(64, 2);
  std::uint32_t key = kUntouched;
  ASSERT_NE(dbGetZipDataOff(73301, &key), nullptr);
  chFreeCache(&block_.refCache);
  buildCache(64, 2);
  key = kUntouched;
  proc_.files->reference = unseekable();
  EXPECT_EQ(dbGetZipDataOff(73301, &key), nullptr);
  EXPECT_EQ(key, kUntouched);
  EXPECT_EQ(dbGetZipDataFromKeyOff(2), nullptr);
  EXPECT_EQ(dbGetMultiZipsOff(1, 5), nullptr);
}

TEST_F(ZipLookup, KeyIsStoredWhenOnlyTheRecordReadFails) {
  open();
  buildCache(64, 2);
  unsigned char bytes[2];
  const std::uint32_t rba = record().get(RefControlRec::zipIndexRba) + 2 * 73301;
  ASSERT_EQ(chGetBlockCacheData(block_.refCache, proc_.files->reference, rba, 2, bytes, &proc_), 2);
  proc_.files->reference = unseekable();
  std::uint32_t key = kUntouched;
  EXPECT_EQ(dbGetZipDataOff(73301, &key), nullptr);
  EXPECT_EQ(key, 2u);
}

TEST_F(ZipLookup, NothingOpenOrLoadedFindsNothing) {
  std::uint32_t key = kUntouched;
  EXPECT_EQ(dbGetZipIndexIn(1), -1);
  EXPECT_EQ(dbGetZipIndexOff(1), -1);
  EXPECT_EQ(dbGetZipDataIn(1, &key), nullptr);
  EXPECT_EQ(dbGetZipDataOff(1, &key), nullptr);
  EXPECT_EQ(dbGetMultiZipsIn(1, 0), nullptr);
  EXPECT_EQ(dbGetMultiZipsOff(1, 0), nullptr);
  pProcObj = nullptr;
  EXPECT_EQ(dbGetZipDataFromKeyIn(1), nullptr);
  EXPECT_EQ(dbGetMultiZipFinRBAIn(1), nullptr);
  pProcObj = &proc_;
}

TEST_F(ZipLookup, TraceLinesNameTheFunctionAndLeavingMarksSuccess) {
  open();
  load();
  dbGetZipIndexOff(1);
  EXPECT_EQ(records(), Lines{});
  options_.debugSwitch = 'D';
  dbGetZipIndexOff(1);
  dbGetZipIndexOff(0);
  dbGetZipDataFromKeyIn(1);
  EXPECT_EQ(records(), (Lines{"DBG;zip;20070;Debug;Entering dbGetZipIndexOff",
                              "DBG;zip;20070;Debug;Leaving dbGetZipIndexOff",
                              "DBG;zip;20070;Debug;Entering dbGetZipIndexOff",
                              "DBG;zip;20070;Debug;Entering dbGetZipDataFromKeyIn",
                              "DBG;zip;20070;Debug;Leaving dbGetZipDataFromKeyIn"}));
}

}  // namespace

}  // namespace statecut::test
