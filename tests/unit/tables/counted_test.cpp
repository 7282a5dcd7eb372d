// The military aliases and the PO Box zones, which carry their own counts.
#include <cerrno>
#include <string>
#include <vector>

#include "support/faultysystem.h"
#include "unit/tables/faultyalloc.h"
#include "unit/tables/tablefixture.h"

namespace statecut {
namespace {

using test::Bytes;
using test::Lines;

class CountedTablesTest : public test::TableFixture {
 protected:
  static constexpr std::uint32_t kRba = 50;

  // Military aliases: A and B, then records of 1s and of 2s.
  static Bytes military(std::uint16_t a, std::uint16_t b) {
    Bytes file(kRba, 0xEE);
    Bytes header(4);
    le::put<2>(header.data(), a);
    le::put<2>(header.data() + 2, b);
    file.insert(file.end(), header.begin(), header.end());
    file.insert(file.end(), std::size_t{a} * 38, 1);
    file.insert(file.end(), std::size_t{b} * 42, 2);
    file.insert(file.end(), 100, 0xEE);
    return file;
  }
  std::int32_t readMilitary(Stream* file) {
    word(324, kRba);
    return dbReadMilitaryTable(file, &record_, &proc_);
  }
  std::int32_t readZones(Stream* file) {
    word(328, kRba);
    return dbReadPOBZone(file, &record_, &proc_);
  }
};

TEST_F(CountedTablesTest, MilitaryTableHasTwoParts) {
  EXPECT_EQ(readMilitary(holding(military(2, 3))), 0);
  EXPECT_EQ(Bytes(refPointers[40].bytes, refPointers[40].bytes + 4), Bytes({2, 0, 3, 0}));
  EXPECT_EQ(held(41, 76), Bytes(76, 1));
  EXPECT_EQ(refPointers[42].table, refPointers[41].table + 76);
  EXPECT_EQ(held(42, 126), Bytes(126, 2));
  EXPECT_EQ(records(), Lines({info("Military Alias Table", 202)}));
}

TEST_F(CountedTablesTest, MilitaryTableOfTheGreatestCounts) {
  EXPECT_EQ(readMilitary(holding(military(65535, 65535))), 0);
  EXPECT_EQ(records(), Lines({info("Military Alias Table", 65535 * 80)}));
  EXPECT_EQ(held(42, std::size_t{65535} * 42), Bytes(std::size_t{65535} * 42, 2));
}

TEST_F(CountedTablesTest, EmptyMilitaryTableIsOneZeroByte) {
  EXPECT_EQ(readMilitary(holding(military(0, 0))), 0);
  EXPECT_EQ(held(41, 1), Bytes({0}));
  EXPECT_EQ(refPointers[42].table, refPointers[41].table);
  EXPECT_EQ(records(), Lines({info("Military Alias Table", 0)}));
}

TEST_F(CountedTablesTest, MilitaryTableBehindTheEndOfTheFileIsEmpty) {
  EXPECT_EQ(readMilitary(holding(Bytes(10))), 0);
  EXPECT_EQ(records(), Lines({info("Military Alias Table", 0)}));
}

TEST_F(CountedTablesTest, FailedMilitaryHeader) {
  EXPECT_EQ(readMilitary(unseekable()), -19);
  EXPECT_EQ(refPointers[41].table, nullptr);
  EXPECT_EQ(records(), Lines({readError("Military Alias Table - Header")}));
  EXPECT_EQ(dbReadMilitaryTable(unseekable(), nullptr, &proc_), -19);
  EXPECT_EQ(records(), Lines({readError("Military Alias Table - Header")}));
  EXPECT_EQ(dbReadMilitaryTable(unseekable(), &record_, nullptr), -19);
  EXPECT_EQ(records(), Lines());
}

TEST_F(CountedTablesTest, FailedMilitaryAllocationIsReportedAsARead) {
  for (const std::uint16_t count : {std::uint16_t{0}, std::uint16_t{2}}) {
    Stream* const file = holding(military(count, count));
    test::failAllocationAfter(0);
    EXPECT_EQ(readMilitary(file), -19);
    EXPECT_EQ(refPointers[41].table, nullptr);
    EXPECT_EQ(refPointers[42].table, nullptr);
    EXPECT_EQ(records(), Lines({readError("Military Alias Table - malloc")}));
  }
}

TEST_F(CountedTablesTest, ReadErrorBehindTheMilitaryHeaderIsAFailedRead) {
  Stream* const sound = holding(military(2, 3));
  ASSERT_EQ(readMilitary(sound), 0);
  emptySlots();
  records();
  Stream* const file = holding(military(2, 3), "broken");
  test::armFaults({test::FaultKind::kRead, 2, test::FaultMode::kOnce, EIO});
  EXPECT_EQ(readMilitary(file), -19);
  test::disarmFaults();
  EXPECT_TRUE(streamError(file));
  EXPECT_EQ(refPointers[41].table, nullptr);
  EXPECT_EQ(refPointers[42].table, nullptr);
  EXPECT_EQ(records().back(), readError("Military Alias Table - read"));
}

TEST_F(CountedTablesTest, MilitaryTableIsTraced) {
  options_.debugSwitch = 'D';
  EXPECT_EQ(readMilitary(holding(military(1, 0))), 0);
  EXPECT_EQ(records(),
            Lines({trace("Entering dbReadMilitaryTable"), info("Military Alias Table", 38),
                   trace("Leaving dbReadMilitaryTable")}));
}

TEST_F(CountedTablesTest, ZonesAreLoadedWithoutASizeLine) {
  Bytes file(kRba, 0xEE);
  const Bytes zones = {3, 0, 1, 2, 3, 4, 5, 6, 0xEE};
  file.insert(file.end(), zones.begin(), zones.end());
  EXPECT_EQ(readZones(holding(file)), 0);
  EXPECT_EQ(Bytes(refPointers[43].bytes, refPointers[43].bytes + 2), Bytes({3, 0}));
  EXPECT_EQ(held(44, 7), Bytes({1, 2, 3, 4, 5, 6, 0}));
  EXPECT_EQ(records(), Lines());
}

TEST_F(CountedTablesTest, NoZonesAreABlockOfNoBytes) {
  EXPECT_EQ(readZones(holding(Bytes(kRba + 2))), 0);
  EXPECT_NE(refPointers[44].table, nullptr);
  EXPECT_EQ(records(), Lines());
}

TEST_F(CountedTablesTest, FailedZoneCount) {
  EXPECT_EQ(readZones(unseekable()), -20);
  EXPECT_EQ(refPointers[44].table, nullptr);
  EXPECT_EQ(records(), Lines({readError("PO BOX Zone records - read count")}));
  EXPECT_EQ(dbReadPOBZone(unseekable(), nullptr, &proc_), -20);
  EXPECT_EQ(records(), Lines({readError("PO BOX Zone records - read count")}));
  EXPECT_EQ(dbReadPOBZone(unseekable(), &record_, nullptr), -20);
}

TEST_F(CountedTablesTest, FailedZoneAllocationIsReportedAsARead) {
  Bytes file(kRba + 20);
  for (const unsigned char count : Bytes{0, 3}) {
    file[kRba] = count;
    test::failAllocationAfter(0);
    EXPECT_EQ(readZones(holding(file)), -20);
    EXPECT_EQ(refPointers[44].table, nullptr);
    EXPECT_EQ(records(), Lines({readError("PO BOX Zone records - malloc()")}));
  }
}

TEST_F(CountedTablesTest, ReadErrorBehindTheZoneCountIsAFailedRead) {
  Bytes bytes(kRba + 20);
  bytes[kRba] = 3;
  ASSERT_EQ(readZones(holding(bytes)), 0);
  emptySlots();
  Stream* const file = holding(bytes, "broken");
  test::armFaults({test::FaultKind::kRead, 2, test::FaultMode::kOnce, EIO});
  EXPECT_EQ(readZones(file), -20);
  test::disarmFaults();
  EXPECT_TRUE(streamError(file));
  EXPECT_NE(refPointers[44].table, nullptr);
  EXPECT_EQ(records().back(), readError("PO BOX Zone records - read records"));
}

TEST_F(CountedTablesTest, ZonesAreTraced) {
  options_.debugSwitch = 'D';
  EXPECT_EQ(readZones(holding(Bytes(kRba + 2))), 0);
  EXPECT_EQ(records(), Lines({trace("Entering dbReadPOBZone"), trace("Leaving dbReadPOBZone")}));
}

}  // namespace
}  // namespace statecut
