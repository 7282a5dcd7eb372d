#include <cstring>

#include "dbfiles/apiutil.h"
#include "lookupfixture.h"

namespace statecut::test {

namespace {

using Keys = std::vector<std::uint32_t>;
using Lines = std::vector<std::string>;

std::int32_t size(const char* text) { return static_cast<std::int32_t>(std::strlen(text)); }

// Each case runs in memory, on disk and on disk through a cache.
class CityLookup : public SmallDatabase, public ::testing::WithParamInterface<const char*> {
 protected:
  void start() {
    open();
    const std::string variant = GetParam();
    if (variant == "in") {
      load();
      useIn();
    } else {
      useOff();
      if (variant == "cached") buildCache(64, 4);
    }
  }
  std::string found(const char* state, const char* name) {
    return nameOf(dbFindCity(state, name, size(name)));
  }
  std::string truncated(const char* state, const char* name) {
    return nameOf(dbFindTruncCity(state, name, size(name)));
  }
};

INSTANTIATE_TEST_SUITE_P(Variants, CityLookup, ::testing::Values("in", "off", "cached"),
                         [](const auto& variant) { return std::string(variant.param); });

TEST_P(CityLookup, NameByKeyAcceptsOneToTheCount) {
  start();
  for (const auto lookup : {proc_.pfnGetCityUSPS, proc_.pfnGetCityUSPSwc}) {
    EXPECT_EQ(lookup(0), nullptr);
    EXPECT_EQ(lookup(-1), nullptr);
    EXPECT_EQ(lookup(8), nullptr);
    EXPECT_NE(lookup(7), nullptr);
    EXPECT_EQ(nameOf(lookup(2)), "AUSTIN");
  }
  const std::uint32_t key = 5;
  EXPECT_EQ(nameOf(dbGetCityName(&key)), "WACO");
}

TEST_P(CityLookup, ExactNameIsFoundInItsStateOnly) {
  start();
  EXPECT_EQ(proc_.pfnFindCityIndex("TX", "AUSTIN", 6), 2);
  EXPECT_EQ(proc_.pfnFindCityIndex("AZ", "AUSTIN", 6), -1);
  EXPECT_EQ(proc_.pfnFindCityIndex("TX", "AUSTIN", 5), -1);
  EXPECT_EQ(proc_.pfnFindCityIndex("TX", "AUSTIN", -1), -1);
  EXPECT_EQ(found("TX", "SPRINGFIELD"), "SPRINGFIELD");
  EXPECT_EQ(found("TX", "NOWHERE"), "null");
}

TEST_P(CityLookup, HashKeysAbove30BytesAreNotLookedUp) {
  const std::string name(28, 'N');
  // The count of 7 leaves room for one more record behind the table.
  const std::uint32_t rba = table(RefControlRec::cityNamesRba.at, cityName(1, 0, "TX", name));
  word(RefControlRec::cityNamesRba.at, rba);
  named("TX" + name, 2, 0);
  start();
  EXPECT_EQ(proc_.pfnFindCityIndex("TX", name.c_str(), 28), 0);
  EXPECT_EQ(proc_.pfnFindCityIndex("TX", (name + "N").c_str(), 29), -1);
  EXPECT_EQ(proc_.pfnFindCityNameIdx(("TX" + name).c_str(), 30, &proc_), 0);
  EXPECT_EQ(proc_.pfnFindCityNameIdx(("TX" + name + "N").c_str(), 31, &proc_), -1);
}

TEST_P(CityLookup, TruncatedNameMustFitOneRecord) {
  start();
  EXPECT_EQ(truncated("TX", "SPRING"), "null") << "SPRINGFIELD fits as well";
  EXPECT_EQ(truncated("AZ", "SPRING"), "SPRINGFIELD");
  EXPECT_EQ(truncated("TX", "AUS"), "AUSTIN");
  EXPECT_EQ(truncated("TX", "ZAVALLA"), "ZAVALLA");
  EXPECT_EQ(truncated("TX", "WACOX"), "null") << "longer than the name";
  EXPECT_EQ(truncated("TX", "B"), "null");
  EXPECT_EQ(proc_.pfnFindTruncCityIndex("TX", "A", 0), -1);
  EXPECT_EQ(proc_.pfnFindTruncCityIndex("TX", "A", -3), -1);
  EXPECT_EQ(proc_.pfnFindTruncCityIndex("TX", "WAC", 3), 5);
}

TEST_P(CityLookup, RecordAtPositionZeroIsNeverARival) {
  Pack names;
  for (const char* name : {"SPRINGFIELD", "SPRING", "TOWN"}) {
    const Bytes one = cityName(1, 0, "TX", name);
    names.text(std::string(one.begin(), one.end()), 34);
  }
  table(RefControlRec::cityNamesRba.at, names);
  word(RefControlRec::cityNamesCount.at, 3);
  start();
  EXPECT_EQ(truncated("TX", "SPRING"), "SPRING");
}

TEST_P(CityLookup, SequentialSearchGoesOnBehindAMatch) {
  start();
  const auto search = proc_.pfnSeqSearchCity;
  EXPECT_EQ(search("TX", "SPRING", startsWith, 0), 4);
  EXPECT_EQ(search("TX", "SPRING", startsWith, 4), 5);
  EXPECT_EQ(search("TX", "SPRING", startsWith, 5), -1);
  EXPECT_EQ(search("TX", "SPRING", startsWith, -1), -1);
  EXPECT_EQ(search("TX", "SPRING", startsWith, 7), -1);
  EXPECT_EQ(search("TX", "SPRING", nullptr, 0), -1);
}

TEST_P(CityLookup, BadPatternsAreRefused) {
  start();
  for (const char* pattern : {"", "*", "**", "A**", "**A", "**A*", "*A**"})
    EXPECT_EQ(dbFindNearestCity("TX", pattern), -1) << pattern;
}

TEST_P(CityLookup, PatternsSearchByBeginEndAndPart) {
  start();
  EXPECT_EQ(dbFindNearestCity("TX", "*AC*"), 6);
  EXPECT_EQ(dbFindNearestCity("TX", "SPRING"), 4);
  EXPECT_EQ(dbFindNearestCity("TX", "SPRING*"), 4);
  EXPECT_EQ(dbFindNearestCity("TX", "*FIELD"), 5);
  EXPECT_EQ(dbFindNextCity("TX", "SPRING*", 4), 5);
  EXPECT_EQ(dbFindNextCity("TX", "SPRING*", 5), -1);
}

TEST_P(CityLookup, LongPatternIsCutButNotBehindALeadingStar) {
  start();
  // Cut to 28 characters the pattern ends in a star and finds the prefix.
  const std::string prefix = "WACO" + std::string(23, 'X') + "*YYY";
  EXPECT_EQ(dbFindNearestCity("TX", prefix.c_str()), -1);
  // Longer than every name: each of the state's matches as a suffix.
  EXPECT_EQ(dbFindNearestCity("TX", ("*" + std::string(40, 'Q')).c_str()), 3);
}

TEST_P(CityLookup, CityDataByName) {
  start();
  CityNameRow* name = nullptr;
  std::uint32_t value = 0;
  std::uint32_t key = 0;
  EXPECT_EQ(dbFindCityData(&name, "TX", "NOWHERE", &value, &key, 7), nullptr);
  EXPECT_EQ(name, nullptr);
  const CityDataRow* data = dbFindCityData(&name, "TX", "AUSTIN", &value, &key, 6);
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->get(CityDataRow::nameUsps), 1u);
  EXPECT_EQ(nameOf(name), "AUSTIN");
  EXPECT_EQ(value, 7u);
  EXPECT_EQ(key, 1u);
  EXPECT_NE(dbFindTruncCityData(&name, "TX", "AUST", &value, &key, 4), nullptr);
  data = dbFindCityData(&name, "TX", "ZAVALLA", &value, &key, 7);
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->get(CityDataRow::nameUsps), 0xAAAAu) << "key 0 is entry 0";
}

