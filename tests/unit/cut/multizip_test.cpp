#include "cut/multizip.h"

#include "base/le.h"
#include "base/memory.h"
#include "base/stream.h"
#include "cut/multizipsize.h"
#include "cut/rangecopy.h"
#include "unit/cut/cutfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

class MultiZipSize : public CutFixture {
 protected:
  using Entry = std::pair<std::uint32_t, std::uint32_t>;

  void shortEntries(SlotNumber slot, const std::vector<Entry>& entries) {
    auto* table = makeTable<Row<8>>(slot, entries.size())->bytes.data();
    for (const auto& [key, bytes] : entries) {
      le::put<2>(table, key);
      le::put<4>(table + 2, bytes);
      table += 6;
    }
  }
  void longEntries(SlotNumber slot, const std::vector<Entry>& entries) {
    auto* table = makeTable<MultiZipBytesLong>(slot, entries.size());
    for (const auto& [key, bytes] : entries) {
      table->set(MultiZipBytesLong::key, key);
      (table++)->set(MultiZipBytesLong::bytes_, bytes);
    }
  }
};

TEST_F(MultiZipSize, ComparesTheFirst16Bits) {
  const unsigned char a[] = {0x02, 0x01, 0xFF};
  const unsigned char b[] = {0xFF, 0x00, 0x00};
  EXPECT_EQ(compareMltZpBytes(a, b), 0x0102 - 0x00FF);
  EXPECT_EQ(compareMltZpBytes(b, a), 0x00FF - 0x0102);
  EXPECT_EQ(compareMltZpBytes(a, a), 0);
}

TEST_F(MultiZipSize, ShortFormFindsEveryKeyOfEachKind) {
  const std::vector<Entry> entries{{2, 20}, {5, 50}, {9, 90}, {300, 3}, {65535, 0xFFFFFFFE}};
  shortEntries(kSlotSfhMultiZipBytes, entries);
  shortEntries(kSlotPobMultiZipBytes, entries);
  shortEntries(kSlotRrMultiZipBytes, entries);
  setWord(RefControlRec::sfhMultiZipBytesCount, 5);
  setWord(RefControlRec::pobMultiZipBytesCount, 5);
  setWord(RefControlRec::rrMultiZipBytesCount, 5);
  for (const std::int32_t kind : {kPob, kSfh, kRr}) {
    for (const auto& [key, bytes] : entries) {
      EXPECT_EQ(getMltZpEntryPntSize(static_cast<std::uint16_t>(key), kind),
                static_cast<std::int32_t>(bytes));
    }
  }
  EXPECT_TRUE(log().empty());
}

TEST_F(MultiZipSize, EachKindHasItsOwnTable) {
  shortEntries(kSlotSfhMultiZipBytes, {{1, 10}});
  shortEntries(kSlotPobMultiZipBytes, {{1, 20}});
  shortEntries(kSlotRrMultiZipBytes, {{1, 30}});
  setWord(RefControlRec::sfhMultiZipBytesCount, 1);
  setWord(RefControlRec::pobMultiZipBytesCount, 1);
  setWord(RefControlRec::rrMultiZipBytesCount, 1);
  EXPECT_EQ(getMltZpEntryPntSize(1, kSfh), 10);
  EXPECT_EQ(getMltZpEntryPntSize(1, kPob), 20);
  EXPECT_EQ(getMltZpEntryPntSize(1, kRr), 30);
}

TEST_F(MultiZipSize, LongFormFindsEveryKeyByItsLow16Bits) {
  longEntries(kSlotSfhMultiZipBytes, {{2, 20}, {5, 50}, {9, 90}});
  setWord(RefControlRec::sfhMultiZipBytesCount, 3);
  EXPECT_EQ(getMltZpEntryPntSize4(2, kSfh), 20);
  EXPECT_EQ(getMltZpEntryPntSize4(5, kSfh), 50);
  EXPECT_EQ(getMltZpEntryPntSize4(9, kSfh), 90);
  EXPECT_EQ(getMltZpEntryPntSize4(0x10005, kSfh), 50);
}

TEST_F(MultiZipSize, ShortFormOverLongEntriesReadsAcrossThem) {
  longEntries(kSlotSfhMultiZipBytes, {{1, 100}});
  setWord(RefControlRec::sfhMultiZipBytesCount, 1);
  EXPECT_EQ(getMltZpEntryPntSize(1, kSfh), 100 * 65536);
}

