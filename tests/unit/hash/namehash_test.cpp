#include "hash/namehash.h"

#include "unit/hash/indexfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

class NameHash : public IndexFixture {
 protected:
  NameHash() {
    setTable(kSlotFirms, packed({"ACME", "BOLTS"}));
    record.set(RefControlRec::firmsBytes, 11);
    setTable(kSlotStreetNames, packed({"ELM", "OAK"}));
    record.set(RefControlRec::streetNamesBytes, 8);
    setTable(kSlotStreetStandards, variants({"ELM", "OAK"}));
    record.set(RefControlRec::streetStandardsBytes, 16);
    setTable(kSlotStreetPhonetics, variants({"LM", "K"}));
    record.set(RefControlRec::streetPhoneticsBytes, 13);
    setTable(kSlotCityNames, Bytes(34) + cityRecord("OK", "TULSA") + cityRecord("TX", "DALLAS"));
    record.set(RefControlRec::cityNamesCount, 3);
    setTable(kSlotCityPhonetics, Bytes(26) + phoneticRecord("OK", "TLS"));
    record.set(RefControlRec::cityPhoneticsCount, 2);
    makeIndex(64, 4);
  }
};

TEST_F(NameHash, FindsANameOfEachType) {
  const struct {
    const char* name;
    NameType type;
    std::uint32_t number;
  } names[] = {{"BOLTS", kFirmNames, 5},    {"OAK", kStreetNames, 4},
               {"TXDALLAS", kCityNames, 2}, {"OAK", kStreetStandards, 8},
               {"K", kStreetPhonetics, 7},  {"OKTLS", kCityPhonetics, 1}};
  for (const auto& name : names) {
    makeIndex(64);
    plant(name.name, name.type, name.number);
    EXPECT_EQ(find(name.name, name.type), name.number) << name.name;
  }
}

TEST_F(NameHash, EmptySlotIsNotFound) {
  plant("TXDALLAS", kCityNames, 2);
  ASSERT_EQ(find("TXDALLAS", kCityNames), 2u);
  setSlot(slotOf("TXDALLAS", kCityNames), 0, checkOf("TXDALLAS", kCityNames), 2);
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
}

TEST_F(NameHash, NameOfAnotherLengthIsNotFound) {
  plant("TXDALLAS", kCityNames, 2);
  ASSERT_EQ(find("TXDALLAS", kCityNames), 2u);
  refPointers[kSlotCityNames].table[2 * 34 + 3] = 5;
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
}

TEST_F(NameHash, OtherCheckValueIsNotFound) {
  plant("TXDALLAS", kCityNames, 2);
  ASSERT_EQ(find("TXDALLAS", kCityNames), 2u);
  setSlot(slotOf("TXDALLAS", kCityNames), 1, checkOf("TXDALLAS", kCityNames) ^ 0x0100, 2);
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
}

// Few slots leave bits of the hash under the type in the check value, more than 16 bits in all.
TEST_F(NameHash, CheckValueOfASmallTableIsComparedInFull) {
  makeIndex(1, 2);
  const std::uint32_t check = checkOf("TXDALLAS", kCityNames);
  ASSERT_EQ(check, 0x495Du | 2u);
  setSlot(0, 1, check, 2);
  EXPECT_EQ(find("TXDALLAS", kCityNames), 2u);
}

TEST_F(NameHash, NamesThatShareASlotAreFoundInOverflow) {
  makeIndex(1, 3);
  setSlot(0, 2, 0, 1);
  setOverflow(1, checkOf("OKTULSA", kCityNames), 1);
  setOverflow(2, checkOf("TXDALLAS", kCityNames), 2);
  EXPECT_EQ(find("OKTULSA", kCityNames), 1u);
  EXPECT_EQ(find("TXDALLAS", kCityNames), 2u);
  EXPECT_EQ(find("TXAUSTIN", kCityNames), kNotFound);
}

TEST_F(NameHash, FirstMatchingOverflowEntryIsFound) {
  makeIndex(1, 3);
  setTable(kSlotCityNames, Bytes(34) + cityRecord("TX", "DALLAS") + cityRecord("TX", "DALLAS"));
  setSlot(0, 2, 0, 0);
  setOverflow(0, checkOf("TXDALLAS", kCityNames), 2);
  setOverflow(1, checkOf("TXDALLAS", kCityNames), 1);
  EXPECT_EQ(find("TXDALLAS", kCityNames), 2u);
}

TEST_F(NameHash, EveryByteOfANumberCounts) {
  makeIndex(1, 5);
  for (const std::uint32_t high : {0u, 0x01000000u}) {
    const std::uint32_t expected = high == 0 ? 1 : kNotFound;
    setSlot(0, 1, checkOf("OKTULSA", kCityNames), high + 1);
    EXPECT_EQ(find("OKTULSA", kCityNames), expected);
    setSlot(0, 2, 0, 0);
    setOverflow(1, checkOf("OKTULSA", kCityNames), high + 1);
    EXPECT_EQ(find("OKTULSA", kCityNames), expected);
    setOverflow(1, 0, 0);
    setSlot(0, 5, 0, 0);
    setOverflow(4, checkOf("OKTULSA", kCityNames), high + 1);
    EXPECT_EQ(find("OKTULSA", kCityNames), expected);
    setOverflow(4, 0, 0);
  }
}

