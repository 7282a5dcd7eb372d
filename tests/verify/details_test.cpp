// What else a rule covers than its one case, and files that shrink.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "dbfiles/controlrec.h"
#include "fixture.h"
#include "format/mapped.h"

namespace statecut::test {

namespace {

using Ids = std::set<std::string>;
using R = RefControlRec;

class RuleDetail : public testing::Test {
 protected:
  void SetUp() override { fixture.write("source", bytesOf(soundModel())); }

  VerifyFixture fixture;
};

TEST_F(RuleDetail, FirstCityNameAndPhoneticKeyAreBlank) {
  ASSERT_EQ(trippedRules(fixture.options("source")), Ids{});
  PairBytes damaged = bytesOf(soundModel());
  damaged.table(R::cityNamesRba.at)[4] = 'Z';  // a cut would stop its scan there
  fixture.write("damaged", damaged);
  EXPECT_EQ(trippedRules(fixture.options("damaged")), Ids{"city.name"});
  damaged = bytesOf(soundModel());
  damaged.table(R::cityPhoneticsRba.at)[2] = 'Z';
  fixture.write("damaged", damaged);
  EXPECT_EQ(trippedRules(fixture.options("damaged")), Ids{"phonetic.key"});
}

TEST_F(RuleDetail, CityWithANameLeadsToIt) {
  PairBytes damaged = bytesOf(soundModel());
  fixture.write("damaged", damaged);
  ASSERT_EQ(trippedRules(fixture.options("damaged")), Ids{});
  le::put<4>(damaged.table(R::cityDataRba.at) + 36, 0);
  fixture.write("damaged", damaged);
  EXPECT_EQ(trippedRules(fixture.options("damaged")), Ids{"city.links"});
}

// Else no cut would take it.
TEST_F(RuleDetail, ZipCodeHasAState) {
  ASSERT_EQ(trippedRules(fixture.options("source")), Ids{});
  PairBytes damaged = bytesOf(soundModel());
  damaged.table(R::zipBytesRba.at)[12 + 1] ^= 0x80;
  fixture.write("damaged", damaged);
  EXPECT_EQ(trippedRules(fixture.options("damaged")), Ids{"zip.record"});
}

TEST_F(RuleDetail, ZipCodeHasACity) {
  ASSERT_EQ(trippedRules(fixture.options("source")), Ids{});
  builder::Model model = soundModel();
  model.zips[1].cityKeysCount = 0;
  fixture.write("damaged", bytesOf(model));
  EXPECT_EQ(trippedRules(fixture.options("damaged")), Ids{"zip.cities"});
}

TEST_F(RuleDetail, PartitionWithASizeHasAnRba) {
  builder::Model model = soundModel();
  model.zips[1].sfhRba = 0;
  model.zipBytes[1].sfh = 0;
  auto& partitions = model.range.partitions;
  partitions.erase(std::remove_if(partitions.begin(), partitions.end(),
                                  [](const builder::Partition& one) {
                                    return one.section == builder::Section::SfhZip && one.key == 1;
                                  }),
                   partitions.end());
  fixture.write("pair", bytesOf(model));
  ASSERT_EQ(trippedRules(fixture.options("pair")), Ids{});
  model.zipBytes[1].sfh = 100;
  fixture.write("pair", bytesOf(model));
  EXPECT_EQ(trippedRules(fixture.options("pair")), Ids{"range.bounds"});
}

TEST_F(RuleDetail, PartitionOutsideTheAreaOfItsKindIsFound) {
  builder::Model model = soundModel();
  ASSERT_EQ(trippedRules(fixture.options("source")), Ids{});
  model.zips[1].sfhRba = 700;  // in front of the first area
  model.zipBytes[1].sfh = 100;
  fixture.write("pair", bytesOf(model));
  EXPECT_EQ(trippedRules(fixture.options("pair")), Ids{"range.layout"});
}

TEST_F(RuleDetail, RecordsOfOneMultiZipKeyShareItsPartition) {
  builder::Model model = soundModel();
  model.cityMultiZip.push_back({{2, 0, 0}, 0, {0, 0, 0}, {0, 0, 0}});
  const auto used = std::find_if(model.cityMultiZip.begin(), model.cityMultiZip.end(),
                                 [](const builder::CityMultiZip& city) {
                                   return city.sfh.zipCount > 1 && !city.sfh.rba.has_value();
                                 });
  ASSERT_NE(used, model.cityMultiZip.end());
  model.cityMultiZip.back().sfh = used->sfh;
  const auto owner =
      std::find_if(model.cityData.begin() + 1, model.cityData.end(),
                   [](const builder::CityData& city) { return city.multiZipRbaKey == 0; });
  ASSERT_NE(owner, model.cityData.end());
  owner->multiZipRbaKey = static_cast<std::uint16_t>(model.cityMultiZip.size() - 1);
  fixture.write("pair", bytesOf(model));
  ASSERT_EQ(trippedRules(fixture.options("pair")), Ids{});
  PairBytes damaged = bytesOf(model);
  unsigned char* last =
      damaged.table(R::cityMultiZipRbasRba.at) + 28 * (model.cityMultiZip.size() - 1);
  le::put<4>(last + 8, le::get<4>(last + 8) + 1);
  fixture.write("pair", damaged);
  EXPECT_EQ(trippedRules(fixture.options("pair")).count("multizip.key"), 1U);
}

TEST_F(RuleDetail, CountsOfPackedNamesAreChecked) {
  ASSERT_EQ(trippedRules(fixture.options("source")), Ids{});
  for (const std::size_t at : {R::firmsCount.at, R::streetNamesCount.at, R::streetPhoneticsCount.at,
                               R::streetStandardsCount.at}) {
    PairBytes damaged = bytesOf(soundModel());
    damaged.setWord(at, damaged.word(at) - 1);
    fixture.write("damaged", damaged);
    EXPECT_EQ(trippedRules(fixture.options("damaged")).count("name.packing"), 1U) << at;
  }
}

TEST_F(RuleDetail, CutThatPlacesATableItLeavesOutIsFound) {
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  ASSERT_EQ(trippedRules(fixture.options("cut")), Ids{});
  PairBytes damaged = fixture.read("cut");
  damaged.setWord(R::zipBytesRba.at, 844);
  fixture.write("cut", damaged);
  EXPECT_EQ(trippedRules(fixture.options("cut")), Ids{"table.bounds"});
}

// No bytes are read there, yet a cut has one place for every partition.
TEST_F(RuleDetail, EmptyPartitionOfACutHasItsPlace) {
  builder::Model model = soundModel();
  for (auto& partition : model.range.partitions)
    if (partition.section == builder::Section::RrZip) partition.bytes = 0;
  fixture.write("source", bytesOf(model));
  std::string all = "AE,OK,PR,TX,VT";
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", all, "cut"));
  ASSERT_EQ(trippedRules(fixture.options("cut", "source", all)), Ids{});
  PairBytes damaged = fixture.read("cut");
  unsigned char* zips = damaged.table(R::zipDataRba.at);
  std::size_t i = 1;
  while (le::get<4>(zips + 52 * i + 16) == 0) ++i;
  le::put<4>(zips + 52 * i + 16, 700);
  fixture.write("cut", damaged);
  EXPECT_EQ(trippedRules(fixture.options("cut", "source", all)), Ids{"cut.range-layout"});
}

TEST(MappedFile, FileMadeShorterWhileItIsReadEndsWithTwo) {
  const TempDir folder;
  const std::string path = folder.file("f");
  writeWholeFile(path, FileBytes(100000, 7));
  std::string error;
  const auto file = format::MappedFile::open(path, error);
  ASSERT_EQ(error, "");
  ASSERT_EQ(file.bytes()[99999], 7);
  EXPECT_EXIT(
      {
        format::exitOnLostPage();
        std::filesystem::resize_file(path, 10);
        std::exit(file.bytes()[99999]);
      },
      testing::ExitedWithCode(2), "got shorter");
}

}  // namespace

}  // namespace statecut::test