// Seen six bytes at a time the entries are in no order. The probes are half of the range each time.
TEST_F(MultiZipSize, SearchOfAnUnsortedTableMakesFixedProbes) {
  // Probes of a table of 6: 3, then 1 or 5, then 0, 2 or 4.
  shortEntries(kSlotPobMultiZipBytes, {{7, 70}, {1, 10}, {8, 80}, {5, 50}, {2, 20}, {9, 90}});
  setWord(RefControlRec::pobMultiZipBytesCount, 6);
  EXPECT_EQ(getMltZpEntryPntSize(5, kPob), 50);
  EXPECT_EQ(getMltZpEntryPntSize(1, kPob), 10);
  EXPECT_EQ(getMltZpEntryPntSize(9, kPob), 90);
  EXPECT_TRUE(log().empty());
  EXPECT_EQ(getMltZpEntryPntSize(7, kPob), 0);  // 3, 5, 4
  EXPECT_EQ(getMltZpEntryPntSize(8, kPob), 0);  // 3, 5, 4
  EXPECT_EQ(getMltZpEntryPntSize(2, kPob), 0);  // 3, 1, 2
  EXPECT_EQ(log().size(), 3u);
}

// Of 4 entries the half-open search looks at 2, 1, 0 and 3; an inclusive one would start at 1.
TEST_F(MultiZipSize, SearchIsHalfOpen) {
  shortEntries(kSlotPobMultiZipBytes, {{3, 30}, {9, 90}, {5, 50}, {6, 60}});
  setWord(RefControlRec::pobMultiZipBytesCount, 4);
  EXPECT_EQ(getMltZpEntryPntSize(6, kPob), 60);
  EXPECT_EQ(getMltZpEntryPntSize(9, kPob), 0);
}

TEST_F(MultiZipSize, MissingKeyWarnsWithTheSameLabelForEveryKind) {
  makeTable<MultiZipBytesLong>(kSlotSfhMultiZipBytes, 0);
  makeTable<MultiZipBytesLong>(kSlotPobMultiZipBytes, 0);
  EXPECT_EQ(getMltZpEntryPntSize(123, kPob), 0);
  EXPECT_EQ(getMltZpEntryPntSize4(0xFFFFFFFF, kSfh), 0);
  EXPECT_EQ(getMltZpEntryPntSize(5, 3), 0);
  EXPECT_EQ(getMltZpEntryPntSize4(70000, -1), 0);
  EXPECT_EQ(log(), (std::vector<std::string>{"WARN;cutstate:0136;0;Get Bytes;SFH 123",
                                             "WARN;cutstate:0191;0;Get Bytes;SFH -1",
                                             "WARN;cutstate:0125;0;Get Bytes;SFH 5",
                                             "WARN;cutstate:0179;0;Get Bytes;SFH 70000"}));
}

// Five cities, the first of them a dummy; every city but 4 is in the cut and has two names.
class MultiZip : public MultiZipSize {
 protected:
  MultiZip() {
    start(pattern(30000, 6));
    totalRngBytes = 624;
    setWord(RefControlRec::cityDataCount, 5);
    setWord(RefControlRec::cityMultiZipRbasCount, 5);
    setWord(RefControlRec::finMultiZipRbasCount, 4);
    setWord(RefControlRec::multiZipListsCount, 10);
    setWord(RefControlRec::zipDataCount, 3);
    cities = makeTable<CityDataRow>(kSlotCityData, 5);
    records = makeTable<CityMultiZipRow>(kSlotCityMultiZipRbas, 5);
    finance = makeTable<FinMultiZipRow>(kSlotFinMultiZip, 4);
    zips = makeTable<ZipDataRow>(kSlotZipData, 3);
    makeZipIndex();
    sourceCityNames = 8;
    cityNameMap = static_cast<std::uint32_t*>(allocTable(8 * 4));
    for (std::uint32_t i = 0; i < 8; ++i) cityNameMap[i] = i == 7 ? 0 : i + 10;
    setWord(RefControlRec::cityNamesCount, 4);
    scCityNames = static_cast<CityNameRow*>(allocTable(4 * 34));
    for (std::uint32_t i = 1; i < 4; ++i) scCityNames[i].set(CityNameRow::cityKey, i);
    for (std::uint32_t c = 0; c < 5; ++c) {
      cities[c].set(CityDataRow::nameUsps, c);
      cities[c].set(CityDataRow::nameStandard, 7);
      cities[c].set(CityDataRow::zipCount, 1);
      cities[c].set(CityDataRow::multiZipRbaKey, c);
    }
    sizes(kSlotPobMultiZipBytes, RefControlRec::pobMultiZipBytesCount);
    sizes(kSlotRrMultiZipBytes, RefControlRec::rrMultiZipBytesCount);
    longSizes();
  }

