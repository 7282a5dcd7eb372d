// What a Database tells, beyond what the suite of all variants asks (tests/lookup).

#include <algorithm>
#include <map>
#include <set>

#include "base/le.h"
#include "tables/rows.h"
#include "unit/reader/readerpair.h"

namespace statecut::test {
namespace {

using Ref = RefControlRec;

class ADatabase : public ReaderPair {
 protected:
  ADatabase() : database_(openPair()) { EXPECT_NE(database_, nullptr) << error_.text; }

  std::shared_ptr<const Database> database_;
};

TEST_F(ADatabase, TellsWhatItsControlRecordSays) {
  EXPECT_EQ(database_->buildTime(), word(Ref::buildTimeStamp.at));
  EXPECT_EQ(database_->version(), std::string(bytes_.begin(), bytes_.begin() + 8));
  EXPECT_EQ(database_->copyright(), std::string(bytes_.begin() + 9, bytes_.begin() + 13));
  EXPECT_FALSE(database_->isCut());
  EXPECT_EQ(database_->cutTime(), std::nullopt);
  const std::vector<std::string> states = database_->states();
  EXPECT_GT(states.size(), 2U);
  EXPECT_TRUE(std::is_sorted(states.begin(), states.end()));
}

TEST_F(ADatabase, WalksOverAllZipCodesCitiesStreetsAndFirms) {
  std::uint32_t zips = 0;
  std::uint32_t last = 0;
  for (const Zip& zip : database_->zips()) {
    EXPECT_GT(zip->get(ZipDataRow::zip), last);
    last = zip->get(ZipDataRow::zip);
    EXPECT_EQ(database_->zip(last).row, zip.row);
    ++zips;
  }
  EXPECT_EQ(zips, word(Ref::zipDataCount.at) - 1);
  std::uint32_t cities = 0;
  for (const CityName& city : database_->cityNames()) EXPECT_EQ(city.key, ++cities);
  EXPECT_EQ(cities, word(Ref::cityNamesCount.at) - 1);
  std::uint32_t streets = 0;
  for (const NamedKey& street : database_->streets()) {
    EXPECT_EQ(database_->findStreet(street.name).name, street.name);
    EXPECT_EQ(database_->streetName(street.key), street.name);
    ++streets;
  }
  EXPECT_EQ(streets, word(Ref::streetNamesCount.at));
  std::uint32_t firms = 0;
  for (const NamedKey& firm : database_->firms()) {
    EXPECT_EQ(database_->findFirm(firm.name).key, firm.key);
    ++firms;
  }
  EXPECT_EQ(firms, word(Ref::firmsCount.at));
}

TEST_F(ADatabase, TellsOfItsFilesAndWhereARecordStands) {
  const FileBytes range = readWholeFile(rng_).value();
  EXPECT_EQ(database_->referenceFile(), ref_);
  EXPECT_TRUE(std::equal(bytes_.begin(), bytes_.begin() + Ref::size,
                         database_->referenceRecord().bytes.begin()));
  EXPECT_EQ(database_->offsetOf(database_->zipOfKey(1).row),
            word(Ref::zipDataRba.at) + ZipDataRow::size);
  EXPECT_EQ(database_->rangeFile(), rng_);
  EXPECT_EQ(database_->rangeFileBytes(), range.size());
  ASSERT_NE(database_->rangeRecord(), nullptr);
  EXPECT_TRUE(std::equal(range.begin(), range.begin() + RngControlRec::size,
                         database_->rangeRecord()->bytes.begin()));
  const auto alone = Database::open(ref_, {}, error_);
  ASSERT_NE(alone, nullptr) << error_.text;
  EXPECT_EQ(alone->rangeFile(), "");
  EXPECT_EQ(alone->rangeRecord(), nullptr);
  EXPECT_EQ(alone->rangeFileBytes(), 0U);
}

TEST_F(ADatabase, WalksOverAllPhoneticKeysAndVariations) {
  std::uint32_t phonetics = 0;
  for (const CityPhonetic& phonetic : database_->phonetics()) {
    EXPECT_EQ(phonetic.key, ++phonetics);
    EXPECT_EQ(phonetic.row, database_->phonetic(phonetic.key).row);
  }
  EXPECT_EQ(phonetics, word(Ref::cityPhoneticsCount.at) - 1);
  const auto all = [&](VariationKind kind) {
    std::uint32_t count = 0;
    for (const Variation& variation : database_->variationNames(kind)) {
      EXPECT_EQ(database_->findVariation(kind, variation.name).key, variation.key);
      ++count;
    }
    EXPECT_FALSE(database_->findVariation(kind, "QQQ"));
    return count;
  };
  EXPECT_EQ(all(VariationKind::kPhonetic), word(Ref::streetPhoneticsCount.at));
  EXPECT_EQ(all(VariationKind::kStandard), word(Ref::streetStandardsCount.at));
}

// With an SCF a variation gives the streets that are served there or everywhere.
TEST_F(ADatabase, TheStreetsOfAVariationHaveTheirScfs) {
  std::size_t everywhere = 0;
  std::size_t inPlaces = 0;
  for (const VariationKind kind : {VariationKind::kPhonetic, VariationKind::kStandard})
    for (const Variation& variation : database_->variationNames(kind)) {
      std::vector<std::uint32_t> all;
      std::map<std::uint16_t, std::vector<std::uint32_t>> byScf;
      for (const ServedStreet& street : database_->streetsOf(variation)) {
        all.push_back(street.street);
        ++(street.everywhere ? everywhere : inPlaces);
        for (const KeyRow& scf : street.scfs)
          byScf[static_cast<std::uint16_t>(scf.get(KeyRow::key))];
      }
      for (auto& [scf, streets] : byScf)
        for (const ServedStreet& street : database_->streetsOf(variation))
          if (street.everywhere ||
              std::any_of(street.scfs.begin(), street.scfs.end(),
                          [scf = scf](const KeyRow& key) { return key.get(KeyRow::key) == scf; }))
            streets.push_back(street.street);
      const auto listed = [](const auto& walk) {
        std::vector<std::uint32_t> streets;
        for (const std::uint32_t street : walk) streets.push_back(street);
        return streets;
      };
      EXPECT_EQ(all, listed(database_->variations(kind, variation.name)));
      for (const auto& [scf, streets] : byScf)
        EXPECT_EQ(streets, listed(database_->variations(kind, variation.name, scf)));
    }
  EXPECT_GT(everywhere, 0U);
  EXPECT_GT(inPlaces, 0U);
}

TEST_F(ADatabase, GivesTheZipCodesOfEachCity) {
  std::map<std::uint32_t, std::set<std::uint16_t>> wanted;
  for (const Zip& zip : database_->zips())
    for (const KeyRow& city : database_->citiesOf(*zip))
      wanted[city.get(KeyRow::key)].insert(static_cast<std::uint16_t>(zip.key));
  std::size_t several = 0;
  for (std::uint32_t city = 0; city <= word(Ref::cityDataCount.at) + 1; ++city) {
    const auto zips = database_->zipsOfCity(city).value();
    EXPECT_EQ(std::vector<std::uint16_t>(zips.begin(), zips.end()),
              std::vector<std::uint16_t>(wanted[city].begin(), wanted[city].end()))
        << city;
    if (zips.size() > 1) ++several;
    if (const City data = database_->cityData(city); data) {
      EXPECT_EQ(zips.size(), data->get(CityDataRow::zipCount));
    }
  }
  EXPECT_GT(several, 0U);
}

// A ZIP code may name no city at all.
TEST_F(ADatabase, CityKeyNoneHasNoZipCodes) {
  std::uint32_t key = 1;
  while (database_->zipOfKey(key)->get(ZipDataRow::cityKeysCount) != 1) ++key;
  const std::size_t at = word(Ref::zipDataRba.at) + std::size_t{key} * ZipDataRow::size;
  const std::uint32_t city = le::get<2>(bytes_.data() + at + ZipDataRow::cityKey.at);
  const auto without = open(damaged(at + ZipDataRow::cityKey.at, 2, 0));
  ASSERT_NE(without, nullptr) << error_.text;
  EXPECT_EQ(without->citiesOf(*without->zipOfKey(key))[0].get(KeyRow::key), 0U);
  EXPECT_TRUE(without->zipsOfCity(0).value().empty());
  EXPECT_EQ(without->zipsOfCity(city).value().size(),
            database_->zipsOfCity(city).value().size() - 1);
}

TEST_F(ADatabase, APatternOfMoreThanTheLongestNameFitsNone) {
  const CityName city = *database_->cityNames().begin();
  const auto fitting = [&](const std::string& pattern) {
    std::size_t count = 0;
    for ([[maybe_unused]] const CityName& one : database_->cities(stateOf(*city), pattern)) ++count;
    return count;
  };
  const std::string name(nameOf(*city));
  EXPECT_GT(fitting(name), 0U);
  EXPECT_GT(fitting("*" + name + "*"), 0U);
  const std::string longest = name + std::string(28 - name.size(), 'A');
  EXPECT_EQ(fitting(longest), 0U);
  EXPECT_EQ(fitting(name + std::string(29 - name.size(), '*')), 0U);
  EXPECT_EQ(fitting(longest + "A"), 0U);
  EXPECT_EQ(fitting("*" + longest + "A*"), 0U);
}

TEST_F(ADatabase, SaysWhetherATruncatedNameFitsSeveral) {
  // SPRING begins SPRINGTOWN of the same state.
  std::size_t ambiguous = 0;
  std::size_t unique = 0;
  for (const CityName& city : database_->cityNames()) {
    const TruncatedCity first = database_->findTruncatedCity(stateOf(*city), "S");
    EXPECT_FALSE(first && first.ambiguous);
    if (first.ambiguous) ++ambiguous;
    if (first) ++unique;
  }
  EXPECT_GT(ambiguous, 0U);
  EXPECT_GT(unique, 0U);
  const TruncatedCity none = database_->findTruncatedCity("QQ", "S");
  EXPECT_FALSE(none);
  EXPECT_FALSE(none.ambiguous);
}

TEST_F(ADatabase, SmallTablesGiveTheirBytes) {
  const auto county = database_->county(1);
  ASSERT_EQ(county.size(), 32U);
  EXPECT_TRUE(std::equal(county.begin(), county.end(),
                         bytes_.begin() + static_cast<int>(word(Ref::countiesRba.at)) + 32));
  EXPECT_TRUE(database_->county(0).empty());
  EXPECT_TRUE(database_->county(word(Ref::countiesCount.at)).empty());
  EXPECT_TRUE(database_->urbanization(word(Ref::urbsCount.at)).empty());
}

TEST_F(ADatabase, ARangeOfAPatternOutlivesThePattern) {
  std::string pattern = "S*";
  const auto cities = database_->cities("TX", pattern);
  pattern = "*?";
  std::size_t found = 0;
  for (const CityName& city : cities) {
    EXPECT_EQ(nameOf(*city).front(), 'S');
    ++found;
  }
  EXPECT_GT(found, 0U);
}

TEST_F(ADatabase, StatesOfOtherLengthsAreNone) {
  const CityName city = *database_->cityNames().begin();
  ASSERT_TRUE(database_->findCity(stateOf(*city), nameOf(*city)));
  for (const std::string_view state : {"", "T", "TXX"}) {
    EXPECT_FALSE(database_->findCity(state, nameOf(*city)));
    EXPECT_FALSE(database_->findTruncatedCity(state, nameOf(*city)));
    EXPECT_FALSE(database_->findPhonetic(state, "A"));
    for (const CityName& one : database_->cities(state, "A")) ADD_FAILURE() << nameOf(*one);
  }
}

TEST_F(ADatabase, IndexedNamesGiveTheSameAnswers) {
  const auto indexed = openPair();
  ASSERT_TRUE(indexed->indexNames());
  ASSERT_TRUE(indexed->indexNames());
  for (const CityName& city : database_->cityNames())
    EXPECT_EQ(indexed->findCity(stateOf(*city), nameOf(*city)).key,
              database_->findCity(stateOf(*city), nameOf(*city)).key);
}

// A partition by its bytes in the file.
TEST_F(ADatabase, ReadsThePartitionsOfAZipCode) {
  const FileBytes range = readWholeFile(rng_).value();
  std::size_t read = 0;
  for (const Zip& zip : database_->zips()) {
    for (const PartitionKind kind :
         {PartitionKind::kStreet, PartitionKind::kPoBox, PartitionKind::kRuralRoute}) {
      const std::uint32_t rba = kind == PartitionKind::kStreet  ? zip->get(ZipDataRow::sfhRba)
                                : kind == PartitionKind::kPoBox ? zip->get(ZipDataRow::pobRba)
                                                                : zip->get(ZipDataRow::rrRba);
      const std::uint32_t bytes = database_->partitionBytes(zip, kind).value();
      FileBytes buffer(std::size_t{bytes} + 3);
      const auto got = database_->readPartition(zip, kind, buffer, error_);
      if (rba == 0) {
        EXPECT_EQ(got, std::nullopt);
        EXPECT_EQ(error_.code, ErrorCode::kNoPartition);
        continue;
      }
      ASSERT_EQ(got, bytes) << error_.text;
      EXPECT_TRUE(std::equal(buffer.begin(), buffer.begin() + static_cast<int>(bytes),
                             range.begin() + static_cast<int>(rba)));
      ++read;
      if (bytes == 0) continue;
      EXPECT_EQ(database_->readPartition(zip, kind, {buffer.data(), bytes - 1}, error_),
                std::nullopt);
      EXPECT_EQ(error_.code, ErrorCode::kSmallBuffer);
      EXPECT_EQ(error_.offset, bytes);
    }
  }
  EXPECT_GT(read, 5U);
}

TEST_F(ADatabase, APartitionBehindTheEndOfTheFileIsAnError) {
  FileBytes range = readWholeFile(rng_).value();
  range.resize(700);
  writeWholeFile(rng_, range);
  const Zip zip = *database_->zips().begin();
  FileBytes buffer(1 << 20);
  std::size_t failures = 0;
  for (const PartitionKind kind :
       {PartitionKind::kStreet, PartitionKind::kPoBox, PartitionKind::kRuralRoute}) {
    if (database_->readPartition(zip, kind, buffer, error_)) continue;
    if (error_.code == ErrorCode::kNoPartition) continue;
    EXPECT_EQ(error_.code, ErrorCode::kShortFile);
    EXPECT_NE(error_.text.find(rng_ + ": the partition at "), std::string::npos);
    ++failures;
  }
  EXPECT_GT(failures, 0U);
}

TEST_F(ADatabase, WithoutARangeFileThereAreNoPartitions) {
  const auto alone = open(ref_);
  ASSERT_NE(alone, nullptr);
  unsigned char buffer[8];
  EXPECT_EQ(alone->readPartition(*alone->zips().begin(), PartitionKind::kStreet, buffer, error_),
            std::nullopt);
  EXPECT_EQ(error_.code, ErrorCode::kNoRange);
}

// A file that becomes short after it was opened ends nothing: its tables are in memory.
TEST_F(ADatabase, AFileThatShrinksIsNotMissed) {
  const CityName city = *database_->cityNames().begin();
  writeWholeFile(ref_, {});
  EXPECT_EQ(database_->findCity(stateOf(*city), nameOf(*city)).key, city.key);
}

class ACut : public ReaderPair {};

TEST_F(ACut, IsADatabaseWithoutTheSizesItDoesNotHold) {
  const auto whole = openPair();
  ASSERT_NE(whole, nullptr);
  cut();
  const auto database = openPair();
  ASSERT_NE(database, nullptr) << error_.text;
  EXPECT_TRUE(database->isCut());
  EXPECT_EQ(database->cutTime(), word(Ref::stateCutTimeStamp.at));
  EXPECT_EQ(database->states(), std::vector<std::string>{"TX"});
  std::size_t zips = 0;
  for (const Zip& zip : database->zips()) {
    EXPECT_EQ(whole->stateOf(whole->zip(zip->get(ZipDataRow::zip))), "TX");
    EXPECT_EQ(database->stateOf(zip), std::nullopt);
    EXPECT_EQ(database->partitionBytes(zip, PartitionKind::kStreet), std::nullopt);
    ++zips;
  }
  EXPECT_GT(zips, 1U);
  for (const CityName& city : database->cityNames()) EXPECT_EQ(stateOf(*city), "TX");
}

TEST_F(ACut, ReadsAsMuchOfAPartitionAsItIsAskedFor) {
  const auto whole = openPair();
  ASSERT_NE(whole, nullptr);
  cut();
  const auto database = openPair();
  ASSERT_NE(database, nullptr) << error_.text;
  std::size_t read = 0;
  for (const Zip& zip : database->zips()) {
    const Zip before = whole->zip(zip->get(ZipDataRow::zip));
    const auto bytes = whole->partitionBytes(before, PartitionKind::kStreet).value();
    if (before->get(ZipDataRow::sfhRba) == 0) continue;
    FileBytes here(bytes);
    FileBytes there(bytes);
    EXPECT_EQ(whole->readPartition(before, PartitionKind::kStreet, there, error_), bytes);
    EXPECT_EQ(database->readPartition(zip, PartitionKind::kStreet, here, error_), bytes);
    EXPECT_EQ(here, there);
    ++read;
  }
  EXPECT_GT(read, 0U);
}

}  // namespace
}  // namespace statecut::test
