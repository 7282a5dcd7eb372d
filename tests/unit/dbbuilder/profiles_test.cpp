// What a model of each profile holds.

#include "dbbuilder/profiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "dbbuilder/places.h"
#include "dbbuilder/writer.h"
#include "support/counts.h"
#include "support/paths.h"
#include "unit/dbbuilder/refreader.h"

namespace statecut::builder {
namespace {

struct Profile {
  const char* name;
  std::vector<Place> places;
  ProfileOptions options;
};

// The three profiles, the national one with a small range file.
// The national one in the long tier: it takes most of the time.
std::vector<Profile> profiles() {
  std::vector<Profile> all{{"tiny", tinyPlaces(), tinyOptions()},
                           {"small", smallPlaces(), smallOptions()}};
  if (!test::longRun()) return all;
  all.push_back({"national", {}, nationalOptions()});
  std::string error;
  EXPECT_TRUE(
      readPlaces(std::string(test::kSourceFolder) + "/data/us_zip_city.csv", all[2].places, error))
      << error;
  all[2].options.rangeBytes = 1 << 20;
  return all;
}

Model tiny(std::uint64_t seed) {
  ProfileOptions options = tinyOptions();
  options.seed = seed;
  return makeModel(tinyPlaces(), options);
}

TEST(Profiles, SameArgumentsGiveTheSameBytes) {
  for (const Profile& profile : profiles()) {
    const Model first = makeModel(profile.places, profile.options);
    const Model second = makeModel(profile.places, profile.options);
    EXPECT_EQ(referenceFile(first).bytes, referenceFile(second).bytes) << profile.name;
    EXPECT_EQ(rangeFile(first.range), rangeFile(second.range)) << profile.name;
  }
}

TEST(Profiles, AnotherSeedGivesOtherBytes) {
  const Model first = tiny(1);
  const Model second = tiny(2);
  EXPECT_NE(referenceFile(first).bytes, referenceFile(second).bytes);
  EXPECT_NE(rangeFile(first.range), rangeFile(second.range));
}

TEST(Profiles, OrderOfThePlacesDoesNotMatter) {
  std::vector<Place> places = tinyPlaces();
  const Model first = makeModel(places, tinyOptions());
  std::reverse(places.begin(), places.end());
  EXPECT_EQ(referenceFile(first).bytes, referenceFile(makeModel(places, tinyOptions())).bytes);
}

TEST(Profiles, EveryDirectoryWordIsFilled) {
  for (const Profile& profile : profiles()) {
    const ReferenceFile file = referenceFile(makeModel(profile.places, profile.options));
    const test::RefReader reader(file.bytes);
    for (std::size_t at = 32; at < 332; at += 4)
      EXPECT_NE(reader.word(at), 0U) << profile.name << " +" << at;
  }
}

TEST(Profiles, RangeControlRecordIsFilled) {
  const Bytes file = rangeFile(tiny(1).range);
  const test::RefReader reader(file);
  for (std::size_t at = 32; at < 108; at += 4) EXPECT_NE(reader.word(at), 0U) << "+" << at;
}

TEST(Profiles, SwitchedOffTablesHaveNoRba) {
  ProfileOptions options = tinyOptions();
  EXPECT_NE(test::RefReader(referenceFile(makeModel(tinyPlaces(), options)).bytes).word(324), 0U);
  options.military = options.poBoxZones = false;
  const Bytes bytes = referenceFile(makeModel(tinyPlaces(), options)).bytes;
  EXPECT_EQ(test::RefReader(bytes).word(324), 0U);
  EXPECT_EQ(test::RefReader(bytes).word(328), 0U);
}

TEST(Profiles, EveryNameIsFoundThroughTheHashAtItsOwnNumber) {
  for (const Profile& profile : profiles()) {
    const ReferenceFile file = referenceFile(makeModel(profile.places, profile.options));
    const test::RefReader reader(file.bytes);
    for (unsigned type = 0; type < 6; ++type) {
      const auto names = reader.names(type);
      EXPECT_FALSE(names.empty()) << profile.name << " type " << type;
      for (const auto& each : names) ASSERT_EQ(reader.find(each.name, type), each.number);
      EXPECT_FALSE(reader.find("ZZ NO SUCH NAME", type));
    }
  }
}

TEST(Profiles, NamesKeepToTheirLengthsAndOrder) {
  for (const Profile& profile : profiles()) {
    const Model model = makeModel(profile.places, profile.options);
    for (const std::string& name : model.streetNames) ASSERT_LE(name.size(), 28U);
    for (const std::string& name : model.firmNames) ASSERT_LE(name.size(), 40U);
    EXPECT_TRUE(model.cityNames[0].state.empty() && model.cityNames[0].name.empty());
    for (std::size_t i = 1; i < model.cityNames.size(); ++i) {
      const CityName& before = model.cityNames[i - 1];
      const CityName& name = model.cityNames[i];
      ASSERT_LE(name.name.size(), 28U);
      ASSERT_LT(std::tie(before.state, before.name), std::tie(name.state, name.name));
    }
    for (std::size_t i = 1; i < model.cityPhonetics.size(); ++i) {
      const CityPhonetic& before = model.cityPhonetics[i - 1];
      const CityPhonetic& key = model.cityPhonetics[i];
      ASSERT_LE(key.key.size(), 19U);
      ASSERT_LT(std::tie(before.state, before.key), std::tie(key.state, key.key));
    }
  }
}

// What the cut and the lookups tell apart, in every profile and for several seeds.
TEST(Profiles, EveryFeatureIsThere) {
  for (std::uint64_t seed = 1; seed <= 12; ++seed) {
    const Model model = tiny(seed);
    std::set<std::string> states;
    for (const ZipBytes& zip : model.zipBytes) states.insert(zip.state);
    EXPECT_GE(states.size(), 5U);

    const auto anyCity = [&](auto test) {
      return std::any_of(model.cityData.begin() + 1, model.cityData.end(), test);
    };
    EXPECT_TRUE(anyCity([](const CityData& c) { return c.zipCount == 0; }));
    EXPECT_TRUE(anyCity([](const CityData& c) { return c.zipCount == 1; }));
    EXPECT_TRUE(anyCity([](const CityData& c) { return c.zipCount > 1; }));
    EXPECT_TRUE(anyCity([](const CityData& c) { return c.finFlag == 1; }));
    EXPECT_TRUE(anyCity([](const CityData& c) { return c.nameUsps != c.nameStandard; }));

    std::map<std::uint32_t, int> citiesOfKey;
    bool pob = false, rr = false;
    for (const CityMultiZip& city : model.cityMultiZip) {
      if (city.sfh.zipCount > 1) ++citiesOfKey[city.sfh.key];
      pob = pob || city.pob.zipCount > 1;
      rr = rr || city.rr.zipCount > 1;
    }
    EXPECT_TRUE(pob && rr);
    EXPECT_TRUE(std::any_of(citiesOfKey.begin(), citiesOfKey.end(),
                            [](const auto& each) { return each.second > 1; }));
    bool sharedArea = false, ownArea = false;
    for (const FinMultiZip& area : model.finMultiZip) {
      if (area.zipCount < 2) continue;
      (citiesOfKey.count(area.key) != 0 ? sharedArea : ownArea) = true;
    }
    EXPECT_TRUE(sharedArea) << "seed " << seed;
    EXPECT_TRUE(ownArea) << "seed " << seed;
    EXPECT_TRUE(std::any_of(model.zips.begin(), model.zips.end(),
                            [](const ZipRecord& zip) { return zip.cityKeysCount > 1; }));
    EXPECT_TRUE(std::any_of(model.zips.begin(), model.zips.end(),
                            [](const ZipRecord& zip) { return zip.finKey != 0; }));
  }
}

TEST(Profiles, VariationsAreSingleAndAmbiguousWithAndWithoutScfKeys) {
  const Model model = tiny(1);
  for (const auto* variations : {&model.streetPhonetics, &model.streetStandards}) {
    bool single = false, scfs = false, noScfs = false;
    for (const Variation& variation : *variations) {
      single = single || variation.candidates.size() == 1;
      if (variation.candidates.size() < 2) continue;
      for (const Candidate& candidate : variation.candidates)
        (candidate.scfs.empty() ? noScfs : scfs) = true;
    }
    EXPECT_TRUE(single && scfs && noScfs);
  }
}

TEST(Profiles, PartitionsAreEmptyUsualAndLarge) {
  for (const Profile& profile : profiles()) {
    if (profile.places.size() > 1000) continue;  // its range file is too small here
    const Model model = makeModel(profile.places, profile.options);
    const auto any = [&](auto test) {
      return std::any_of(model.range.partitions.begin(), model.range.partitions.end(), test);
    };
    EXPECT_TRUE(any([](const Partition& p) { return p.bytes == 0; })) << profile.name;
    EXPECT_TRUE(any([](const Partition& p) { return p.bytes > 0 && p.bytes < 4088; }));
    EXPECT_TRUE(any([](const Partition& p) { return p.bytes > 4088; })) << profile.name;
    EXPECT_FALSE(
        any([](const Partition& p) { return p.section == Section::PobZip && p.bytes > 65535; }));
  }
}

TEST(Profiles, RangeFileIsAboutTheSizeAskedFor) {
  for (const std::uint64_t bytes : {std::uint64_t{1} << 20, std::uint64_t{5} << 20}) {
    ProfileOptions options = smallOptions();
    options.rangeBytes = bytes;
    const Model model = makeModel(smallPlaces(), options);
    const auto size = static_cast<double>(rangeFile(model.range).size());
    EXPECT_NEAR(size, static_cast<double>(bytes), 0.1 * static_cast<double>(bytes));
  }
}

TEST(Profiles, MultiZipRbasAscendWithTheirKeys) {
  const Model model = makeModel(smallPlaces(), smallOptions());
  const RangeLayout layout(model.range);
  std::map<Section, std::uint32_t> last;
  for (std::size_t i = 0; i < model.range.partitions.size(); ++i) {
    const Partition& partition = model.range.partitions[i];
    ASSERT_LT(last[partition.section], partition.key);
    last[partition.section] = partition.key;
    ASSERT_EQ(layout.rba(partition.section, partition.key), layout.rbaAt(i));
    if (partition.section < Section::SfhMulti) continue;
    ASSERT_LT(partition.key, model.multiZipLists.size());
  }
}

// Entry s of the loaded table and the bytes at 4 * s of the file begin the same list.
TEST(Profiles, MultiZipListsReadTheSameInMemoryAndOnDisk) {
  const Model model = makeModel(smallPlaces(), smallOptions());
  const ReferenceFile file = referenceFile(model);
  const test::RefReader reader(file.bytes);
  const std::size_t table = reader.word(248);
  ASSERT_EQ(file.place(Table::MultiZipLists).bytes, std::uint64_t{4} * reader.word(252));
  std::size_t lists = 0;
  for (const CityMultiZip& city : model.cityMultiZip) {
    const std::size_t start = city.sfh.key;
    for (std::size_t i = 0; i < city.sfh.zipCount; ++i) {
      const std::uint32_t zip = reader.number(table + 2 * (start + i), 2);
      ASSERT_NE(zip, 0U);
      ASSERT_EQ(zip, reader.number(table + 4 * start + 2 * i, 2));
    }
    lists += city.sfh.zipCount > 1;
  }
  EXPECT_GT(lists, 10U);
}

TEST(Profiles, OnePlaceIsEnough) {
  const Model model = makeModel({{501, "NY", "HOLTSVILLE", ""}}, tinyOptions());
  const ReferenceFile file = referenceFile(model);
  const test::RefReader reader(file.bytes);
  EXPECT_EQ(reader.word(192), 2U);
  EXPECT_EQ(reader.number(reader.word(64) + 2 * 501, 2), 1U);
}

TEST(Profiles, TinyStaysSmall) {
  const std::size_t bytes = referenceFile(tiny(1)).bytes.size();
  EXPECT_LT(bytes, 200000U + 300000U);
}

}  // namespace
}  // namespace statecut::builder
