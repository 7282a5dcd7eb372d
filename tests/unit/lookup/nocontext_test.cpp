// Lookups without a context: no run, or one that has no control record, files or tables. All say
// "not found" and touch nothing.

#include <gtest/gtest.h>

#include "dbfiles/apiutil.h"
#include "lookup/cache.h"
#include "lookup/cities.h"
#include "lookup/firm.h"
#include "lookup/refaccess.h"
#include "lookup/street.h"
#include "lookup/zip.h"
#include "tables/refpointers.h"

namespace statecut {
namespace {

// The parameter: whether there is a run at all.
class LookupWithoutContext : public ::testing::TestWithParam<bool> {
 protected:
  LookupWithoutContext() {
    refPointers = {};
    pProcObj = run();
  }
  ~LookupWithoutContext() override { pProcObj = nullptr; }
  ProcObj* run() { return GetParam() ? &proc_ : nullptr; }

  ProcObj proc_{};
  ZipDataRow zip_{};
  CityDataRow city_{};
  std::int32_t length_ = 77;
};

TEST_P(LookupWithoutContext, FindsNoZipCode) {
  std::uint32_t key = 77;
  EXPECT_EQ(dbGetZipIndexIn(12345), -1);
  EXPECT_EQ(dbGetZipIndexOff(12345), -1);
  EXPECT_EQ(dbGetZipDataIn(12345, &key), nullptr);
  EXPECT_EQ(dbGetZipDataOff(12345, &key), nullptr);
  EXPECT_EQ(key, 77u);
  EXPECT_EQ(dbGetZipDataFromKeyIn(1), nullptr);
  EXPECT_EQ(dbGetZipDataFromKeyOff(1), nullptr);
  zip_.set(ZipDataRow::cityKeysCount, 2);
  for (const ZipDataRow* zip : {static_cast<const ZipDataRow*>(nullptr), &std::as_const(zip_)}) {
    EXPECT_EQ(dbGetCityKeysPtrIn(zip), nullptr);
    EXPECT_EQ(dbGetCityKeysPtrOff(zip), nullptr);
    EXPECT_EQ(dbGetZipFinMltZpRBAIn(zip), nullptr);
    EXPECT_EQ(dbGetZipFinMltZpRBAOff(zip), nullptr);
  }
  EXPECT_EQ(dbGetMultiZipFinRBAIn(1), nullptr);
  EXPECT_EQ(dbGetMultiZipFinRBAOff(1), nullptr);
  EXPECT_EQ(dbGetMultiZipsIn(1, 1), nullptr);
  EXPECT_EQ(dbGetMultiZipsOff(1, 1), nullptr);
}

TEST_P(LookupWithoutContext, FindsNoCityName) {
  EXPECT_EQ(dbGetCityUSPS(1), nullptr);
  EXPECT_EQ(dbGetCityUSPSOff(1), nullptr);
  EXPECT_EQ(dbGetCityUSPSOffwc(1), nullptr);
  EXPECT_EQ(dbGetCityUSPSFirst(1), nullptr);
  EXPECT_EQ(dbGetCityName(nullptr), nullptr);
  EXPECT_EQ(dbFindCityNameIdx("TXWACO", 6, run()), -1);
  EXPECT_EQ(dbFindCityNameIdxOff("TXWACO", 6, run()), -1);
  EXPECT_EQ(dbFindCityNameIdxFirst("TXWACO", 6, run()), -1);
  EXPECT_EQ(dbFindCityHashIn("TX", "WACO", 4), -1);
  EXPECT_EQ(dbFindCityHashOff("TX", "WACO", 4), -1);
  EXPECT_EQ(dbFindCityIndexFirst("TX", "WACO", 4), -1);
  EXPECT_EQ(dbFindCityIn("TX", "WACO", 4), nullptr);
  EXPECT_EQ(dbFindCityOff("TX", "WACO", 4), nullptr);
  EXPECT_EQ(dbFindCityFirst("TX", "WACO", 4), nullptr);
  EXPECT_EQ(dbFindTruncCityIndex("TX", "WA", 2), -1);
  EXPECT_EQ(dbFindTruncCityIdxOff("TX", "WA", 2), -1);
  EXPECT_EQ(dbFindTruncCityIndexFirst("TX", "WA", 2), -1);
  EXPECT_EQ(dbFindTruncCityIn("TX", "WA", 2), nullptr);
  EXPECT_EQ(dbFindTruncCityOff("TX", "WA", 2), nullptr);
  EXPECT_EQ(dbFindTruncCityFirst("TX", "WA", 2), nullptr);
  EXPECT_EQ(seqSearchCityIn("TX", "WA", startsWith, 0), -1);
  EXPECT_EQ(seqSearchCityOff("TX", "WA", startsWith, 0), -1);
  EXPECT_EQ(seqSearchCityFirst("TX", "WA", startsWith, 0), -1);
  EXPECT_EQ(findNearestCity("TX", "WA*", 0), -1);
}

TEST_P(LookupWithoutContext, FindsNoCityData) {
  CityNameRow* name = nullptr;
  std::uint32_t value = 77;
  std::uint32_t key = 77;
  EXPECT_EQ(dbFindCityDataIn(&name, "TX", "WACO", &value, &key, 4), nullptr);
  EXPECT_EQ(dbFindCityDataOff(&name, "TX", "WACO", &value, &key, 4), nullptr);
  EXPECT_EQ(dbFindTruncCityDataIn(&name, "TX", "WA", &value, &key, 2), nullptr);
  EXPECT_EQ(dbFindTruncCityDataOff(&name, "TX", "WA", &value, &key, 2), nullptr);
  EXPECT_EQ(name, nullptr);
  EXPECT_EQ(value, 77u);
  EXPECT_EQ(key, 77u);
  EXPECT_EQ(dbGetCityDataIn(1), nullptr);
  EXPECT_EQ(dbGetCityDataOff(1), nullptr);
  EXPECT_EQ(dbGetCityZipKeyPtrIn(1, 1), nullptr);
  EXPECT_EQ(dbGetCityZipKeyPtrOff(1, 1), nullptr);
  EXPECT_EQ(dbGetCityFinKeyPtrIn(1, 1), nullptr);
  EXPECT_EQ(dbGetCityFinKeyPtrOff(1, 1), nullptr);
  city_.set(CityDataRow::multiZipRbaKey, 1);
  for (const CityDataRow* city :
       {static_cast<const CityDataRow*>(nullptr), &std::as_const(city_)}) {
    EXPECT_EQ(dbGetCityMultiZipRBADataIn(city), nullptr);
    EXPECT_EQ(dbGetCityMultiZipRBADataOff(city), nullptr);
  }
}

TEST_P(LookupWithoutContext, FindsNoPhoneticKey) {
  EXPECT_EQ(findCityPhIdx("TXWK", 4, run()), -1);
  EXPECT_EQ(findCityPhIdxOff("TXWK", 4, run()), -1);
  EXPECT_EQ(findCityPhIdxFirst("TXWK", 4, run()), -1);
  std::int32_t count = 77;
  for (FindCityPh* find : {&dbFindCityPhIn, &dbFindCityPhOff, &dbFindCityPhFirst}) {
    std::int32_t index = 77;
    EXPECT_EQ(find("TX", "WK", 2, &count, &index), nullptr);
  }
  EXPECT_EQ(count, 77);
  EXPECT_EQ(dbGetCityPh(1), nullptr);
  EXPECT_EQ(dbGetCityPhOff(1), nullptr);
  EXPECT_EQ(dbGetCityPhFirst(1), nullptr);
}

TEST_P(LookupWithoutContext, FindsNoStreetOrFirm) {
  for (auto* find : {&dbFindStreetKey, &dbFindStreetKeyOff, &dbFindStreetFirst, &dbFindFirm,
                     &dbFindFirmOff, &dbFindFirmFirst})
    EXPECT_EQ(find("MAIN", 4, run()), -1);
  for (GetName* get :
       {&dbGetStreetNameUSPS, &dbGetStreetNameUSPSCacheOff, &dbGetStreetNameUSPSCacheOffwc,
        &dbGetStreetNameUSPSFirst, &dbGetFirmName, &dbGetFirmNameCacheOff, &dbGetFirmNameFirst})
    EXPECT_EQ(get(0, &length_, run()), nullptr);
  EXPECT_EQ(length_, 77);
  EXPECT_EQ(dbGetGenrlDelvryIn(1), nullptr);
  EXPECT_EQ(dbGetGenrlDelvryOff(1), nullptr);
}

TEST_P(LookupWithoutContext, FindsNoVariation) {
  streetPhnVariation = {};
  streetStdVariation = {};
  fillStreetVariations(run(), true);
  fillStreetVariations(run(), false);
  for (FindStreetVarIdx* find :
       {&dbFindStreetVarIdx, &dbFindStreetVarIdxOff, &dbFindStreetVarIdxFirst})
    for (const std::uint32_t type : {3u, 4u}) EXPECT_EQ(find(type, "MAIN", 4, run()), -1);
  for (FindStreetVar* find : {&dbFindStreetVar, &dbFindStreetVarFirst})
    for (const std::int32_t kind : {kPhoneticVariation, kStandardVariation}) {
      std::int8_t flag = 77;
      std::int32_t count = 0;
      EXPECT_EQ(find("MAIN", 4, nullptr, 0, kind, &flag, &count), nullptr);
      EXPECT_EQ(flag, 77);
      EXPECT_EQ(count, 0);
    }
}

TEST_P(LookupWithoutContext, ReadsNothing) {
  unsigned char byte = 77;
  EXPECT_EQ(refStream(run()), nullptr);
  EXPECT_EQ(readGuarded(nullptr, 0, 1, &byte, run()), -1);
  EXPECT_EQ(chCreateStageBuffer(run(), 100), nullptr);
  EXPECT_EQ(byte, 77);
}

INSTANTIATE_TEST_SUITE_P(Run, LookupWithoutContext, ::testing::Bool());

TEST(CacheWithoutArguments, IsRefused) {
  Cache* none = nullptr;
  chFreeCache(nullptr);
  chFreeCache(&none);
  chBumpCache(nullptr, 1);
  EXPECT_EQ(chConstructBufferData(nullptr, 64), -1);
  CacheEntry entry{};
  EXPECT_EQ(chConstructBufferData(&entry, 0), -1);
  Cache* cache = chConstructCache(64, 1);
  unsigned char* out = nullptr;
  EXPECT_EQ(chFillCacheFromData(nullptr, cache, 0, nullptr), -1);
  EXPECT_EQ(chFillRS02CacheFromData(cache, 0, 4, nullptr, &out), -1);
  EXPECT_EQ(out, nullptr);
  chFreeCache(&cache);
}

}  // namespace
}  // namespace statecut
