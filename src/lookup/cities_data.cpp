// City data by name and by key, and the key lists of a city.

#include <algorithm>
#include <array>

#include "lookup/cities.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr LogSource kCitiesSource{"cities", 1000};

using FindName = CityNameRow*(const char* state, const char* name, std::int32_t length);

// Sets the outs from the name that `find` gives. The control record, null when there is no name.
const RefControlRec* findName(FindName* find, CityNameRow** name, const char* state,
                              const char* city, std::uint32_t* value, std::uint32_t* key,
                              std::int32_t length) {
  CityNameRow* found = find(state, city, length);
  if (found == nullptr) return nullptr;
  *name = found;
  *value = found->get(CityNameRow::value);
  *key = found->get(CityNameRow::cityKey);
  return refRecord();
}

FindName* exactName() { return orFirst(dbFindCity, dbFindCityFirst); }
FindName* truncatedName() { return orFirst(dbFindTruncCity, dbFindTruncCityFirst); }

CityDataRow* dataInMemory(const RefControlRec* ref, std::uint32_t key) {
  if (ref == nullptr) return nullptr;
  return memory::cityDataAt(processTables(ref), key);
}

CityDataRow* dataOnDisk(const RefControlRec* ref, std::uint32_t key, CityDataRow* record) {
  const bool read = ref != nullptr && readRow(ref->get(RefControlRec::cityDataRba), key, record);
  return read ? record : nullptr;
}

}  // namespace

CityDataRow* dbFindCityDataIn(CityNameRow** name, const char* state, const char* city,
                              std::uint32_t* value, std::uint32_t* key, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const RefControlRec* ref = findName(exactName(), name, state, city, value, key, length);
  return trace.leave(dataInMemory(ref, ref == nullptr ? 0 : *key));
}

CityDataRow* dbFindCityDataOff(CityNameRow** name, const char* state, const char* city,
                               std::uint32_t* value, std::uint32_t* key, std::int32_t length) {
  const Trace trace(kCitiesSource);
  static CityDataRow buff{};
  const RefControlRec* ref = findName(exactName(), name, state, city, value, key, length);
  return trace.leave(dataOnDisk(ref, ref == nullptr ? 0 : *key, &buff));
}

CityDataRow* dbFindTruncCityDataIn(CityNameRow** name, const char* state, const char* city,
                                   std::uint32_t* value, std::uint32_t* key, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const RefControlRec* ref = findName(truncatedName(), name, state, city, value, key, length);
  return trace.leave(dataInMemory(ref, ref == nullptr ? 0 : *key));
}

CityDataRow* dbFindTruncCityDataOff(CityNameRow** name, const char* state, const char* city,
                                    std::uint32_t* value, std::uint32_t* key, std::int32_t length) {
  const Trace trace(kCitiesSource);
  static CityDataRow buff{};
  const RefControlRec* ref = findName(truncatedName(), name, state, city, value, key, length);
  return trace.leave(dataOnDisk(ref, ref == nullptr ? 0 : *key, &buff));
}

CityDataRow* dbGetCityDataIn(std::int32_t key) {
  const Trace trace(kCitiesSource);
  return trace.leave(memory::cityData(processTables(), key));
}

CityDataRow* dbGetCityDataOff(std::int32_t key) {
  const Trace trace(kCitiesSource);
  static CityDataRow buff{};
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || key < 1) return nullptr;
  // The count compares as a signed number.
  if (key > static_cast<std::int32_t>(ref->get(RefControlRec::cityDataCount))) return nullptr;
  const auto index = static_cast<std::uint32_t>(key);
  if (!readRowCached(ref->get(RefControlRec::cityDataRba), index, &buff)) return nullptr;
  return trace.leave(&buff);
}

const CityZipKeyRow* dbGetCityZipKeyPtrIn(std::uint32_t, std::uint32_t start) {
  const Trace trace(kCitiesSource);
  return trace.leave(memory::cityZipKeys(processTables(), start));
}

const CityZipKeyRow* dbGetCityZipKeyPtrOff(std::uint32_t count, std::uint32_t start) {
  const Trace trace(kCitiesSource);
  constexpr std::size_t kListBytes = 1808;
  static std::array<unsigned char, kListBytes> listBuff{};
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || start == 0 || start > ref->get(RefControlRec::cityMultiZipListsCount))
    return nullptr;
  // Set on every call, so start 65535 alone counts as already read. Meant.
  const std::uint32_t lastStart = 0xFFFF;
  const std::uint32_t rba =
      entryRba(ref->get(RefControlRec::cityMultiZipListsRba), start, CityZipKeyRow::size);
  const auto bytes = static_cast<std::int32_t>(
      std::min<std::uint64_t>(std::uint64_t{count} * CityZipKeyRow::size, kListBytes));
  if (refLost(pProcObj)) return nullptr;
  if (start != lastStart && !readCached(rba, bytes, listBuff.data())) return nullptr;
  return trace.leave(reinterpret_cast<const CityZipKeyRow*>(listBuff.data()));
}

const KeyRow* dbGetCityFinKeyPtrIn(std::uint32_t, std::uint32_t start) {
  const Trace trace(kCitiesSource);
  return trace.leave(memory::cityFinKeys(processTables(), start));
}

const KeyRow* dbGetCityFinKeyPtrOff(std::uint32_t count, std::uint32_t start) {
  const Trace trace(kCitiesSource);
  static std::array<KeyRow, kCityFinKeysMax> buff{};
  const RefControlRec* ref = refRecord();
  // Bounded by the low 16 bits of the count, unlike the In variant. Meant.
  if (ref == nullptr || start == 0 ||
      start > (ref->get(RefControlRec::cityMultiFinanceListsCount) & 0xFFFF))
    return nullptr;
  const std::uint32_t rba =
      entryRba(ref->get(RefControlRec::cityMultiFinanceListsRba), start, KeyRow::size);
  const auto bytes = static_cast<std::int32_t>(std::min(count, kCityFinKeysMax) * KeyRow::size);
  if (!readDirect(rba, bytes, buff.data())) return nullptr;
  return trace.leave(buff.data());
}

CityMultiZipRow* dbGetCityMultiZipRBADataIn(const CityDataRow* city) {
  const Trace trace(kCitiesSource);
  if (city == nullptr) return nullptr;
  return trace.leave(memory::cityMultiZip(processTables(), *city));
}

CityMultiZipRow* dbGetCityMultiZipRBADataOff(const CityDataRow* city) {
  const Trace trace(kCitiesSource);
  static CityMultiZipRow buff{};
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || city == nullptr) return nullptr;
  const std::uint32_t index = city->get(CityDataRow::multiZipRbaKey);
  if (index == 0 || index > ref->get(RefControlRec::cityMultiZipRbasCount)) return nullptr;
  if (!readRow(ref->get(RefControlRec::cityMultiZipRbasRba), index, &buff)) return nullptr;
  return trace.leave(&buff);
}

}  // namespace statecut
