// Particular rules of single readers.
#include <string>
#include <utility>
#include <vector>

#include "unit/tables/faultyalloc.h"
#include "unit/tables/tablefixture.h"

namespace statecut {
namespace {

using test::Bytes;
using test::Lines;

class TablesTest : public test::TableFixture {};

TEST_F(TablesTest, CityByStateIsOneRecordShorterThanTheNames) {
  word(132, 3);
  word(48, 10);
  Bytes file(10, 0xEE);
  file.insert(file.end(), 68, 0x42);
  file.insert(file.end(), 34, 0xEE);
  EXPECT_EQ(dbReadCityByState(holding(file), &record_, &proc_), 0);
  EXPECT_EQ(records(), Lines({info("City State Names Table", 68)}));
  Bytes wanted(68, 0x42);
  wanted.resize(102);
  EXPECT_EQ(held(8, 102), wanted);
}

TEST_F(TablesTest, CityByStateFailsLikeTheNamesButWithErrors) {
  word(132, 2);
  EXPECT_EQ(dbReadCityByState(unseekable(), &record_, &proc_), -3);
  EXPECT_NE(refPointers[8].table, nullptr);
  EXPECT_EQ(records(), Lines({info("City State Names Table", 34), readError("City State")}));
  EXPECT_EQ(dbReadCityByState(holding(Bytes(1)), nullptr, &proc_), -3);
  EXPECT_EQ(records(), Lines({readError("City State")}));
  EXPECT_EQ(dbReadCityByState(holding(Bytes(1)), &record_, nullptr), -3);
  options_.debugSwitch = 'D';
  emptySlots();
  EXPECT_EQ(dbReadCityByState(holding(Bytes(1)), &record_, &proc_), 0);
  EXPECT_EQ(records(),
            Lines({trace("Entering dbReadCityByState"), info("City State Names Table", 34),
                   trace("Leaving dbReadCityByState")}));
}

TEST_F(TablesTest, NoCityNamesAreNoBytesAndFewerThanNoneByState) {
  Stream* const file = holding(Bytes(10));
  EXPECT_EQ(dbReadCityNames(file, &record_, &proc_), 0);
  EXPECT_NE(refPointers[7].table, nullptr);
  EXPECT_EQ(records(), Lines({info("City Names Table", 0)}));
  EXPECT_EQ(dbReadCityByState(file, &record_, &proc_), -3);
  EXPECT_EQ(refPointers[8].table, nullptr);
  EXPECT_EQ(records(), Lines({allocError("City State")}));
}

TEST_F(TablesTest, FailedFinanceListsLeaveTheEarlierCityTablesLoaded) {
  word(184, 1);
  EXPECT_EQ(dbReadCityData(unseekable(), &record_, &proc_), -2);
  EXPECT_NE(refPointers[3].table, nullptr);
  EXPECT_NE(refPointers[4].table, nullptr);
  EXPECT_NE(refPointers[5].table, nullptr);
  EXPECT_EQ(refPointers[6].table, nullptr);
  EXPECT_EQ(refPointers[13].table, nullptr);
}

TEST_F(TablesTest, SizesAboveSigned32BitsAreFailedAllocations) {
  // 52 x 82595525 wraps to 4 in 32 bits.
  word(192, 82595525);
  EXPECT_EQ(dbReadZipData(holding(Bytes(10)), &record_, &proc_), -5);
  EXPECT_EQ(refPointers[10].table, nullptr);
  EXPECT_EQ(records(), Lines({allocError("Zip Code Data")}));
}

TEST_F(TablesTest, TablesOfNoBytesCanFailToBeAllocated) {
  test::failAllocationAfter(2);
  EXPECT_EQ(dbReadZipData(holding(Bytes(10)), &record_, &proc_), -5);
  EXPECT_EQ(records(), Lines({info("Zip Code Data", 0), info("Zip Multi City Data", 0),
                              allocError("Zip Code Index")}));
}

TEST_F(TablesTest, NoZipDataStillLoadsTheWholeZipIndex) {
  word(64, 100);
  Bytes file(100, 0xEE);
  file.insert(file.end(), 200000, 0x42);
  EXPECT_EQ(dbReadZipData(holding(file), &record_, &proc_), 0);
  EXPECT_EQ(held(11, 200000), Bytes(200000, 0x42));
  EXPECT_EQ(records(), Lines({info("Zip Code Data", 0), info("Zip Multi City Data", 0),
                              info("Zip Code Index", 200000)}));
}

TEST_F(TablesTest, FailedPobBytesTableLeavesTheRrTableUntouched) {
  word(300, 1);
  word(288, 1);
  auto* const marker = static_cast<unsigned char*>(allocTable(1));
  refPointers[36].table = marker;
  EXPECT_EQ(dbReadBytesTables(unseekable(), &record_, &proc_), -17);
  EXPECT_NE(refPointers[33].table, nullptr);
  EXPECT_NE(refPointers[34].table, nullptr);
  EXPECT_EQ(held(35, 8), Bytes(8));
  EXPECT_EQ(refPointers[36].table, marker);
}

// A cut holds none of the four and says so by an RBA of 0, where the control record stands.
TEST_F(TablesTest, BytesTableAtRba0IsNoTableAndNothingIsRead) {
  struct Absent {
    std::size_t rbaAt, countAt, slot;
    const char* name;
    std::int32_t width;
  };
  const Absent all[] = {{280, 192, 33, "Zip Bytes Table", 12},
                        {284, 296, 34, "Multi-Zip SFH Bytes Table", 8},
                        {288, 300, 35, "Multi-Zip POB Bytes Table", 8},
                        {292, 304, 36, "Multi-Zip RR Bytes Table", 8}};
  for (const Absent& table : all) {
    word(table.rbaAt, 1);
    word(table.countAt, 1);
  }
  const auto release = [&all] {
    for (const Absent& table : all) {
      freeTable(refPointers[table.slot].table);
      refPointers[table.slot].table = nullptr;
    }
  };
  for (const Absent& absent : all) {
    EXPECT_EQ(dbReadBytesTables(holding(Bytes(10, 0xEE)), &record_, &proc_), 0);
    unsigned char* const old = std::exchange(refPointers[absent.slot].table, nullptr);
    release();
    refPointers[absent.slot].table = old;
    records();
    word(absent.rbaAt, 0);
    EXPECT_EQ(dbReadBytesTables(holding(Bytes(10, 0xEE)), &record_, &proc_), -17);
    EXPECT_EQ(refPointers[absent.slot].table, nullptr) << absent.name;
    freeTable(old);
    release();
    Lines expected;
    for (const Absent& table : all) {
      if (table.slot < absent.slot) expected.push_back(info(table.name, table.width));
    }
    expected.push_back(readError(absent.name));
    EXPECT_EQ(records(), expected);
    word(absent.countAt, 0);  // a table of no bytes needs no place
    EXPECT_EQ(dbReadBytesTables(holding(Bytes(10, 0xEE)), &record_, &proc_), 0);
    EXPECT_NE(refPointers[absent.slot].table, nullptr) << absent.name;
    release();
    records();
    word(absent.countAt, 1);
    word(absent.rbaAt, 1);
  }
}

TEST_F(TablesTest, FailedAllocationOfTheSecondStreetTableReleasesTheFirst) {
  word(152, test::kTooMany);
  word(156, 4);
  EXPECT_EQ(dbReadStreetPhonetics(holding(Bytes(10)), &record_, &proc_), -11);
  EXPECT_EQ(refPointers[21].table, nullptr);
  EXPECT_EQ(refPointers[22].table, nullptr);
  EXPECT_EQ(records(), Lines({info("Ambiguous Data for Street Phonetics", 4),
                              allocWarning("Phonetic Street Names")}));
  word(164, test::kTooMany);
  word(168, 4);
  EXPECT_EQ(dbReadStreetStndrdzd(holding(Bytes(10)), &record_, &proc_), -12);
  EXPECT_EQ(refPointers[24].table, nullptr);
  EXPECT_EQ(refPointers[25].table, nullptr);
  EXPECT_EQ(records(), Lines({info("Ambiguous Data for Standardized Streets", 4),
                              allocError("Standrdzed Street Names")}));
}

TEST_F(TablesTest, FailedReadOfTheSecondStreetTableReleasesNothing) {
  word(152, 4);
  EXPECT_EQ(dbReadStreetPhonetics(unseekable(), &record_, &proc_), -11);
  EXPECT_NE(refPointers[21].table, nullptr);
  EXPECT_NE(refPointers[22].table, nullptr);
  records();
  word(164, 4);
  EXPECT_EQ(dbReadStreetStndrdzd(unseekable(), &record_, &proc_), -12);
  EXPECT_NE(refPointers[24].table, nullptr);
  EXPECT_NE(refPointers[25].table, nullptr);
  EXPECT_EQ(records(),
            Lines({info("Ambiguous Data for Standardized Streets", 0),
                   info("Standard Street Names", 4), readError("Standardzed Street Names")}));
}

TEST_F(TablesTest, FailedAllocationOfTheHashOverflowLeavesNeitherSlot) {
  word(312, 2);
  word(320, test::kTooMany);
  EXPECT_EQ(dbReadHashedNames(holding(Bytes(10)), &record_, &proc_), -18);
  EXPECT_EQ(refPointers[37].table, nullptr);
  EXPECT_EQ(refPointers[38].table, nullptr);
  EXPECT_EQ(records(), Lines({info("Hash Table", 14), allocWarning("Hash Overflow")}));
}

TEST_F(TablesTest, FailedReadOfTheHashOverflowLeavesBothSlots) {
  word(320, 1);
  EXPECT_EQ(dbReadHashedNames(unseekable(), &record_, &proc_), -18);
  EXPECT_NE(refPointers[37].table, nullptr);
  EXPECT_NE(refPointers[38].table, nullptr);
}

TEST_F(TablesTest, ReadersCalledAgainOverwriteTheirSlots) {
  word(272, 1);
  Stream* const file = holding(Bytes(10, 7));
  EXPECT_EQ(dbReadURBNames(file, &record_, &proc_), 0);
  unsigned char* const first = refPointers[17].table;
  EXPECT_EQ(dbReadURBMultiZip(file, &record_, &proc_), 0);
  EXPECT_NE(refPointers[17].table, first);
  EXPECT_EQ(held(17, 2), Bytes({7, 7}));
  freeTable(first);
}

}  // namespace
}  // namespace statecut