  // POB and RR: key k has k * 10 bytes.
  template <typename Count>
  void sizes(SlotNumber slot, Count count) {
    std::vector<Entry> entries;
    for (std::uint32_t key = 1; key < 8; ++key) entries.emplace_back(key, key * 10);
    shortEntries(slot, entries);
    setWord(count, 7);
  }
  void longSizes() {
    std::vector<Entry> entries;
    for (std::uint32_t key = 1; key < 8; ++key) entries.emplace_back(key, key * 100);
    longEntries(kSlotSfhMultiZipBytes, entries);
    setWord(RefControlRec::sfhMultiZipBytesCount, 7);
  }
  // SFH sizes for the short form, as finance records ask for them.
  void shortSfhSizes() {
    std::vector<Entry> entries;
    for (std::uint32_t key = 1; key < 8; ++key) entries.emplace_back(key, key * 1000);
    shortEntries(kSlotSfhMultiZipBytes, entries);
  }
  void shareSfh(std::uint32_t city, std::uint32_t key, std::uint32_t rba) {
    cities[city].set(CityDataRow::zipCount, 2);
    records[city].set(CityMultiZipRow::sfhZipCount, 2);
    records[city].set(CityMultiZipRow::sfhKey, key);
    records[city].set(CityMultiZipRow::sfhRba, rba);
  }
  void setFinance(std::uint32_t index, std::uint32_t count, std::uint32_t key, std::uint32_t rba) {
    finance[index].set(FinMultiZipRow::zipCount, count);
    finance[index].set(FinMultiZipRow::key, key);
    finance[index].set(FinMultiZipRow::rba, rba);
  }
  std::uint32_t sfhRba(std::uint32_t city) const {
    return records[city].get(CityMultiZipRow::sfhRba);
  }

  CityDataRow* cities;
  CityMultiZipRow* records;
  FinMultiZipRow* finance;
  ZipDataRow* zips;
};

TEST_F(MultiZip, CityListCountsTheNamesOfEachCity) {
  scCityNames[3].set(CityNameRow::cityKey, 2);
  EXPECT_EQ(createCityList(), 0);
  EXPECT_EQ(std::vector<std::uint32_t>(cityKeys, cityKeys + 5),
            (std::vector<std::uint32_t>{0, 1, 2, 0, 0}));
}

TEST_F(MultiZip, CityKeyBeyondTheCitiesIsNotCounted) {
  scCityNames[2].set(CityNameRow::cityKey, 5);
  scCityNames[3].set(CityNameRow::cityKey, 65535);
  EXPECT_EQ(createCityList(), 0);
  EXPECT_EQ(std::vector<std::uint32_t>(cityKeys, cityKeys + 5),
            (std::vector<std::uint32_t>{0, 1, 0, 0, 0}));
}

TEST_F(MultiZip, WorkTablesTooLargeForMemoryFail) {
  setWord(RefControlRec::cityDataCount, 0x20000000);
  EXPECT_EQ(createCityList(), -1);
  setWord(RefControlRec::multiZipListsCount, 0x0AAAAAAB);
  EXPECT_EQ(buildSFHMultiZip(), -1);
  EXPECT_EQ(log(), (std::vector<std::string>{
                       "ERR;cutstate:0871;0;Mem Alloc Err;Could not allocate memory for City Keys.",
                       "ERR;cutstate:0571;0;Mem Alloc Err;Could not allocate memory for Multi-Zip "
                       "Keys."}));
}

TEST_F(MultiZip, NameLinksAreRenumbered) {
  cities[2].set(CityDataRow::nameUsps, 8);  // beyond the names
  cities[3].set(CityDataRow::nameUsps, 0xFFFFFFFF);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(cities[1].get(CityDataRow::nameUsps), 11u);
  EXPECT_EQ(cities[1].get(CityDataRow::nameStandard), 0u);  // a dropped name
  EXPECT_EQ(cities[2].get(CityDataRow::nameUsps), 0u);
  EXPECT_EQ(cities[3].get(CityDataRow::nameUsps), 0u);
}

