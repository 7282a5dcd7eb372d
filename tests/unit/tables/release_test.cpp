// Release of the loaded tables.
#include <string>
#include <utility>
#include <vector>

#include "tables/tolvfree.h"
#include "unit/tables/tablefixture.h"

namespace statecut {
namespace {

using test::Bytes;
using test::Lines;

using Named = std::vector<std::pair<std::size_t, const char*>>;  // slot, name when empty

struct Release {
  const char* name;
  TableRelease* release;
  bool zeroes;
  Named slots;
};

// In the order of the whole release.
const std::vector<Release> kReleases = {
    {"free1", free1, false, {{0, "Street Pattern"}, {1, "Street POB"}, {2, "Street Rural Route"}}},
    {"free10", free10, false, {{19, "Street Name Index USPS"}}},
    {"free13", free13, false, {{27, "Firm Data"}}},
    {"free2",
     free2,
     false,
     {{3, "City Data"},
      {4, "City Multi Zip"},
      {5, "City Multi Finance"},
      {6, "City Multi Zip RBAs"}}},
    {"free3", free3, false, {{7, "City Name Index"}}},
    {"free4", free4, false, {{9, "City Name Index Phonetic"}}},
    {"free5",
     free5,
     false,
     {{10, "Zip Code Data"},
      {11, "Zip Code Index"},
      {12, "Zip Multi City Data"},
      {13, "Zip Finance Multi Zip Data"}}},
    {"free6", free6, false, {{14, "Unique Zip Index"}}},
    {"free7", free7, false, {{15, "County Data"}}},
    {"free8", free8, false, {{16, "URB Data USPS"}, {17, "URB MultiZip Data USPS"}}},
    {"free9", free9, false, {{18, "URB Data Variations"}}},
    {"free11",
     free11,
     true,
     {{21, "Street Name Data Phonetic"}, {22, "Street Name Index Phonetic"}}},
    {"free12",
     free12,
     true,
     {{24, "Street Name Data Standard"}, {25, "Street Name Index Standard"}}},
    {"free14", free14, false, {{29, "General Delivery"}}},
    {"free16", free16, false, {{31, "Multi Zip Table"}}},
    {"free18", free18, true, {{37, "Hash Names"}, {38, "Hash Overflow"}}}};

std::string notFreed(const char* name) {
  return std::string("DBG;tolvfree;20999;Debug Message;Could not free memory for ") + name + ".";
}

Lines allNotFreed() {
  Lines lines;
  for (const Release& release : kReleases)
    for (const auto& [slot, name] : release.slots) lines.push_back(notFreed(name));
  return lines;
}

void fill(std::size_t slot) {
  refPointers[slot].table = static_cast<unsigned char*>(allocTable(0));
}

class ReleaseTest : public test::TableFixture {
 protected:
  ReleaseTest() { proc_.refControlRec = nullptr; }
  ~ReleaseTest() override { referenceCount = 0; }