TEST_P(CityLookup, KeyOfANameAboveTheCityDataIsHandedOut) {
  start();
  CityNameRow* name = nullptr;
  std::uint32_t value = 0;
  std::uint32_t key = 0;
  const bool found = dbFindCityData(&name, "TX", "WACO", &value, &key, 4) != nullptr;
  EXPECT_EQ(found, GetParam() != std::string("in")) << "only the loaded table is bounded";
  EXPECT_EQ(nameOf(name), "WACO");
  EXPECT_EQ(value, 5u);
  EXPECT_EQ(key, 9u);
}

TEST_P(CityLookup, CityDataByKeyAcceptsOneToTheCount) {
  start();
  EXPECT_EQ(dbGetCityData(0), nullptr);
  EXPECT_EQ(dbGetCityData(5), nullptr);
  EXPECT_NE(dbGetCityData(4), nullptr) << "the count itself";
  ASSERT_NE(dbGetCityData(3), nullptr);
  EXPECT_EQ(dbGetCityData(3)->get(CityDataRow::nameUsps), 3u);
}

TEST_P(CityLookup, KeyListsOfACity) {
  start();
  EXPECT_EQ(dbGetCityZipKeyPtr(1, 0), nullptr);
  EXPECT_EQ(dbGetCityZipKeyPtr(1, 5), nullptr);
  ASSERT_NE(dbGetCityZipKeyPtr(2, 2), nullptr);
  EXPECT_EQ(std::memcmp(dbGetCityZipKeyPtr(2, 2), "zip 2 zip 3 ", 12), 0);
  EXPECT_EQ(dbGetCityFinKeyPtr(1, 0), nullptr);
  EXPECT_EQ(dbGetCityFinKeyPtr(1, 4), nullptr);
  EXPECT_EQ(keysOf(dbGetCityFinKeyPtr(2, 1), 2), (Keys{21, 22}));
}

