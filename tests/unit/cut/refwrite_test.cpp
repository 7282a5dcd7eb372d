#include "cut/refwrite.h"

#include <cstdlib>

#include "base/memory.h"
#include "base/stream.h"
#include "cut/openfiles.h"
#include "cut/workstate.h"
#include "unit/cut/cutfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

class RefWrite : public CutFixture {
 protected:
  RefWrite() {
    openOutputs();
    ::unsetenv("SOURCE_DATE_EPOCH");
    dateAndTime = 1700000000;
  }
};

TEST_F(RefWrite, PartitionsAreAppendedAndCounted) {
  const Bytes bytes = pattern(1000, 1);
  EXPECT_EQ(writePartition(bytes.data(), 1000), 0);
  EXPECT_EQ(writePartition(bytes.data(), 0), 0);
  EXPECT_EQ(writePartition(bytes.data() + 5, 10), 0);
  EXPECT_EQ(totalBytes, 1010u);
  EXPECT_EQ(slice(writtenReference(), 1000, 10), slice(bytes, 5, 10));
}

TEST_F(RefWrite, MissingBufferOrStreamIsRefused) {
  const unsigned char byte = 1;
  ASSERT_EQ(writePartition(&byte, 1), 0);
  EXPECT_EQ(writePartition(nullptr, 5), 1);
  Stream* good = newRefDb;
  newRefDb = nullptr;
  EXPECT_EQ(writePartition(&byte, 1), 1);
  newRefDb = good;
  EXPECT_EQ(totalBytes, 1u);
}

TEST_F(RefWrite, RangeRecordIsMarkedStampedAndWrittenWhole) {
  const Bytes source = pattern(624, 2);
  std::copy(source.begin(), source.end(), proc.rngControlRec->bytes.begin());
  proc.rngControlRec->set(RngControlRec::typeFlags, 2);
  EXPECT_EQ(writeRngControlRec(newRangeDb), 0);
  EXPECT_EQ(totalRngBytes, 624u);
  Bytes expected = source;
  const unsigned char changed[] = {6, 0, 0, 0, 0x00, 0xF1, 0x53, 0x65};
  std::copy(std::begin(changed), std::end(changed), expected.begin() + 24);
  EXPECT_EQ(writtenRange(), expected);
}

TEST_F(RefWrite, RangeRecordThatCannotBeWrittenIsAFailure) {
  ASSERT_EQ(writeRngControlRec(newRangeDb), 0);
  totalRngBytes = 7;
  EXPECT_EQ(writeRngControlRec(nullptr), 1);
  EXPECT_EQ(totalRngBytes, 7u);
  proc.rngControlRec = nullptr;
  EXPECT_EQ(writeRngControlRec(newRangeDb), 1);
}

TEST_F(RefWrite, MarkKeepsTheOtherFlags) {
  proc.refControlRec->set(RefControlRec::typeFlags, 0x80000001);
  markStateCut(*proc.refControlRec);
  EXPECT_EQ(word(RefControlRec::typeFlags), 0x80000005u);
  EXPECT_EQ(word(RefControlRec::stateCutTimeStamp), 1700000000u);
}

class WholeRefWrite : public RefWrite {
 protected:
  // One to three rows of every table, each filled with its own byte.
  WholeRefWrite() {
    const Bytes first = pattern(844, 3);
    writePartition(first.data(), 844);
    fill(kSlotCityData, 36 * 2, 0x11);
    fill(kSlotCityMultiZipRbas, 28, 0x12);
    fill(kSlotFinMultiZip, 8 * 3, 0x13);
    fill(kSlotZipData, 52 * 2, 0x14);
    fill(kSlotHashTable, 7 * 4, 0x15);
    fill(kSlotHashOverflow, 6 * 5, 0x16);
    fill(kSlotMilitary, 38 * 2 + 42, 0x17);
    fill(kSlotPobZones, 2 * 3, 0x18);
    refPointers[kSlotMilitaryHeader].bytes[0] = 2;
    refPointers[kSlotMilitaryHeader].bytes[2] = 1;
    refPointers[kSlotPobZoneCount].bytes[0] = 3;
    setWord(RefControlRec::cityDataCount, 2);
    setWord(RefControlRec::cityMultiZipRbasCount, 1);
    setWord(RefControlRec::finMultiZipRbasCount, 3);
    setWord(RefControlRec::cityNamesCount, 3);
    setWord(RefControlRec::cityPhoneticsCount, 2);
    setWord(RefControlRec::zipDataCount, 2);
    setWord(RefControlRec::hashTableCount, 4);
    setWord(RefControlRec::hashOverflowCount, 5);
    setWord(RefControlRec::militaryRba, 1);
    setWord(RefControlRec::pobZonesRba, 1);
    scCityNames = static_cast<CityNameRow*>(allocTable(34 * 3));
    scCityNamesByState = static_cast<CityByStateRow*>(allocTable(34 * 2));
    scCityPhonetics = static_cast<CityPhoneticRow*>(allocTable(26 * 2));
    makeZipIndex();
    select(99999, 0x1234);
  }
  void fill(SlotNumber slot, std::size_t bytes, int value) {
    std::fill_n(makeTable<Row<1>>(slot, bytes)->bytes.data(), bytes,
                static_cast<unsigned char>(value));
  }
};

