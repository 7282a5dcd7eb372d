// The search that reads slots, overflow entries and names from the reference file.

#include <algorithm>

#include "base/stream.h"
#include "hash/namehash.h"
#include "support/files.h"
#include "unit/hash/indexfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

constexpr std::uint32_t kSlotsAt = 900;
constexpr std::uint32_t kOverflowAt = 1000;
constexpr std::uint32_t kTableAt = 2000;

class FileIndex : public IndexFixture {
 protected:
  FileIndex() { file_.resize(kTableAt); }
  ~FileIndex() override { close(); }

  // Puts the planted index and `table` into the file; the table's RBA is kTableAt.
  template <typename RbaField>
  void writeFile(RbaField rba, const Bytes& table) {
    std::copy_n(refPointers[kSlotHashTable].table, record.get(RefControlRec::hashTableCount) * 7,
                file_.begin() + kSlotsAt);
    std::copy_n(refPointers[kSlotHashOverflow].table,
                record.get(RefControlRec::hashOverflowCount) * 6, file_.begin() + kOverflowAt);
    record.set(RefControlRec::hashTableRba, kSlotsAt);
    record.set(RefControlRec::hashOverflowRba, kOverflowAt);
    record.set(rba, kTableAt);
    open(file_ + table);
  }

  std::uint32_t findOff(std::string_view name, std::uint32_t type) {
    return dbHashFindOff(reinterpret_cast<const unsigned char*>(name.data()),
                         static_cast<std::int32_t>(name.size()), type, &proc);
  }

 private:
  void open(const Bytes& bytes) {
    close();
    const std::string path = folder_.file("index");
    test::writeWholeFile(path, bytes);
    proc.files->reference = streamOpen(path.c_str(), "rb");
    ASSERT_NE(proc.files->reference, nullptr);
  }

  void close() {
    if (proc.files->reference == nullptr) return;
    streamClose(proc.files->reference);
    proc.files->reference = nullptr;
  }

  Bytes file_;
  test::TempDir folder_;
};

TEST_F(FileIndex, FindsPackedNames) {
  makeIndex(8);
  plant("BOLTS", kFirmNames, 5);
  record.set(RefControlRec::firmsBytes, 11);
  writeFile(RefControlRec::firmsRba, packed({"ACME", "BOLTS"}));
  EXPECT_EQ(findOff("BOLTS", kFirmNames), 5u);
  EXPECT_EQ(findOff("ACME", kFirmNames), kNotFound);

  makeIndex(8);
  plant("OAK", kStreetNames, 4);
  record.set(RefControlRec::streetNamesBytes, 8);
  writeFile(RefControlRec::streetNamesRba, packed({"ELM", "OAK"}));
  EXPECT_EQ(findOff("OAK", kStreetNames), 4u);
}

TEST_F(FileIndex, FindsVariationsBehindTheirKey) {
  makeIndex(8);
  plant("OAK", kStreetStandards, 8);
  record.set(RefControlRec::streetStandardsBytes, 16);
  writeFile(RefControlRec::streetStandardsRba, variants({"ELM", "OAK"}));
  EXPECT_EQ(findOff("OAK", kStreetStandards), 8u);

  makeIndex(8);
  plant("K", kStreetPhonetics, 7);
  record.set(RefControlRec::streetPhoneticsBytes, 13);
  writeFile(RefControlRec::streetPhoneticsRba, variants({"LM", "K"}));
  EXPECT_EQ(findOff("K", kStreetPhonetics), 7u);
}

TEST_F(FileIndex, FindsCityRecords) {
  makeIndex(8);
  plant("OKTULSA", kCityNames, 1);
  record.set(RefControlRec::cityNamesCount, 2);
  writeFile(RefControlRec::cityNamesRba, Bytes(34) + cityRecord("OK", "TULSA"));
  EXPECT_EQ(findOff("OKTULSA", kCityNames), 1u);
  record.set(RefControlRec::cityNamesCount, 1);
  EXPECT_EQ(findOff("OKTULSA", kCityNames), kNotFound);

  makeIndex(8);
  plant("OKTLS", kCityPhonetics, 1);
  record.set(RefControlRec::cityPhoneticsCount, 2);
  writeFile(RefControlRec::cityPhoneticsRba, Bytes(26) + phoneticRecord("OK", "TLS"));
  EXPECT_EQ(findOff("OKTLS", kCityPhonetics), 1u);
}

TEST_F(FileIndex, WalksSixByteOverflowEntries) {
  makeIndex(1, 3);
  setSlot(0, 2, 0, 1);
  setOverflow(1, checkOf("TXDALLAS", kCityNames), 0);  // the blank record does not match
  setOverflow(2, checkOf("OKTULSA", kCityNames), 1);
  record.set(RefControlRec::cityNamesCount, 2);
  writeFile(RefControlRec::cityNamesRba, Bytes(34) + cityRecord("OK", "TULSA"));
  EXPECT_EQ(findOff("OKTULSA", kCityNames), 1u);
  EXPECT_EQ(findOff("TXDALLAS", kCityNames), kNotFound);
}

TEST_F(FileIndex, EveryByteOfANumberCounts) {
  makeIndex(1, 2);
  record.set(RefControlRec::cityNamesCount, 2);
  for (const std::uint32_t high : {0u, 0x01000000u}) {
    const std::uint32_t expected = high == 0 ? 1 : kNotFound;
    setSlot(0, 1, checkOf("OKTULSA", kCityNames), high + 1);
    writeFile(RefControlRec::cityNamesRba, Bytes(34) + cityRecord("OK", "TULSA"));
    EXPECT_EQ(findOff("OKTULSA", kCityNames), expected);
    setSlot(0, 2, 0, 0);
    setOverflow(1, checkOf("OKTULSA", kCityNames), high + 1);
    writeFile(RefControlRec::cityNamesRba, Bytes(34) + cityRecord("OK", "TULSA"));
    EXPECT_EQ(findOff("OKTULSA", kCityNames), expected);
  }
}

TEST_F(FileIndex, NameLongerThanTheBytesReadMatchesNothing) {
  const std::string fits(40, 'F');
  makeIndex(1);
  setSlot(0, 1, checkOf(fits, kFirmNames), 0);
  record.set(RefControlRec::firmsBytes, 42);
  writeFile(RefControlRec::firmsRba, packed({fits}));
  EXPECT_EQ(findOff(fits, kFirmNames), 0u);

  const std::string tooLong(41, 'F');
  makeIndex(1);
  setSlot(0, 1, checkOf(tooLong, kFirmNames), 0);
  writeFile(RefControlRec::firmsRba, packed({tooLong}));
  EXPECT_EQ(findOff(tooLong, kFirmNames), kNotFound);
}

TEST_F(FileIndex, NegativeLengthIsNotFoundWithoutReading) {
  makeIndex(1);
  EXPECT_EQ(dbHashFindOff(nullptr, -1, kCityNames, &proc), kNotFound);  // no file is open
}

}  // namespace