TEST_F(MultiZip, CityOutsideTheCutLosesItsNamesAndKeepsItsRecords) {
  shareSfh(4, 2, 1000);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(cities[4].get(CityDataRow::nameUsps), 0u);
  EXPECT_EQ(cities[4].get(CityDataRow::nameStandard), 0u);
  EXPECT_EQ(cities[4].get(CityDataRow::zipCount), 2u);
  EXPECT_EQ(sfhRba(4), 1000u);
  EXPECT_TRUE(writtenRange().empty());
}

TEST_F(MultiZip, SharedKeyIsCopiedOnce) {
  shareSfh(1, 3, 1000);
  shareSfh(2, 3, 9999);  // the first filler decides
  shareSfh(3, 2, 2000);
  testing::internal::CaptureStdout();
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(sfhRba(3), 624u);
  EXPECT_EQ(sfhRba(1), 824u);
  EXPECT_EQ(sfhRba(2), 824u);
  EXPECT_EQ(totalRngBytes, 1124u);
  EXPECT_EQ(slice(writtenRange(), 200, 300), slice(source_, 1000, 300));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "must go forward!! not back!!\n");
}

TEST_F(MultiZip, EveryStepBackIsSaidOnce) {
  shareSfh(1, 1, 3000);
  shareSfh(2, 2, 2000);
  shareSfh(3, 3, 1000);
  testing::internal::CaptureStdout();
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "must go forward!! not back!!\nmust go forward!! not back!!\n");
  EXPECT_EQ(writtenRange().size(), 600u);
}

TEST_F(MultiZip, KeyWithoutSizeKeepsTheSourceRbaAndWarnsAgain) {
  shareSfh(1, 9, 1000);
  shareSfh(2, 9, 1000);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(sfhRba(1), 1000u);
  EXPECT_TRUE(writtenRange().empty());
  EXPECT_EQ(log(), (std::vector<std::string>{"WARN;cutstate:0191;0;Get Bytes;SFH 9",
                                             "WARN;cutstate:0191;0;Get Bytes;SFH 9"}));
}

TEST_F(MultiZip, KeyBeyondTheKeyCountIsLeftAlone) {
  setWord(RefControlRec::multiZipListsCount, 3);
  shareSfh(1, 2, 1000);
  shareSfh(2, 3, 2000);
  shareSfh(3, 0xFFFFFFFF, 3000);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(sfhRba(1), 624u);
  EXPECT_EQ(sfhRba(2), 2000u);
  EXPECT_EQ(sfhRba(3), 3000u);
  EXPECT_TRUE(log().empty());
}

TEST_F(MultiZip, NoKeysAreNoFailure) {
  setWord(RefControlRec::multiZipListsCount, 0);
  shareSfh(1, 0, 1000);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(sfhRba(1), 1000u);
}

TEST_F(MultiZip, SfhEntryWithRbaZeroIsCopiedFromTheStart) {
  shareSfh(1, 2, 0);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(sfhRba(1), 624u);
  EXPECT_EQ(writtenRange(), slice(source_, 0, 200));
}

TEST_F(MultiZip, NegativeSizeIsFilledButNotCopied) {
  longEntries(kSlotSfhMultiZipBytes, {{2, 0x80000000}});
  setWord(RefControlRec::sfhMultiZipBytesCount, 1);
  shareSfh(1, 2, 1000);
  shareSfh(2, 2, 1000);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(sfhRba(1), 1000u);
  EXPECT_EQ(totalRngBytes, 624u);
}

TEST_F(MultiZip, FinanceOfCitiesDependsOnTheirZipCount) {
  shortSfhSizes();
  for (std::uint32_t c = 1; c < 4; ++c) {
    cities[c].set(CityDataRow::finMultiZipFlag, 1);
    cities[c].set(CityDataRow::finMultiZipKey, c);
    setFinance(c, 2, c, 1000 * c);
  }
  cities[1].set(CityDataRow::zipCount, 1);  // single: no finance
  cities[2].set(CityDataRow::zipCount, 0);  // none: straight to finance
  cities[3].set(CityDataRow::zipCount, 2);  // several, SFH not shared: no finance
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(finance[1].get(FinMultiZipRow::rba), 1000u);
  EXPECT_EQ(finance[2].get(FinMultiZipRow::rba), 624u);
  EXPECT_EQ(finance[3].get(FinMultiZipRow::rba), 3000u);
  EXPECT_EQ(writtenRange(), slice(source_, 2000, 2000));
}