TEST_F(WholeRefWrite, TablesFollowInOrderEachAtItsRba) {
  EXPECT_EQ(writeRefDb(), 0);
  const std::pair<std::uint32_t, std::uint32_t> places[] = {
      {word(RefControlRec::cityDataRba), 72},
      {word(RefControlRec::cityMultiZipRbasRba), 28},
      {word(RefControlRec::finMultiZipRbasRba), 24},
      {word(RefControlRec::cityNamesRba), 102},
      {word(RefControlRec::cityNamesByStateRba), 68},
      {word(RefControlRec::cityPhoneticsRba), 52},
      {word(RefControlRec::zipDataRba), 104},
      {word(RefControlRec::zipIndexRba), 200000},
      {word(RefControlRec::hashTableRba), 28},
      {word(RefControlRec::hashOverflowRba), 30},
      {word(RefControlRec::militaryRba), 4 + 118},
      {word(RefControlRec::pobZonesRba), 2 + 6}};
  std::uint32_t rba = 844;
  for (const auto& [at, bytes] : places) {
    EXPECT_EQ(at, rba);
    rba += bytes;
  }
  const Bytes written = writtenReference();
  ASSERT_EQ(written.size(), rba);
  EXPECT_EQ(slice(written, 844, 72), Bytes(72, 0x11));
  EXPECT_EQ(slice(written, word(RefControlRec::zipIndexRba) + 199998, 2), (Bytes{0x34, 0x12}));
  EXPECT_EQ(slice(written, word(RefControlRec::militaryRba), 5), (Bytes{2, 0, 1, 0, 0x17}));
  EXPECT_EQ(slice(written, word(RefControlRec::pobZonesRba), 3), (Bytes{3, 0, 0x18}));
}

TEST_F(WholeRefWrite, FinalRecordIsTwoBytesShort) {
  EXPECT_EQ(writeRefDb(), 0);
  const Bytes written = writtenReference();
  const auto& record = proc.refControlRec->bytes;
  EXPECT_EQ(slice(written, 0, 842), Bytes(record.begin(), record.begin() + 842));
  EXPECT_EQ(slice(written, 842, 2), slice(pattern(844, 3), 842, 2));
}

TEST_F(WholeRefWrite, TablesThatAreNotCarriedHaveNoRbaAndNoCount) {
  for (std::size_t at = 280; at <= 304; at += 4) le::put<4>(&proc.refControlRec->bytes[at], 9);
  setWord(RefControlRec::scfsCount, 5);
  setWord(RefControlRec::scfsRba, 6);
  setWord(RefControlRec::streetRbosRba, 4711);  // not copied either, but kept
  EXPECT_EQ(writeRefDb(), 0);
  for (std::size_t at = 280; at <= 304; at += 4)
    EXPECT_EQ(le::get<4>(&proc.refControlRec->bytes[at]), 0u) << at;
  EXPECT_EQ(word(RefControlRec::scfsCount), 0u);
  EXPECT_EQ(word(RefControlRec::scfsRba), 0u);
  EXPECT_EQ(word(RefControlRec::streetRbosRba), 4711u);
}

TEST_F(WholeRefWrite, AbsentMilitaryAndZoneTablesStayAbsent) {
  setWord(RefControlRec::militaryRba, 0);
  setWord(RefControlRec::pobZonesRba, 0);
  EXPECT_EQ(writeRefDb(), 0);
  EXPECT_EQ(word(RefControlRec::militaryRba), 0u);
  EXPECT_EQ(word(RefControlRec::pobZonesRba), 0u);
  EXPECT_EQ(writtenReference().size(), word(RefControlRec::hashOverflowRba) + 30);
}

TEST_F(WholeRefWrite, TableThatIsMissingIsSkippedAndItsRbaSet) {
  refPointers[kSlotCityData].table = nullptr;
  EXPECT_EQ(writeRefDb(), 0);
  EXPECT_EQ(word(RefControlRec::cityDataRba), 844u);
  EXPECT_EQ(word(RefControlRec::cityMultiZipRbasRba), 844u);
}

TEST_F(WholeRefWrite, CloseReleasesEverythingAndNamesTheTablesNeverLoaded) {
  proc.files->range = streamOpen(path("log").c_str(), "rb");
  refPointers[kSlotCityNames].table = nullptr;
  makeTable<CityPhoneticRow>(kSlotCityPhonetics, 2);
  makeTable<ZipIndexRow>(kSlotZipIndex, 5);
  makeTable<CityByStateRow>(kSlotCityNamesByState, 2);
  cityNameMap = static_cast<std::uint32_t*>(allocTable(4));
  EXPECT_EQ(closeDbs(), 0);
  std::vector<std::string> texts;
  for (const std::string& line : log()) texts.push_back(line.substr(line.rfind(';') + 1));
  EXPECT_EQ(texts, (std::vector<std::string>{"Could not free memory for City Multi Zip.",
                                             "Could not free memory for City Multi Finance.",
                                             "Could not free memory for City Name Index.",
                                             "Could not free memory for Zip Multi City Data."}));
  EXPECT_EQ(proc.refControlRec, nullptr);
  EXPECT_EQ(proc.rngControlRec, nullptr);
  EXPECT_EQ(newRefDb, nullptr);
  EXPECT_EQ(newRangeDb, nullptr);
  EXPECT_EQ(proc.files->range, nullptr);
  EXPECT_EQ(scZipCodeIndex, nullptr);
  EXPECT_EQ(scCityNames, nullptr);
  EXPECT_EQ(scCityNamesByState, nullptr);
  EXPECT_EQ(scCityPhonetics, nullptr);
  EXPECT_EQ(cityNameMap, nullptr);
  EXPECT_EQ(refPointers[kSlotCityNamesByState].table, nullptr);
  EXPECT_FALSE(outputsFailed());
}

}  // namespace
