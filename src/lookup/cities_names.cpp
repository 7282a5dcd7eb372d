// City names by key and by exact name.

#include "hash/namehash.h"
#include "lookup/cities.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr LogSource kCitiesSource{"cities", 3000};

// The control record when `key` is a city name key, else null. The count compares as a signed
// number, so a damaged one of 2^31 or more has no keys.
const RefControlRec* refForKey(std::int32_t key) {
  const RefControlRec* ref = refRecord();
  const bool valid = ref != nullptr && key >= 1 &&
                     key <= static_cast<std::int32_t>(ref->get(RefControlRec::cityNamesCount));
  return valid ? ref : nullptr;
}

CityNameRow* nameOnDisk(std::int32_t index, CityNameRow* record) {
  const RefControlRec* ref = refRecord();
  const bool read = ref != nullptr && readRow(ref->get(RefControlRec::cityNamesRba),
                                              static_cast<std::uint32_t>(index), record);
  return read ? record : nullptr;
}

std::int32_t cityIndex(const char* state, const char* name, std::int32_t length) {
  return orFirst(&ProcObj::pfnFindCityIndex, dbFindCityIndexFirst)(state, name, length);
}

}  // namespace

CityNameRow* dbGetCityUSPS(std::int32_t key) {
  const Trace trace(kCitiesSource);
  CityNameRow* record = memory::cityName(processTables(), key);
  // Writes its Entering line a second time and no Leaving line. Meant.
  if (record != nullptr) trace.again();
  return record;
}

CityNameRow* dbGetCityUSPSOff(std::int32_t key) {
  const Trace trace(kCitiesSource);
  static CityNameRow cityName{};
  if (refForKey(key) == nullptr) return nullptr;
  return trace.leave(nameOnDisk(key, &cityName));
}

CityNameRow* dbGetCityUSPSOffwc(std::int32_t key) {
  const Trace trace(kCitiesSource);
  static CityNameRow cityName{};
  const RefControlRec* ref = refForKey(key);
  if (ref == nullptr || !readRowCached(ref->get(RefControlRec::cityNamesRba),
                                       static_cast<std::uint32_t>(key), &cityName))
    return nullptr;
  return trace.leave(&cityName);
}

CityNameRow* dbGetCityName(const std::uint32_t* key) {
  const Trace trace(kCitiesSource);
  if (key == nullptr) return nullptr;
  return orFirst(&ProcObj::pfnGetCityUSPS, dbGetCityUSPSFirst)(static_cast<std::int32_t>(*key));
}

std::int32_t dbFindCityNameIdx(const char* key, std::int32_t length, ProcObj* proc) {
  const Trace trace(kCitiesSource);
  return length > memory::kLongestCityKey ? -1 : hashIn(key, length, kCityNames, proc);
}

std::int32_t dbFindCityNameIdxOff(const char* key, std::int32_t length, ProcObj* proc) {
  const Trace trace(kCitiesSource);
  return length > memory::kLongestCityKey ? -1 : hashOff(key, length, kCityNames, proc);
}

std::int32_t dbFindCityHashIn(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const memory::StateKey key(state, name, length);
  return trace.leave(dbFindCityNameIdx(key.chars(), key.length, pProcObj));
}

std::int32_t dbFindCityHashOff(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const memory::StateKey key(state, name, length);
  return trace.leave(dbFindCityNameIdxOff(key.chars(), key.length, pProcObj));
}

CityNameRow* dbFindCityIn(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const std::int32_t index = cityIndex(state, name, length);
  return index == -1 ? nullptr : trace.leave(memory::cityNameAt(processTables(), index));
}

CityNameRow* dbFindCityOff(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  static CityNameRow cityName{};
  const std::int32_t index = cityIndex(state, name, length);
  return index == -1 ? nullptr : trace.leave(nameOnDisk(index, &cityName));
}

CityNameRow* dbFindCityFirst(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  static CityNameRow cityName{};
  dbFindCity = dbFindCityIn;
  const std::int32_t index = cityIndex(state, name, length);
  if (index == -1) return nullptr;
  if (loaded(kSlotCityNames)) return trace.leave(memory::cityNameAt(processTables(), index));
  // The one first call that does not try to load the table. Meant.
  dbFindCity = dbFindCityOff;
  return trace.leave(nameOnDisk(index, &cityName));
}

}  // namespace statecut
