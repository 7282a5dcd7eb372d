// First-call variants of the city names family.

#include "lookup/dispatch.h"
#include "lookup/support.h"

namespace statecut {

namespace {

constexpr LogSource kCitiesSource{"cities", 2000};

void cityNamesOff(LookupPointers& pointers) {
  pointers.pfnFindCityIndex = dbFindCityHashOff;
  pointers.pfnFindTruncCityIndex = dbFindTruncCityIdxOff;
  pointers.pfnGetCityUSPS = dbGetCityUSPSOff;
  pointers.pfnGetCityUSPSwc = dbGetCityUSPSOffwc;
  pointers.pfnSeqSearchCity = seqSearchCityOff;
  dbFindCity = dbFindCityOff;
  dbFindTruncCity = dbFindTruncCityOff;
}

bool cityNamesFail(ProcObj* proc) { return loadFails(kSlotCityNames, dbReadCityNames, proc); }

// True when the names are there but their hash index cannot be loaded.
bool hashFails(ProcObj* proc) {
  return loaded(kSlotCityNames) && loadFails(kSlotHashTable, dbReadHashedNames, proc);
}

}  // namespace

CityNameRow* dbGetCityUSPSFirst(std::int32_t key) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return nullptr;
  LookupPointers& pointers = lookupsOf(pProcObj);
  pointers.pfnGetCityUSPS = dbGetCityUSPS;
  pointers.pfnGetCityUSPSwc = dbGetCityUSPS;
  if (cityNamesFail(pProcObj)) cityNamesOff(pointers);
  return trace.leave(pointers.pfnGetCityUSPS(key));
}

std::int32_t dbFindCityIndexFirst(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return -1;
  LookupPointers& pointers = lookupsOf(pProcObj);
  pointers.pfnFindCityIndex = dbFindCityHashIn;
  if (cityNamesFail(pProcObj)) cityNamesOff(pointers);
  if (hashFails(pProcObj)) {
    pointers.pfnFindCityIndex = dbFindCityHashOff;
    pointers.pfnFindCityNameIdx = dbFindCityNameIdxOff;
  }
  return trace.leave(pointers.pfnFindCityIndex(state, name, length));
}

std::int32_t dbFindCityNameIdxFirst(const char* key, std::int32_t length, ProcObj* proc) {
  const Trace trace(kCitiesSource);
  if (proc == nullptr) return -1;
  LookupPointers& pointers = lookupsOf(proc);
  pointers.pfnFindCityNameIdx = dbFindCityNameIdx;
  if (cityNamesFail(proc)) {
    cityNamesOff(pointers);
    pointers.pfnFindCityNameIdx = dbFindCityNameIdxOff;
  }
  if (hashFails(proc)) {
    pointers.pfnFindCityIndex = dbFindCityHashOff;
    pointers.pfnFindCityNameIdx = dbFindCityNameIdxOff;
  }
  return trace.leave(pointers.pfnFindCityNameIdx(key, length, proc));
}

std::int32_t dbFindTruncCityIndexFirst(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return -1;
  LookupPointers& pointers = lookupsOf(pProcObj);
  pointers.pfnFindTruncCityIndex = dbFindTruncCityIndex;
  if (cityNamesFail(pProcObj)) cityNamesOff(pointers);
  return trace.leave(pointers.pfnFindTruncCityIndex(state, name, length));
}

CityNameRow* dbFindTruncCityFirst(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return nullptr;
  LookupPointers& pointers = lookupsOf(pProcObj);
  dbFindTruncCity = dbFindTruncCityIn;
  pointers.pfnFindTruncCityIndex = dbFindTruncCityIndex;
  if (cityNamesFail(pProcObj)) cityNamesOff(pointers);
  return trace.leave(dbFindTruncCity(state, name, length));
}

std::int32_t seqSearchCityFirst(const char* state, const char* text, NameMatcher matcher,
                                std::int32_t start) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return -1;
  LookupPointers& pointers = lookupsOf(pProcObj);
  pointers.pfnSeqSearchCity = seqSearchCityIn;
  if (cityNamesFail(pProcObj)) cityNamesOff(pointers);
  return trace.leave(pointers.pfnSeqSearchCity(state, text, matcher, start));
}

}  // namespace statecut