  RngControlRec* giveRangeRecord() {
    return proc_.rngControlRec = static_cast<RngControlRec*>(allocTable(RngControlRec::size));
  }
};

TEST_F(ReleaseTest, EmptySlotsAreLogged) {
  for (const Release& release : kReleases) {
    EXPECT_EQ(release.release(&proc_), 0) << release.name;
    Lines expected;
    for (const auto& [slot, name] : release.slots) expected.push_back(notFreed(name));
    EXPECT_EQ(records(), expected) << release.name;
    EXPECT_EQ(release.release(nullptr), 0) << release.name;
    EXPECT_EQ(records(), Lines());
  }
}

TEST_F(ReleaseTest, FilledSlotsAreReleasedAndOnlySomeAreZeroed) {
  for (const Release& release : kReleases) {
    for (const auto& [slot, name] : release.slots) fill(slot);
    EXPECT_EQ(release.release(&proc_), 0);
    EXPECT_EQ(records(), Lines()) << release.name;
    for (const auto& [slot, name] : release.slots) {
      EXPECT_EQ(refPointers[slot].table == nullptr, release.zeroes) << name;
      refPointers[slot].table = nullptr;
    }
  }
}

TEST_F(ReleaseTest, OneEmptySlotAmongFilledOnesIsLogged) {
  fill(0);
  fill(2);
  EXPECT_EQ(free1(&proc_), 0);
  EXPECT_EQ(records(), Lines({notFreed("Street POB")}));
  refPointers = {};
}

TEST_F(ReleaseTest, NamesNotHeldInMemoryAreNotReleased) {
  fill(19);
  fill(27);
  for (char(*setting)[4] : {&options_.streetNamesMemory, &options_.firmMemory})
    std::char_traits<char>::copy(*setting, "OFF", 4);
  EXPECT_EQ(free10(&proc_), 0);
  EXPECT_EQ(free13(&proc_), 0);
  EXPECT_NE(refPointers[19].table, nullptr);
  emptySlots();
  EXPECT_EQ(free10(&proc_), 0);
  EXPECT_EQ(free13(&proc_), 0);
  EXPECT_EQ(records(), Lines());
  std::char_traits<char>::copy(options_.firmMemory, "ON ", 4);
  EXPECT_EQ(free13(&proc_), 0);
  EXPECT_EQ(records(), Lines({notFreed("Firm Data")}));
}

TEST_F(ReleaseTest, MilitaryTableIsReleasedWithBothItsSlots) {
  le::put<2>(refPointers[40].bytes, 1);
  fill(41);
  refPointers[42].table = refPointers[41].table + 38;
  EXPECT_EQ(freeMilitary(&proc_), 0);
  EXPECT_EQ(refPointers[41].table, nullptr);
  EXPECT_EQ(refPointers[42].table, nullptr);
  EXPECT_EQ(records(), Lines());
  EXPECT_EQ(freeMilitary(&proc_), 0);
  EXPECT_EQ(records(), Lines({notFreed("Military Alias")}));
}

TEST_F(ReleaseTest, MilitaryTableWithoutAFirstPartIsNotReleased) {
  le::put<2>(refPointers[40].bytes + 2, 5);
  fill(41);
  EXPECT_EQ(freeMilitary(&proc_), 0);
  EXPECT_NE(refPointers[41].table, nullptr);
  EXPECT_EQ(records(), Lines());
}

TEST_F(ReleaseTest, ZonesAreReleasedWhenThereAreAnyAndTheirSlotKeepsItsPointer) {
  EXPECT_EQ(freePBZones(&proc_), 0);
  EXPECT_EQ(records(), Lines());
  le::put<2>(refPointers[43].bytes, 1);
  EXPECT_EQ(freePBZones(&proc_), 0);
  EXPECT_EQ(records(), Lines({notFreed("PO BOX Zones")}));
  fill(44);
  EXPECT_EQ(freePBZones(&proc_), 0);
  EXPECT_NE(refPointers[44].table, nullptr);
  EXPECT_EQ(records(), Lines());
  refPointers[44].table = nullptr;  // already released
}

TEST_F(ReleaseTest, LastUserReleasesEverythingInOrder) {
  referenceCount = 1;
  giveRangeRecord();
  EXPECT_EQ(dbTerminate(&proc_), 0);
  EXPECT_EQ(referenceCount, 0U);
  EXPECT_EQ(proc_.rngControlRec, nullptr);
  Lines expected = allNotFreed();
  EXPECT_EQ(expected.size(), 28U);
  expected.push_back(notFreed("Control Record"));
  EXPECT_EQ(records(), expected);
}

TEST_F(ReleaseTest, LastUserReleasesTheControlRecordAndKeepsItsPointer) {
  referenceCount = 1;
  auto* const record = static_cast<RefControlRec*>(allocTable(RefControlRec::size));
  proc_.refControlRec = record;
  EXPECT_EQ(dbTerminate(&proc_), 0);
  EXPECT_EQ(records(), allNotFreed());
  EXPECT_EQ(proc_.refControlRec, record);
  proc_.refControlRec = nullptr;
}

TEST_F(ReleaseTest, LoadedTablesOfAllReadersButFiveAreReleased) {
  referenceCount = 1;
  for (std::size_t slot = 0; slot < 45; ++slot)
    if (slot < 39 || slot == 41 || slot == 44) fill(slot);
  le::put<2>(refPointers[40].bytes, 1);
  le::put<2>(refPointers[43].bytes, 1);
  std::vector<unsigned char*> kept;
  for (const std::size_t slot : {8U, 20U, 23U, 26U, 28U, 30U, 32U, 33U, 34U, 35U, 36U})
    kept.push_back(refPointers[slot].table);
  EXPECT_EQ(dbTerminate(&proc_), 0);
  EXPECT_EQ(records(), Lines({notFreed("Control Record")}));
  // Released here: a second release of one of these would stop the test under a sanitizer.
  for (unsigned char* const table : kept) freeTable(table);
  refPointers = {};
}

TEST_F(ReleaseTest, EarlierUserReleasesTheRangeRecordOnly) {
  referenceCount = 2;
  giveRangeRecord();
  EXPECT_EQ(dbTerminate(&proc_), 0);
  EXPECT_EQ(referenceCount, 1U);
  EXPECT_EQ(proc_.rngControlRec, nullptr);
  EXPECT_EQ(records(), Lines());
}

TEST_F(ReleaseTest, CountNeverRaisedWrapsAndReleasesTheRangeRecordOnly) {
  giveRangeRecord();
  EXPECT_EQ(dbTerminate(&proc_), 0);
  EXPECT_EQ(referenceCount, 0xFFFFFFFFU);
  EXPECT_EQ(proc_.rngControlRec, nullptr);
  EXPECT_EQ(dbTerminate(&proc_), 0);
  EXPECT_EQ(records(), Lines());
}

TEST_F(ReleaseTest, NullContextFails) {
  referenceCount = 1;
  EXPECT_EQ(dbTerminate(nullptr), -1);
  EXPECT_EQ(referenceCount, 1U);
  memoryWarn("City Data", nullptr);
  EXPECT_EQ(records(), Lines());
}

}  // namespace
}  // namespace statecut
