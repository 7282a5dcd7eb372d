// Renumbering names of every type, one by one and in batches.

#include "hash/namehash.h"
#include "unit/hash/indexfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

class EveryType : public IndexFixture {
 protected:
  void table(SlotNumber slot, const Bytes& bytes, std::uint32_t type) {
    makeIndex(8);
    setTable(slot, bytes);
    const auto size = static_cast<std::uint32_t>(bytes.size());
    if (type == kFirmNames) record.set(RefControlRec::firmsBytes, size);
    if (type == kStreetNames) record.set(RefControlRec::streetNamesBytes, size);
    if (type == kStreetStandards) record.set(RefControlRec::streetStandardsBytes, size);
    if (type == kStreetPhonetics) record.set(RefControlRec::streetPhoneticsBytes, size);
  }
  void expectRenumbered(std::string_view name, std::uint32_t type, std::uint32_t number) {
    plant(name, type, number);
    EXPECT_EQ(find(name, type), number);
    EXPECT_EQ(zap("ELSE", type, 3), -1);
    EXPECT_EQ(zap(name, type, 0), static_cast<std::int32_t>(number));
    EXPECT_NE(find(name, type), number);
  }
};

TEST_F(EveryType, FirmIsRenumbered) {
  table(kSlotFirms, packed({"ACME", "BOLTS"}), kFirmNames);
  expectRenumbered("BOLTS", kFirmNames, 5);
}

TEST_F(EveryType, StreetIsRenumbered) {
  table(kSlotStreetNames, packed({"ELM", "OAK"}), kStreetNames);
  expectRenumbered("OAK", kStreetNames, 4);
}

TEST_F(EveryType, StandardizedStreetIsRenumbered) {
  table(kSlotStreetStandards, variants({"ELM", "OAK"}), kStreetStandards);
  expectRenumbered("OAK", kStreetStandards, 8);
}

TEST_F(EveryType, PhoneticStreetIsRenumbered) {
  table(kSlotStreetPhonetics, variants({"LM", "K"}), kStreetPhonetics);
  expectRenumbered("K", kStreetPhonetics, 7);
}

TEST_F(EveryType, BatchesRenumberAsOneByOne) {
  constexpr std::size_t kNames = 2 * kZapBatch + 5;
  std::vector<std::string> names;
  Bytes cities = cityRecord("", "");
  for (std::size_t i = 0; i < kNames; ++i) {
    const std::string name = {static_cast<char>('A' + i / 26), static_cast<char>('A' + i % 26)};
    cities = cities + cityRecord("TX", name);
    names.push_back("TX" + name);
  }
  makeIndex(1, kNames);
  setTable(kSlotCityNames, cities);
  record.set(RefControlRec::cityNamesCount, kNames + 1);
  setSlot(0, kNames, 0, 0);
  std::vector<HashedName> batch;
  for (std::uint32_t i = 0; i < kNames; ++i) {
    setOverflow(i, checkOf(names[i], kCityNames), i + 1);
    batch.push_back({reinterpret_cast<const unsigned char*>(names[i].data()), 4, 1000 + i});
  }
  for (std::uint32_t i = 0; i < kNames; ++i) ASSERT_EQ(find(names[i], kCityNames), i + 1);
  zapHashedNames(batch, kCityNames);
  for (std::uint32_t i = 0; i < kNames; ++i) {
    const unsigned char* number = refPointers[kSlotHashOverflow].table + i * 6 + 2;
    EXPECT_EQ(number[0] | number[1] << 8, static_cast<int>(1000 + i));
  }
  pProcObj = nullptr;
  zapHashedNames(batch, kCityNames);  // nothing to search
}

TEST_F(EveryType, NamesWithoutBytesAreNotSearched) {
  makeIndex(8);
  for (std::uint32_t type = kFirmNames; type <= kCityPhonetics + 1; ++type) {
    EXPECT_EQ(dbHashFind(nullptr, 3, type, &proc), kNotFound);
    EXPECT_EQ(dbHashFindOff(nullptr, 3, type, &proc), kNotFound);
    EXPECT_EQ(zapHashedName(nullptr, 3, type, 1), -1);
  }
  const unsigned char name[] = "NAME";
  EXPECT_EQ(dbHashFindOff(name, 4, kFirmNames, nullptr), kNotFound);
  pProcObj = nullptr;
  EXPECT_EQ(zapHashedName(name, 4, kFirmNames, 1), -1);
}

}  // namespace
