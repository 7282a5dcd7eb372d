// How a model becomes bytes, and how tests bend it.

#include "dbbuilder/writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "dbbuilder/profiles.h"
#include "support/process.h"
#include "unit/dbbuilder/refreader.h"

namespace statecut::builder {
namespace {

Model tiny() { return makeModel(tinyPlaces(), tinyOptions()); }

TEST(ReferenceFile, FirstFourTablesFollowTheControlRecordInTheCutsOrder) {
  const Bytes bytes = referenceFile(tiny()).bytes;
  const test::RefReader reader(bytes);
  EXPECT_EQ(reader.word(120), 844U);
  EXPECT_EQ(reader.word(124), reader.word(120) + 18 * reader.word(212));
  EXPECT_EQ(reader.word(128), reader.word(124) + 18 * reader.word(216));
  EXPECT_EQ(reader.word(80), reader.word(128) + 18 * reader.word(220));
}

TEST(ReferenceFile, TablesLieBackToBackUpToTheEnd) {
  const ReferenceFile file = referenceFile(tiny());
  std::uint64_t next = refControlSize;
  for (const TablePlace& place : file.places) {
    EXPECT_EQ(place.rba, next);
    next += place.bytes;
  }
  EXPECT_EQ(next, file.bytes.size());
}

TEST(ReferenceFile, SizesFollowFromTheCounts) {
  const ReferenceFile file = referenceFile(tiny());
  const test::RefReader reader(file.bytes);
  const auto bytes = [&](Table table) { return file.place(table).bytes; };
  EXPECT_EQ(bytes(Table::CityData), 36U * reader.word(188));
  EXPECT_EQ(bytes(Table::CityZipLists), 6U * reader.word(180));
  EXPECT_EQ(bytes(Table::CityFinanceLists), 2U * reader.word(184));
  EXPECT_EQ(bytes(Table::CityMultiZip), 28U * reader.word(256));
  EXPECT_EQ(bytes(Table::FinMultiZip), 8U * reader.word(268));
  EXPECT_EQ(bytes(Table::CityNames), 34U * reader.word(132));
  EXPECT_EQ(bytes(Table::CityNamesByState), 34U * reader.word(132) - 34);
  EXPECT_EQ(bytes(Table::CityPhonetics), 26U * reader.word(136));
  EXPECT_EQ(bytes(Table::ZipData), 52U * reader.word(192));
  EXPECT_EQ(bytes(Table::ZipBytes), 12U * reader.word(192));
  EXPECT_EQ(bytes(Table::ZipIndex), 200000U);
  EXPECT_EQ(bytes(Table::CityKeysOfZips), 4U * reader.word(196));
  EXPECT_EQ(bytes(Table::UniqueZips), 12U * reader.word(236));
  EXPECT_EQ(bytes(Table::Counties), 32U * reader.word(200));
  EXPECT_EQ(bytes(Table::Urbanizations), 32U * reader.word(204));
  EXPECT_EQ(bytes(Table::UrbVariations), 32U * reader.word(208));
  EXPECT_EQ(bytes(Table::UrbMultiZips), 2U * reader.word(272));
  EXPECT_EQ(bytes(Table::GeneralDelivery), 4U * reader.word(224));
  EXPECT_EQ(bytes(Table::Scfs), 4U * reader.word(240));
  EXPECT_EQ(bytes(Table::HashSlots), 7U * reader.word(312));
  EXPECT_EQ(bytes(Table::HashOverflow), 6U * reader.word(320));
  EXPECT_EQ(bytes(Table::StreetRbos), 4U * reader.word(140));
  EXPECT_EQ(bytes(Table::FirmRbos), 4U * reader.word(172));
  EXPECT_EQ(bytes(Table::StreetPhoneticRbos), 4U * reader.word(148));
  EXPECT_EQ(bytes(Table::StreetStandardRbos), 4U * reader.word(160));
}

TEST(ReferenceFile, ZipRecordsPointAtTheirPartitionsAndBytesGiveTheirSizes) {
  const Model model = tiny();
  const RangeLayout layout(model.range);
  const Bytes bytes = referenceFile(model).bytes;
  const test::RefReader reader(bytes);
  std::size_t partitions = 0;
  for (std::uint32_t zip = 0; zip < reader.word(192); ++zip) {
    const std::size_t record = reader.word(56) + std::size_t{52} * zip;
    const std::size_t sizes = reader.word(280) + std::size_t{12} * zip;
    EXPECT_EQ(reader.number(record + 8, 4), layout.rba(Section::SfhZip, zip).value_or(0));
    EXPECT_EQ(reader.number(record + 12, 4), layout.rba(Section::PobZip, zip).value_or(0));
    EXPECT_EQ(reader.number(record + 16, 4), layout.rba(Section::RrZip, zip).value_or(0));
    EXPECT_EQ(reader.number(sizes + 2, 2), layout.bytes(Section::PobZip, zip).value_or(0));
    EXPECT_EQ(reader.number(sizes + 4, 4), layout.bytes(Section::RrZip, zip).value_or(0));
    EXPECT_EQ(reader.number(sizes + 8, 4), layout.bytes(Section::SfhZip, zip).value_or(0));
    partitions += layout.rba(Section::SfhZip, zip).has_value();
  }
  EXPECT_GT(partitions, 10U);
}

TEST(ReferenceFile, StateStandsBeforeTheNameAndBehindItInTheTableByState) {
  Model model = tiny();
  model.cityNames = {{}, {1, 0, "TX", "ZEBRA", {}}, {2, 0, "VT", "ASH", {}}};
  const Bytes bytes = referenceFile(model).bytes;
  const test::RefReader reader(bytes);
  EXPECT_EQ(reader.text(reader.word(44) + 34 + 4, 7), "TXZEBRA");
  EXPECT_EQ(reader.text(reader.word(48) + 4, 3), "ASH");
  EXPECT_EQ(reader.text(reader.word(48) + 32, 2), "VT");
}

TEST(ReferenceFile, WhatIsSetIsWrittenAsItStands) {
  Model model = tiny();
  model.zips[1].sfhRba = 0xDEADBEEF;
  model.zipBytes[1].sfh = 77;
  model.cityMultiZip[1].sfh.rba = 5;
  model.words = {{192, 12345}, {840, 0x01020304}};
  model.raw[Table::Scfs] = {1, 2, 3};
  model.header.typeFlags = 6;
  const Bytes bytes = referenceFile(model).bytes;
  const test::RefReader reader(bytes);
  EXPECT_EQ(reader.number(reader.word(56) + 52 + 8, 4), 0xDEADBEEFU);
  EXPECT_EQ(reader.number(reader.word(280) + 12 + 8, 4), 77U);
  EXPECT_EQ(reader.number(reader.word(260) + 28 + 8, 4), 5U);
  EXPECT_EQ(reader.word(192), 12345U);
  EXPECT_EQ(reader.word(840), 0x01020304U);
  EXPECT_EQ(reader.text(reader.word(244), 3), "\1\2\3");
  EXPECT_EQ(reader.word(24), 6U);
}

TEST(ReferenceFile, EmptyModelIsAControlRecordAndAnEmptyZipIndex) {
  const ReferenceFile file = referenceFile(Model{});
  const test::RefReader reader(file.bytes);
  for (const std::size_t count :
       {132U, 136U, 144U, 180U, 188U, 192U, 252U, 256U, 268U, 296U, 300U, 304U, 320U})
    EXPECT_EQ(reader.word(count), 0U) << "+" << count;
  EXPECT_EQ(file.place(Table::CityNamesByState).bytes, 0U);
  EXPECT_EQ(file.place(Table::ZipIndex).bytes, 200000U);
}

TEST(NameIndexSlots, NamesOfOneSlotStandInTheOverflowTable) {
  Model model;
  model.firmNames = {"A", "B", "C"};
  model.hash.slots = 1;
  const Bytes bytes = referenceFile(model).bytes;
  const test::RefReader reader(bytes);
  EXPECT_EQ(reader.word(312), 1U);
  EXPECT_EQ(reader.word(320), 3U);
  EXPECT_EQ(reader.number(reader.word(308), 1), 3U);
  EXPECT_EQ(reader.find("B", 0), 2U);
  EXPECT_FALSE(reader.find("B", 1));
}

TEST(Variations, OneStreetStandsInTheEntryAndSeveralInAList) {
  Model model;
  model.streetNames = {"ELM", "OAK"};
  model.streetPhonetics = {{"LM", {{0, {}, {}}}, {}, {}},
                           {"K", {{1, {7, 8}, {}}, {0, {}, {}}}, {}, {}}};
  const Bytes bytes = referenceFile(model).bytes;
  const test::RefReader reader(bytes);
  const std::size_t names = reader.word(92);
  EXPECT_EQ(reader.number(names, 4), 0U);
  EXPECT_EQ(reader.number(names + 4, 1), 2U);
  EXPECT_EQ(reader.number(names + 7, 4), 0U);  // the list's offset
  EXPECT_EQ(reader.number(names + 11, 1), 0x81U);
  const Bytes list(bytes.begin() + reader.word(88),
                   bytes.begin() + reader.word(88) + reader.word(156));
  EXPECT_EQ(list, (Bytes{2, 0, 4, 0, 0, 0, 2, 7, 0, 8, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(reader.find("K", 4), 7U);
}

TEST(RangeFile, PartitionsStandBackToBackWithTheirOwnContent) {
  RangeModel range;
  range.firstRba = 700;
  range.partitions = {{Section::SfhZip, 1, 13, 5}, {Section::SfhMulti, 9, 4100, 6}};
  const Bytes file = rangeFile(range);
  ASSERT_EQ(file.size(), 700U + 13 + 4100);
  const Bytes first = partitionContent(range.partitions[0]);
  const Bytes second = partitionContent(range.partitions[1]);
  EXPECT_TRUE(std::equal(first.begin(), first.end(), file.begin() + 700));
  EXPECT_TRUE(std::equal(second.begin(), second.end(), file.begin() + 713));
  const test::RefReader reader(file);
  EXPECT_EQ(reader.word(32), 700U);
  EXPECT_EQ(reader.word(76), 13U);
  EXPECT_EQ(reader.word(36), 713U);
  EXPECT_EQ(reader.word(80), 4100U);
}

TEST(RangeFile, ContentDoesNotDependOnTheChunksThatWriteIt) {
  Bytes whole(100);
  fillContent(42, 0, whole);
  Bytes parts(100);
  fillContent(42, 0, std::span(parts).first(40));
  fillContent(42, 40, std::span(parts).subspan(40));
  EXPECT_EQ(parts, whole);
  EXPECT_NE(whole, Bytes(100));
}

class WrittenFiles : public ::testing::Test {
 protected:
  test::TempDir folder_;
  WrittenFile written_;
  std::string error_;
};

TEST_F(WrittenFiles, EqualTheBytesInMemory) {
  Model model = tiny();
  model.range.partitions.push_back({Section::SfhMulti, 60000, 3 * 1024 * 1024 + 5, 1});
  ASSERT_TRUE(writeReferenceFile(model, folder_.file("ref"), written_, error_)) << error_;
  EXPECT_EQ(test::readWholeFile(folder_.file("ref")), referenceFile(model).bytes);
  ASSERT_TRUE(writeRangeFile(model, folder_.file("rng"), written_, error_)) << error_;
  EXPECT_EQ(test::readWholeFile(folder_.file("rng")), rangeFile(model.range));
  EXPECT_EQ(written_.bytes, rangeFile(model.range).size());
}

TEST_F(WrittenFiles, RangeFileLengthCanBeSet) {
  Model model = tiny();
  for (const std::uint64_t bytes : {0U, 100U, 624U, 5000U, 900000U}) {
    model.range.fileBytes = bytes;
    ASSERT_TRUE(writeRangeFile(model, folder_.file("rng"), written_, error_)) << error_;
    EXPECT_EQ(std::filesystem::file_size(folder_.file("rng")), bytes);
    EXPECT_EQ(test::readWholeFile(folder_.file("rng")), rangeFile(model.range));
  }
}

TEST_F(WrittenFiles, FullDiskIsReported) {
  const Model model = tiny();
  ASSERT_TRUE(writeReferenceFile(model, folder_.file("ref"), written_, error_));
  EXPECT_FALSE(writeReferenceFile(model, "/dev/full", written_, error_));
  EXPECT_NE(error_.find("/dev/full"), std::string::npos) << error_;
  EXPECT_NE(error_.find("No space left on device"), std::string::npos) << error_;
  EXPECT_FALSE(writeRangeFile(model, "/dev/full", written_, error_));
}

TEST_F(WrittenFiles, MissingFolderIsReported) {
  EXPECT_FALSE(writeRangeFile(tiny(), folder_.file("none/rng"), written_, error_));
  EXPECT_NE(error_.find("cannot open"), std::string::npos) << error_;
}

}  // namespace
}  // namespace statecut::builder