TEST_P(CityLookup, ListLengthsAreClampedToTheBuffers) {
  start();
  EXPECT_NE(dbGetCityZipKeyPtr(0xFFFFFFFF, 1), nullptr);
  EXPECT_NE(dbGetCityFinKeyPtr(0xFFFFFFFF, 1), nullptr);
}

TEST_P(CityLookup, MultiZipRecordOfACity) {
  start();
  const CityDataRow one = *dbGetCityData(1);
  const CityDataRow above = *dbGetCityData(2);
  const CityDataRow none = *dbGetCityData(3);
  ASSERT_NE(dbGetCityMultiZipRBAData(&one), nullptr);
  EXPECT_EQ(dbGetCityMultiZipRBAData(&one)->get(CityMultiZipRow::sfhZipCount), 2u);
  EXPECT_EQ(dbGetCityMultiZipRBAData(&above), nullptr);
  EXPECT_EQ(dbGetCityMultiZipRBAData(&none), nullptr);
  EXPECT_EQ(dbGetCityMultiZipRBAData(nullptr), nullptr);
}

TEST_P(CityLookup, PhoneticCountIsAtMostNine) {
  start();
  std::int32_t count = -7;
  std::int32_t index = -7;
  EXPECT_EQ(dbFindCityPh("TX", "NONE", 4, &count, &index), nullptr);
  EXPECT_EQ(count, -7);
  EXPECT_EQ(index, -1);
  ASSERT_NE(dbFindCityPh("TX", "ASTN", 4, &count, &index), nullptr);
  EXPECT_EQ(count, 9) << "stored as 12";
  EXPECT_EQ(index, 1);
  ASSERT_NE(dbFindCityPh("TX", "WK", 2, &count, &index), nullptr);
  EXPECT_EQ(count, 9);
  EXPECT_EQ(index, 2);
  EXPECT_EQ(dbFindCityPh("TX", "WK", -1, &count, &index), nullptr);
  EXPECT_EQ(index, -1);
}

TEST_P(CityLookup, PhoneticCodesAbove19CharactersAreNotFound) {
  const std::string shortest(19, 'C');
  const std::string longest(20, 'C');
  Bytes codes = phonetic("TX", shortest, 1);
  const Bytes second = phonetic("TX", longest, 1);
  codes.insert(codes.end(), second.begin(), second.end());
  table(RefControlRec::cityPhoneticsRba.at, codes);
  named("TX" + shortest, 5, 0);
  named("TX" + longest, 5, 1);
  start();
  std::int32_t count = 0;
  std::int32_t index = 0;
  EXPECT_NE(dbFindCityPh("TX", shortest.c_str(), 19, &count, &index), nullptr);
  EXPECT_EQ(dbFindCityPh("TX", longest.c_str(), 20, &count, &index), nullptr);
  EXPECT_EQ(index, -1);
  index = 55;
  EXPECT_EQ(dbFindCityPh("TX", std::string(29, 'C').c_str(), 29, &count, &index), nullptr);
  EXPECT_EQ(index, GetParam() == std::string("in") ? 55 : -1);
}

TEST_P(CityLookup, PhoneticRecordByIndex) {
  start();
  EXPECT_EQ(proc_.pfnGetCityPh(0), nullptr);
  EXPECT_EQ(proc_.pfnGetCityPh(4), nullptr);
  ASSERT_NE(proc_.pfnGetCityPh(2), nullptr);
  EXPECT_EQ(proc_.pfnGetCityPh(2)->get(CityPhoneticRow::keyLength), 2u);
}

using CityLookups = SmallDatabase;