TEST_F(NameHash, OverflowChainEndsWithItsTable) {
  makeIndex(1, 3);
  setSlot(0, 2, 0, 2);
  setOverflow(2, checkOf("OKTULSA", kCityNames), 1);
  EXPECT_EQ(find("OKTULSA", kCityNames), 1u);
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
  setSlot(0, 255, 0, 0xFFFFFFFF);
  EXPECT_EQ(find("OKTULSA", kCityNames), kNotFound);
}

TEST_F(NameHash, TypeIsPartOfHashAndCheckValue) {
  plant("OAK", kStreetNames, 4);
  ASSERT_EQ(find("OAK", kStreetNames), 4u);
  EXPECT_EQ(find("OAK", kStreetStandards), kNotFound);
  EXPECT_NE(hashOf("OAK", kStreetNames), hashOf("OAK", kStreetStandards));
}

TEST_F(NameHash, SlotOutsideTheTableIsNotFound) {
  plant("TXDALLAS", kCityNames, 2);
  ASSERT_EQ(find("TXDALLAS", kCityNames), 2u);
  ASSERT_GT(slotOf("TXDALLAS", kCityNames) + 1, 0u);
  record.set(RefControlRec::hashTableCount, slotOf("TXDALLAS", kCityNames));
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
}

TEST_F(NameHash, SlotCountZeroIsNotFound) {
  makeIndex(0);
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
  EXPECT_EQ(zap("TXDALLAS", kCityNames, 1), -1);
}

TEST_F(NameHash, MaskAndComplementAreKeptBesideTheTables) {
  keepHashMask(64);
  EXPECT_EQ(le::get<4>(refPointers[kSlotHashMask].bytes), 63u);
  EXPECT_EQ(le::get<4>(refPointers[kSlotHashMask].bytes + 4), 0xFFFFFFC0u);
}

TEST_F(NameHash, MaskIsSetFromTheCountWhenNoneIsKept) {
  plant("TXDALLAS", kCityNames, 2);
  ASSERT_EQ(le::get<4>(refPointers[kSlotHashMask].bytes + 4), 0u);
  EXPECT_EQ(find("TXDALLAS", kCityNames), 2u);
  EXPECT_EQ(le::get<4>(refPointers[kSlotHashMask].bytes), 63u);
}

TEST_F(NameHash, NumberBeyondTheNameTableMatchesNothing) {
  plant("TXDALLAS", kCityNames, 2);
  ASSERT_EQ(find("TXDALLAS", kCityNames), 2u);
  record.set(RefControlRec::cityNamesCount, 2);
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);

  plant("OKTLS", kCityPhonetics, 1);
  ASSERT_EQ(find("OKTLS", kCityPhonetics), 1u);
  record.set(RefControlRec::cityPhoneticsCount, 1);
  EXPECT_EQ(find("OKTLS", kCityPhonetics), kNotFound);
}

TEST_F(NameHash, OffsetBeyondTheNameTableMatchesNothing) {
  plant("OAK", kStreetNames, 4);
  ASSERT_EQ(find("OAK", kStreetNames), 4u);
  record.set(RefControlRec::streetNamesBytes, 4);
  EXPECT_EQ(find("OAK", kStreetNames), kNotFound);

  plant("OAK", kStreetStandards, 8);
  record.set(RefControlRec::streetStandardsBytes, 13);
  ASSERT_EQ(find("OAK", kStreetStandards), 8u);
  record.set(RefControlRec::streetStandardsBytes, 12);  // the length byte is the 13th
  EXPECT_EQ(find("OAK", kStreetStandards), kNotFound);

  plant("OAK", kStreetStandards, 0xFFFFFFFE);
  EXPECT_EQ(find("OAK", kStreetStandards), kNotFound);
}

// An entry whose check value happens to fit but whose number is of another type's table.
TEST_F(NameHash, UnfitCandidateDoesNotEndTheChain) {
  makeIndex(1, 2);
  setSlot(0, 2, 0, 0);
  setOverflow(0, checkOf("TXDALLAS", kCityNames), 4711);
  setOverflow(1, checkOf("TXDALLAS", kCityNames), 2);
  EXPECT_EQ(find("TXDALLAS", kCityNames), 2u);
}

