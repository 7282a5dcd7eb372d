#include "cut/multizip.h"

#include <algorithm>
#include <cstdio>

#include "base/memory.h"
#include "cut/multizipkeys.h"
#include "cut/multizipsize.h"
#include "cut/progress.h"
#include "cut/rangecopy.h"
#include "cut/zipselect.h"
#include "lookup/cities.h"
#include "tables/refpointers.h"

namespace statecut {

namespace {

constexpr char kTitle[] = "Build Multi Zips";
constexpr std::uint16_t kShared = 2;  // ZIP codes that make a partition a multi-ZIP one

CityDataRow* cityTable() {
  return reinterpret_cast<CityDataRow*>(refPointers[kSlotCityData].table);
}

std::uint32_t cityCount() {
  return cityTable() == nullptr || cityKeys == nullptr ? 0 : refWord(RefControlRec::cityDataCount);
}

std::uint32_t newName(std::uint32_t position) {
  return cityNameMap != nullptr && position < sourceCityNames ? cityNameMap[position] : 0;
}

// Calls visit(city) for the cities in the cut.
template <typename Visit>
void forEachCity(Visit&& visit) {
  const std::uint32_t count = cityCount();
  for (std::uint32_t c = 0; c < count; ++c) {
    if (cityKeys[c] != 0) visit(cityTable()[c]);
  }
}

template <typename OnFinance>
void visitFinance(std::uint32_t key, OnFinance&& onFinance) {
  FinMultiZipRow* record = dbGetMultiZipFinRBAIn(static_cast<std::int32_t>(key));
  if (record != nullptr && record->get(FinMultiZipRow::zipCount) >= kShared) onFinance(*record);
}

// The records of one city that name an SFH multi-ZIP partition. Deliberate: a city with several ZIP
// codes but no shared SFH partition is not asked for its finance record; cuts have always been so.
template <typename OnCity, typename OnFinance>
void visitSfh(const CityDataRow& city, OnCity&& onCity, OnFinance&& onFinance) {
  const std::uint16_t zips = city.get(CityDataRow::zipCount);
  if (zips == 1) return;
  if (zips >= kShared) {
    CityMultiZipRow* record = dbGetCityMultiZipRBADataIn(&city);
    if (record == nullptr || record->get(CityMultiZipRow::sfhZipCount) < kShared) return;
    onCity(*record);
  }
  if (city.get(CityDataRow::finMultiZipFlag) == 1) {
    visitFinance(city.get(CityDataRow::finMultiZipKey), onFinance);
  }
}

template <typename OnFinance>
std::int32_t visitZipFinance(LogSite badKey, OnFinance&& onFinance) {
  return forEachSelectedZip(badKey, kTitle,
                            [&](std::uint16_t, const ZipDataRow& zip) -> std::int32_t {
                              visitFinance(zip.get(ZipDataRow::finMultiZipKey), onFinance);
                              return 0;
                            });
}

// The first record of a key decides its size and its old RBA; a size of 0 is asked for again.
template <typename SizeOf>
void fill(std::uint32_t key, std::uint32_t rba, SizeOf&& sizeOf) {
  MultiZipKey* entry = multiZipKey(key);
  if (entry == nullptr || entry->bytes != 0) return;
  entry->bytes = sizeOf();
  entry->oldRba = rba;
  touchMultiZipKey(key);
}

void fillFinance(const FinMultiZipRow& record) {
  const std::uint16_t key = record.get(FinMultiZipRow::key);
  fill(key, record.get(FinMultiZipRow::rba), [key] { return getMltZpEntryPntSize(key, kSfh); });
}

void fillCitySfh(const CityMultiZipRow& record) {
  const std::uint32_t key = record.get(CityMultiZipRow::sfhKey);
  fill(key, record.get(CityMultiZipRow::sfhRba),
       [key] { return getMltZpEntryPntSize4(key, kSfh); });
}

template <typename Record, typename KeyField, typename RbaField>
void pointAtCopy(Record& record, KeyField key, RbaField rba) {
  const MultiZipKey* entry = multiZipKey(record.get(key));
  if (entry != nullptr && entry->newRba != 0) record.set(rba, entry->newRba);
}

void pointFinance(FinMultiZipRow& record) {
  pointAtCopy(record, FinMultiZipRow::key, FinMultiZipRow::rba);
}

void pointCitySfh(CityMultiZipRow& record) {
  pointAtCopy(record, CityMultiZipRow::sfhKey, CityMultiZipRow::sfhRba);
}

// Calls visit(record) for the city records with a POB or RR multi-ZIP partition.
template <typename CountField, typename RbaField, typename Visit>
void visitCityRecords(CountField zipCount, RbaField rba, Visit&& visit) {
  forEachCity([&](const CityDataRow& city) {
    if (city.get(CityDataRow::zipCount) < kShared) return;
    CityMultiZipRow* record = dbGetCityMultiZipRBADataIn(&city);
    if (record == nullptr || record->get(zipCount) < kShared || record->get(rba) == 0) return;
    visit(*record);
  });
}

template <typename CountField, typename KeyField, typename RbaField>
std::int32_t buildKind(std::int32_t kind, CountField zipCount, KeyField keyField, RbaField rba) {
  clearMultiZipKeys();
  visitCityRecords(zipCount, rba, [&](const CityMultiZipRow& record) {
    const std::uint16_t key = record.get(keyField);
    fill(key, record.get(rba), [key, kind] { return getMltZpEntryPntSize(key, kind); });
  });
  return 0;
}

template <typename CountField, typename KeyField, typename RbaField>
std::int32_t updateKind(CountField zipCount, KeyField keyField, RbaField rba) {
  visitCityRecords(zipCount, rba,
                   [&](CityMultiZipRow& record) { pointAtCopy(record, keyField, rba); });
  return 0;
}

void planPartitions(RangePlan& plan) {
  std::uint64_t total = 0;
  visitMultiZipKeys([&](const MultiZipKey& entry) {
    if (entry.bytes <= 0) return true;
    const auto bytes = static_cast<std::uint32_t>(entry.bytes);
    plan.add(entry.oldRba, bytes);
    total += bytes;
    return true;
  });
  plan.reserve();
  if (progressWanted()) progressStep("Multi-ZIP partitions", total);
}

}  // namespace

std::int32_t createCityList() {
  const std::uint32_t cities = refWord(RefControlRec::cityDataCount);
  cityKeys = static_cast<std::uint32_t*>(allocTable(std::uint64_t{cities} * sizeof(std::uint32_t)));
  if (cityKeys == nullptr) {
    logNoMemory(logsite::kCityKeysFailed, "City Keys");
    return -1;
  }
  const std::uint32_t names = scCityNames == nullptr ? 0 : refWord(RefControlRec::cityNamesCount);
  for (std::uint32_t i = 0; i < names; ++i) {
    const std::uint16_t city = scCityNames[i].get(CityNameRow::cityKey);
    if (city != 0 && city < cities) ++cityKeys[city];
  }
  return 0;
}

void renumberNameLinks() {
  const std::uint32_t cities = cityCount();
  for (std::uint32_t c = 0; c < cities; ++c) {
    CityDataRow& city = cityTable()[c];
    const bool kept = cityKeys[c] != 0;
    city.set(CityDataRow::nameUsps, kept ? newName(city.get(CityDataRow::nameUsps)) : 0);
    city.set(CityDataRow::nameStandard, kept ? newName(city.get(CityDataRow::nameStandard)) : 0);
  }
}

std::int32_t buildSFHMultiZip() {
  allocMultiZipKeys(refWord(RefControlRec::multiZipListsCount));
  if (multiZipKeys == nullptr) {
    logNoMemory(logsite::kMultiZipKeysFailed, "Multi-Zip Keys");
    return -1;
  }
  renumberNameLinks();
  forEachCity([](const CityDataRow& city) { visitSfh(city, fillCitySfh, fillFinance); });
  return visitZipFinance(logsite::kBuildMultiZipBadKey, fillFinance);
}

std::int32_t buildPOBMultiZip() {
  return buildKind(kPob, CityMultiZipRow::pobZipCount, CityMultiZipRow::pobKey,
                   CityMultiZipRow::pobRba);
}

std::int32_t buildRRMultiZip() {
  return buildKind(kRr, CityMultiZipRow::rrZipCount, CityMultiZipRow::rrKey,
                   CityMultiZipRow::rrRba);
}

std::int32_t writeMultiZip() {
  RangePlan plan(rangePath());
  planPartitions(plan);
  std::uint32_t lastRba = 0;
  bool copied = true;
  visitMultiZipKeys([&](MultiZipKey& entry) {
    if (entry.bytes <= 0) return true;
    // A warning alone: a step back is copied like any other partition.
    if (entry.oldRba < lastRba) std::printf("must go forward!! not back!!\n");
    lastRba = entry.oldRba;
    const auto bytes = static_cast<std::uint32_t>(entry.bytes);
    const std::uint32_t newRba = totalRngBytes;
    copied = appendRangePartition(plan, entry.oldRba, bytes) == 0;
    if (copied) entry.newRba = newRba;
    return copied;
  });
  return copied ? 0 : -1;
}

std::int32_t updateSFHMultiZip() {
  forEachCity([](const CityDataRow& city) { visitSfh(city, pointCitySfh, pointFinance); });
  return visitZipFinance(logsite::kUpdateMultiZipBadKey, pointFinance);
}

std::int32_t updatePOBMultiZip() {
  return updateKind(CityMultiZipRow::pobZipCount, CityMultiZipRow::pobKey, CityMultiZipRow::pobRba);
}

std::int32_t updateRRMultiZip() {
  return updateKind(CityMultiZipRow::rrZipCount, CityMultiZipRow::rrKey, CityMultiZipRow::rrRba);
}

std::int32_t buildMltZpEntryPoints() {
  using Step = std::int32_t();
  Step* const steps[] = {createCityList,   buildSFHMultiZip, writeMultiZip,     updateSFHMultiZip,
                         buildPOBMultiZip, writeMultiZip,    updatePOBMultiZip, buildRRMultiZip,
                         writeMultiZip,    updateRRMultiZip};
  for (Step* step : steps) {
    if (const std::int32_t status = step(); status != 0) return status;
  }
  return 0;
}

}  // namespace statecut