TEST_F(CityLookups, ZipKeyStart65535IsNeverRead) {
  word(RefControlRec::cityMultiZipListsCount.at, 70000);
  open();
  const auto* held = dbGetCityZipKeyPtrOff(1, 1);
  ASSERT_NE(held, nullptr);
  EXPECT_EQ(std::memcmp(held, "zip 1 ", 6), 0);
  // The bytes at start 65535 come from within the file.
  const std::uint32_t rba = record().get(RefControlRec::cityMultiZipListsRba);
  record().set(RefControlRec::cityMultiZipListsRba, rba - 6u * 65534u);
  EXPECT_EQ(std::memcmp(dbGetCityZipKeyPtrOff(2, 65535), "zip 1 ", 6), 0);
  EXPECT_EQ(std::memcmp(dbGetCityZipKeyPtrOff(1, 65536), "zip 2 ", 6), 0) << "read as usual";
  EXPECT_EQ(std::memcmp(dbGetCityZipKeyPtrOff(1, 65535), "zip 2 ", 6), 0);
}

TEST_F(CityLookups, FinanceBoundOnDiskIsTheLow16BitsOfTheCount) {
  word(RefControlRec::cityMultiFinanceListsCount.at, 0x10001);
  open();
  load();
  EXPECT_NE(dbGetCityFinKeyPtrIn(1, 2), nullptr);
  EXPECT_EQ(dbGetCityFinKeyPtrOff(1, 2), nullptr);
  EXPECT_NE(dbGetCityFinKeyPtrOff(1, 1), nullptr);
}

TEST_F(CityLookups, DamagedLengthBytesStayInsideTheirRecord) {
  file_[file_.size() - 1] = 0;
  open();
  load();
  for (std::size_t i = 1; i < 7; ++i) refPointers[kSlotCityNames].table[34 * i + 3] = 255;
  useIn();
  EXPECT_NE(dbFindNearestCity("TX", "WACO"), -1);
  EXPECT_EQ(dbFindTruncCityIndex("TX", std::string(300, 'W').c_str(), 300), -1);
  EXPECT_EQ(dbFindTruncCityIndex("TX", "WACO", 4), 5);
}

TEST_F(CityLookups, SequentialSearchWithADamagedCountEnds) {
  word(RefControlRec::cityNamesCount.at, 0xFFFFFFFF);
  open();
  EXPECT_EQ(seqSearchCityOff("TX", "WACO", startsWith, 0), 6);
  EXPECT_EQ(seqSearchCityOff("QQ", "WACO", startsWith, 0), -1);
  proc_.files->reference = unseekable();
  EXPECT_EQ(seqSearchCityOff("TX", "WACO", startsWith, 0), -1);
  proc_.files->reference = nullptr;
  EXPECT_EQ(seqSearchCityOff("TX", "WACO", startsWith, 0), -1);
}

TEST_F(CityLookups, FailedCacheReadGivesNull) {
  open();
  buildCache(64, 2);
  proc_.files->reference = unseekable();
  EXPECT_EQ(dbGetCityUSPSOffwc(2), nullptr);
  EXPECT_EQ(dbGetCityDataOff(1), nullptr);
  EXPECT_EQ(dbGetCityZipKeyPtrOff(1, 1), nullptr);
}

TEST_F(CityLookups, TraceHasItsExceptions) {
  open();
  load();
  useIn();
  options_.debugSwitch = 'D';
  const std::string debug = "DBG;cities;20070;Debug;";
  dbGetCityUSPS(1);
  EXPECT_EQ(records(), (Lines{debug + "Entering dbGetCityUSPS", debug + "Entering dbGetCityUSPS"}));
  dbGetCityUSPS(0);
  EXPECT_EQ(records(), (Lines{debug + "Entering dbGetCityUSPS"}));
  dbFindCityIn("TX", "AUSTIN", 6);
  EXPECT_EQ(records(), (Lines{debug + "Entering dbFindCityIn", debug + "Entering dbFindCityHashIn",
                              debug + "Entering dbFindCityNameIdx",
                              debug + "Leaving dbFindCityHashIn", debug + "Leaving dbFindCityIn"}));
  dbFindNearestCity("TX", "AUSTIN");
  EXPECT_EQ(records(),
            (Lines{debug + "Entering dbFindNearestCity", debug + "Entering findNearestCity",
                   debug + "Entering seqSearchCityIn", debug + "Leaving seqSearchCityIn",
                   debug + "Leaving findNearestCity"}));
  std::int32_t count = 0;
  std::int32_t index = 0;
  dbFindCityPh("TX", "WK", 2, &count, &index);
  proc_.pfnFindStreetKey("BETA", 4, &proc_);
  proc_.pfnFindFirm("ACME", 4, &proc_);
  EXPECT_EQ(records(), Lines{}) << "phonetic, street and firm lookups write none";
}

}  // namespace

}  // namespace statecut::test