TEST_F(MultiZip, FinanceNeedsItsFlagARecordAndSeveralZips) {
  shortSfhSizes();
  for (std::uint32_t c = 1; c < 4; ++c) {
    cities[c].set(CityDataRow::zipCount, 0);
    cities[c].set(CityDataRow::finMultiZipFlag, 1);
    cities[c].set(CityDataRow::finMultiZipKey, c);
    setFinance(c, 2, c, 1000 * c);
  }
  cities[1].set(CityDataRow::finMultiZipFlag, 2);
  cities[2].set(CityDataRow::finMultiZipKey, 5);
  setFinance(3, 1, 3, 3000);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_TRUE(writtenRange().empty());
}

TEST_F(MultiZip, FinanceOfSelectedZipsIsCopied) {
  shortSfhSizes();
  zips[2].set(ZipDataRow::finMultiZipKey, 3);
  setFinance(3, 2, 4, 5000);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(finance[3].get(FinMultiZipRow::rba), 5000u);  // the ZIP code is not selected yet
  keepTables();
  select(73001, 2);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(finance[3].get(FinMultiZipRow::rba), 624u);
  EXPECT_EQ(writtenRange(), slice(source_, 5000, 4000));
}

TEST_F(MultiZip, RecordIndexEqualToTheCountIsTheZeroRecord) {
  setWord(RefControlRec::cityMultiZipRbasCount, 1);
  setWord(RefControlRec::finMultiZipRbasCount, 0);
  makeTable<CityMultiZipRow>(kSlotCityMultiZipRbas, 1);
  shareSfh(1, 2, 1000);
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_TRUE(writtenRange().empty());
}

TEST_F(MultiZip, BadZipKeyStopsBuildAndUpdate) {
  ASSERT_EQ(createCityList(), 0);
  ASSERT_EQ(buildSFHMultiZip(), 0);
  ASSERT_EQ(updateSFHMultiZip(), 0);
  keepTables();
  select(73001, 4);
  EXPECT_EQ(buildSFHMultiZip(), -1);
  EXPECT_EQ(updateSFHMultiZip(), -1);
  EXPECT_EQ(log(), (std::vector<std::string>{"ERR;cutstate:0668;0;Build Multi Zips;Bad Zip Key",
                                             "ERR;cutstate:0809;0;Build Multi Zips;Bad Zip Key"}));
}

TEST_F(MultiZip, PobAndRrFollowSfhEachWithItsOwnKeys) {
  shareSfh(1, 2, 1000);
  for (const std::uint32_t c : {1u, 2u, 3u}) {
    cities[c].set(CityDataRow::zipCount, 2);
    records[c].set(CityMultiZipRow::pobZipCount, c == 3 ? 1 : 2);
    records[c].set(CityMultiZipRow::pobKey, 2);
    records[c].set(CityMultiZipRow::pobRba, 2000);
    records[c].set(CityMultiZipRow::rrZipCount, 2);
    records[c].set(CityMultiZipRow::rrKey, c + 1);
    records[c].set(CityMultiZipRow::rrRba, c == 3 ? 0 : 3000 + c);
  }
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_EQ(sfhRba(1), 624u);
  EXPECT_EQ(records[1].get(CityMultiZipRow::pobRba), 824u);
  EXPECT_EQ(records[2].get(CityMultiZipRow::pobRba), 824u);
  EXPECT_EQ(records[3].get(CityMultiZipRow::pobRba), 2000u);  // one ZIP code
  EXPECT_EQ(records[1].get(CityMultiZipRow::rrRba), 844u);
  EXPECT_EQ(records[2].get(CityMultiZipRow::rrRba), 864u);
  EXPECT_EQ(records[3].get(CityMultiZipRow::rrRba), 0u);
  EXPECT_EQ(totalRngBytes, 894u);
  EXPECT_EQ(slice(writtenRange(), 200, 20), slice(source_, 2000, 20));
}

TEST_F(MultiZip, ReadErrorOfTheSourceStopsTheCut) {
  shareSfh(1, 2, 1000);
  streamClose(proc.files->range);
  proc.files->range = streamOpen(path(".").c_str(), "rb");
  EXPECT_EQ(buildMltZpEntryPoints(), -1);
}

TEST_F(MultiZip, MissingTablesAreEmptyOnes) {
  shareSfh(1, 2, 1000);
  refPointers[kSlotCityMultiZipRbas].table = nullptr;
  refPointers[kSlotFinMultiZip].table = nullptr;
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  keepTables();
  refPointers[kSlotCityData].table = nullptr;
  EXPECT_EQ(buildMltZpEntryPoints(), 0);
  EXPECT_TRUE(writtenRange().empty());
}

}  // namespace
