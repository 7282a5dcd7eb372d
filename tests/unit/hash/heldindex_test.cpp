// The index behind dbHashFind: when it is made, and when it goes.

#include "hash/heldindex.h"

#include "base/memory.h"
#include "hash/namehash.h"
#include "unit/hash/indexfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

class HeldIndex : public IndexFixture {
 protected:
  HeldIndex() { load(); }
  ~HeldIndex() override {
    dbHashDropIndexes();
    loadedHashTable = nullptr;
  }

  void load() {
    setTable(kSlotStreetNames, packed({"MAIN", "OAK"}));
    record.set(RefControlRec::streetNamesBytes, 9);
    makeIndex(64);
    plant("MAIN", kStreetNames, 0);
    plant("OAK", kStreetNames, 5);
    loadedHashTable = refPointers[kSlotHashTable].table;  // as dbReadHashedNames does
  }
  std::uint32_t findOak() { return find("OAK", kStreetNames); }
  // Unlinks the name in place, which nobody is told of.
  void unlinkOak() { setSlot(slotOf("OAK", kStreetNames), 0, 0, 0); }
};

TEST_F(HeldIndex, AnswersOnRequest) {
  ASSERT_EQ(findOak(), 5u);
  EXPECT_TRUE(dbHashIndexNames(kStreetNames, nullptr));
  EXPECT_EQ(findOak(), 5u);
  EXPECT_EQ(find("OAL", kStreetNames), kNotFound);
  EXPECT_EQ(find(std::string(100, 'X'), kStreetNames), kNotFound);
  EXPECT_EQ(dbHashFind(nullptr, 3, kStreetNames, nullptr), kNotFound);
  EXPECT_EQ(dbHashFind(nullptr, -1, kStreetNames, nullptr), kNotFound);
  unlinkOak();
  EXPECT_EQ(findOak(), 5u) << "not from the index";
  dbHashDropIndexes();
  EXPECT_EQ(findOak(), kNotFound);
}

TEST_F(HeldIndex, IsMadeByItselfAfterManyLookupsOfTheType) {
  for (std::uint32_t i = 1; i < kLookupsToIndex; ++i) ASSERT_EQ(findOak(), 5u);
  for (std::uint32_t i = 0; i < kLookupsToIndex; ++i) find("ELM", kCityNames);
  unlinkOak();
  EXPECT_EQ(findOak(), kNotFound) << "made before, or of that call's tables";
  load();
  for (std::uint32_t i = 0; i < kLookupsToIndex; ++i) ASSERT_EQ(findOak(), 5u);
  unlinkOak();
  EXPECT_EQ(findOak(), 5u) << "not made";
}

TEST_F(HeldIndex, IsNotMadeByItselfOfAHashTableThatNoReaderLoaded) {
  loadedHashTable = nullptr;
  for (std::uint32_t i = 0; i < 2 * kLookupsToIndex; ++i) ASSERT_EQ(findOak(), 5u);
  unlinkOak();
  EXPECT_EQ(findOak(), kNotFound);
}

TEST_F(HeldIndex, GoesWithARenumberedName) {
  ASSERT_TRUE(dbHashIndexNames(kStreetNames, nullptr));
  EXPECT_EQ(zap("OAK", kStreetNames, 0), 5);
  EXPECT_EQ(findOak(), kNotFound);
}

TEST_F(HeldIndex, GoesWithARenumberedBatch) {
  ASSERT_TRUE(dbHashIndexNames(kStreetNames, nullptr));
  const unsigned char name[] = {'O', 'A', 'K'};
  const HashedName batch[] = {{name, 3, 0}};
  zapHashedNames(batch, kStreetNames);
  EXPECT_EQ(findOak(), kNotFound);
}

TEST_F(HeldIndex, GoesWithItsTables) {
  ASSERT_TRUE(dbHashIndexNames(kStreetNames, nullptr));
  load();
  unlinkOak();
  EXPECT_EQ(findOak(), kNotFound);
  load();
  ASSERT_TRUE(dbHashIndexNames(kStreetNames, nullptr));
  dropHashMask();  // as those do who release or load the hash table
  unlinkOak();
  EXPECT_EQ(findOak(), kNotFound);
}

TEST_F(HeldIndex, GoesWithTheCountsOfTheRecord) {
  ASSERT_TRUE(dbHashIndexNames(kStreetNames, nullptr));
  record.set(RefControlRec::streetNamesBytes, 5);
  EXPECT_EQ(findOak(), kNotFound);
  EXPECT_EQ(find("MAIN", kStreetNames), 0u);
}

TEST_F(HeldIndex, IsNotMadeWithoutTables) {
  ASSERT_TRUE(dbHashIndexNames(kStreetNames, nullptr));
  EXPECT_FALSE(dbHashIndexNames(kFirmNames, nullptr)) << "no table of firms";
  EXPECT_FALSE(dbHashIndexNames(6, nullptr)) << "no such type";
  pProcObj = nullptr;
  EXPECT_FALSE(dbHashIndexNames(kStreetNames, nullptr));
  EXPECT_EQ(findOak(), kNotFound);
}

}  // namespace