TEST_F(NameHash, NegativeLengthIsNotFound) {
  setTable(kSlotStreetNames, Bytes{0xFF, 'A'});  // a length byte of -1
  record.set(RefControlRec::streetNamesBytes, 2);
  makeIndex(1);
  setSlot(0, 1, kStreetNames | (0x811C9DC6u >> 16), 0);
  EXPECT_EQ(dbHashFind(nullptr, -1, kStreetNames, nullptr), kNotFound);
  EXPECT_EQ(zapHashedName(nullptr, -1, kStreetNames, 3), -1);
}

TEST_F(NameHash, UnknownTypeMatchesOnlyANameOfNoLength) {
  makeIndex(1);
  setSlot(0, 1, checkOf("", 9), 77);
  EXPECT_EQ(find("", 9), 77u);
  setSlot(0, 1, checkOf("A", 9), 77);
  EXPECT_EQ(find("A", 9), kNotFound);
}

// The length byte of a city name is unsigned: the name runs on into the records behind.
TEST_F(NameHash, LongCityNameRunsOnIntoTheNextRecords) {
  refPointers[kSlotCityNames].table[34 + 3] = 40;
  const std::string name(reinterpret_cast<const char*>(refPointers[kSlotCityNames].table) + 38, 42);
  plant(name, kCityNames, 1);
  EXPECT_EQ(find(name, kCityNames), 1u);

  refPointers[kSlotCityNames].table[2 * 34 + 3] = 255;  // behind the last record: zeros
  const std::string last(reinterpret_cast<const char*>(refPointers[kSlotCityNames].table) + 72,
                         257);
  plant(last, kCityNames, 2);
  EXPECT_EQ(find(last, kCityNames), 2u);
}

TEST_F(NameHash, NothingIsFoundWithoutTables) {
  plant("TXDALLAS", kCityNames, 2);
  ASSERT_EQ(find("TXDALLAS", kCityNames), 2u);
  proc.refControlRec = nullptr;
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
  proc.refControlRec = &record;
  unsigned char* names = refPointers[kSlotCityNames].table;
  refPointers[kSlotCityNames].table = nullptr;
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
  refPointers[kSlotCityNames].table = names;
  unsigned char* slots = refPointers[kSlotHashTable].table;
  refPointers[kSlotHashTable].table = nullptr;
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
  refPointers[kSlotHashTable].table = slots;
  EXPECT_EQ(find("TXDALLAS", kCityNames), 2u);
}

TEST_F(NameHash, ZapOverwritesTheNumberAndReturnsTheOldOne) {
  plant("TXDALLAS", kCityNames, 2);
  setTable(kSlotCityNames, Bytes(34) + cityRecord("TX", "DALLAS") + cityRecord("TX", "DALLAS"));
  EXPECT_EQ(zap("TXDALLAS", kCityNames, 1), 2);
  EXPECT_EQ(find("TXDALLAS", kCityNames), 1u);
  EXPECT_EQ(zap("TXAUSTIN", kCityNames, 1), -1);
}

TEST_F(NameHash, ZapToZeroKeepsTheCountAndUnlinksTheName) {
  plant("TXDALLAS", kCityNames, 2);
  EXPECT_EQ(zap("TXDALLAS", kCityNames, 0), 2);
  const unsigned char* slot = slotBytes(slotOf("TXDALLAS", kCityNames));
  EXPECT_EQ(slot[0], 1);
  EXPECT_EQ(le::get<2>(slot + 1), checkOf("TXDALLAS", kCityNames));
  EXPECT_EQ(le::get<4>(slot + 3), 0u);
  EXPECT_EQ(find("TXDALLAS", kCityNames), kNotFound);
}

TEST_F(NameHash, ZapChangesTheFirstMatchInOverflowAlone) {
  makeIndex(1, 3);
  setTable(kSlotCityNames, Bytes(34) + cityRecord("TX", "DALLAS") + cityRecord("TX", "DALLAS"));
  setSlot(0, 3, 0, 0);
  setOverflow(0, checkOf("OKTULSA", kCityNames), 1);
  setOverflow(1, checkOf("TXDALLAS", kCityNames), 2);
  setOverflow(2, checkOf("TXDALLAS", kCityNames), 1);
  EXPECT_EQ(zap("TXDALLAS", kCityNames, 0), 2);
  const unsigned char* entries = refPointers[kSlotHashOverflow].table;
  EXPECT_EQ(le::get<4>(entries + 2), 1u);
  EXPECT_EQ(le::get<4>(entries + 8), 0u);
  EXPECT_EQ(le::get<4>(entries + 14), 1u);
  EXPECT_EQ(slotBytes(0)[0], 3);
}

// The number that an earlier call stored leads to another record of the source table.
TEST_F(NameHash, RenumberedEntryIsComparedAtItsNewNumber) {
  plant("TXDALLAS", kCityNames, 2);
  ASSERT_EQ(zap("TXDALLAS", kCityNames, 1), 2);
  EXPECT_EQ(zap("TXDALLAS", kCityNames, 0), -1);  // record 1 is OK TULSA
}

}  // namespace
