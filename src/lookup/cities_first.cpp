// First-call variants of the city names family.

#include "lookup/dispatch.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr LogSource kCitiesSource{"cities", 2000};

void cityNamesOff(ProcObj& proc) {
  proc.pfnFindCityIndex = dbFindCityHashOff;
  proc.pfnFindTruncCityIndex = dbFindTruncCityIdxOff;
  proc.pfnGetCityUSPS = dbGetCityUSPSOff;
  proc.pfnGetCityUSPSwc = dbGetCityUSPSOffwc;
  proc.pfnSeqSearchCity = seqSearchCityOff;
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
  pProcObj->pfnGetCityUSPS = dbGetCityUSPS;
  pProcObj->pfnGetCityUSPSwc = dbGetCityUSPS;
  if (cityNamesFail(pProcObj)) cityNamesOff(*pProcObj);
  return trace.leave(pProcObj->pfnGetCityUSPS(key));
}

std::int32_t dbFindCityIndexFirst(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return -1;
  pProcObj->pfnFindCityIndex = dbFindCityHashIn;
  if (cityNamesFail(pProcObj)) cityNamesOff(*pProcObj);
  if (hashFails(pProcObj)) {
    pProcObj->pfnFindCityIndex = dbFindCityHashOff;
    pProcObj->pfnFindCityNameIdx = dbFindCityNameIdxOff;
  }
  return trace.leave(pProcObj->pfnFindCityIndex(state, name, length));
}

std::int32_t dbFindCityNameIdxFirst(const char* key, std::int32_t length, ProcObj* proc) {
  const Trace trace(kCitiesSource);
  if (proc == nullptr) return -1;
  proc->pfnFindCityNameIdx = dbFindCityNameIdx;
  if (cityNamesFail(proc)) {
    cityNamesOff(*proc);
    proc->pfnFindCityNameIdx = dbFindCityNameIdxOff;
  }
  if (hashFails(proc)) {
    proc->pfnFindCityIndex = dbFindCityHashOff;
    proc->pfnFindCityNameIdx = dbFindCityNameIdxOff;
  }
  return trace.leave(proc->pfnFindCityNameIdx(key, length, proc));
}

std::int32_t dbFindTruncCityIndexFirst(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return -1;
  pProcObj->pfnFindTruncCityIndex = dbFindTruncCityIndex;
  if (cityNamesFail(pProcObj)) cityNamesOff(*pProcObj);
  return trace.leave(pProcObj->pfnFindTruncCityIndex(state, name, length));
}

CityNameRow* dbFindTruncCityFirst(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return nullptr;
  dbFindTruncCity = dbFindTruncCityIn;
  pProcObj->pfnFindTruncCityIndex = dbFindTruncCityIndex;
  if (cityNamesFail(pProcObj)) cityNamesOff(*pProcObj);
  return trace.leave(dbFindTruncCity(state, name, length));
}

std::int32_t seqSearchCityFirst(const char* state, const char* text, NameMatcher matcher,
                                std::int32_t start) {
  const Trace trace(kCitiesSource);
  if (pProcObj == nullptr) return -1;
  pProcObj->pfnSeqSearchCity = seqSearchCityIn;
  if (cityNamesFail(pProcObj)) cityNamesOff(*pProcObj);
  return trace.leave(pProcObj->pfnSeqSearchCity(state, text, matcher, start));
}

}  // namespace statecut
