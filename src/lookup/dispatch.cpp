#include "lookup/dispatch.h"

#include "dbfiles/apiutil.h"

namespace statecut {

decltype(&dbGetZipIndexIn) dbGetZipIndex = nullptr;
decltype(&dbGetZipDataIn) dbGetZipData = nullptr;
decltype(&dbGetZipDataFromKeyIn) dbGetZipDataFromKey = nullptr;
decltype(&dbGetCityKeysPtrIn) dbGetCityKeysPtr = nullptr;
decltype(&dbGetMultiZipFinRBAIn) dbGetMultiZipFinRBA = nullptr;
decltype(&dbGetZipFinMltZpRBAIn) dbGetZipFinMltZpRBA = nullptr;
decltype(&dbGetMultiZipsIn) dbGetMultiZips = nullptr;
decltype(&dbFindCityIn) dbFindCity = nullptr;
decltype(&dbFindTruncCityIn) dbFindTruncCity = nullptr;
FindCityData* dbFindCityData = nullptr;
FindCityData* dbFindTruncCityData = nullptr;
decltype(&dbGetCityDataIn) dbGetCityData = nullptr;
decltype(&dbGetCityZipKeyPtrIn) dbGetCityZipKeyPtr = nullptr;
decltype(&dbGetCityFinKeyPtrIn) dbGetCityFinKeyPtr = nullptr;
decltype(&dbGetCityMultiZipRBADataIn) dbGetCityMultiZipRBAData = nullptr;
FindCityPh* dbFindCityPh = nullptr;
FindStreetVartn* findStreetVartn = nullptr;
decltype(&dbGetGenrlDelvryIn) dbGetGenrlDelvry = nullptr;

UnusedLookup dbGetMilPrefer = nullptr;
UnusedLookup dbGetMilitary = nullptr;
UnusedLookup dbFindUniqueZip4 = nullptr;
UnusedLookup dbGetCountyDataFromKey = nullptr;
UnusedLookup dbGetPattern = nullptr;
UnusedLookup dbGetPatternKey = nullptr;

namespace {

LookupPointers processWide{};

}  // namespace

LookupPointers& lookupsOf(const ProcObj* proc) {
  return proc == nullptr || proc->lookups == nullptr ? processWide : *proc->lookups;
}

void dbInitLookups() { dbLookupInstaller = installLookups; }

// A program that calls through a lookup pointer links this file, and so need not ask for it.
[[maybe_unused]] const bool installerSet = (dbInitLookups(), true);

void installLookups(ProcObj* proc) {
  lookupsOf(proc) = {.pfnFindFirm = dbFindFirmFirst,
                     .pfnFindStreetKey = dbFindStreetFirst,
                     .pfnFindStreetVar = dbFindStreetVarFirst,
                     .pfnGetStreetNameUSPS = dbGetStreetNameUSPSFirst,
                     .pfnGetStreetNameUSPSwc = dbGetStreetNameUSPSFirst,
                     .pfnFindCityIndex = dbFindCityIndexFirst,
                     .pfnFindTruncCityIndex = dbFindTruncCityIndexFirst,
                     .pfnGetCityUSPS = dbGetCityUSPSFirst,
                     .pfnGetCityUSPSwc = dbGetCityUSPSFirst,
                     .pfnSeqSearchCity = seqSearchCityFirst,
                     .pfnGetCityPh = dbGetCityPhFirst,
                     .pfnGetFirmName = dbGetFirmNameFirst,
                     .pfnFindCityNameIdx = dbFindCityNameIdxFirst,
                     .pfnFindCityPhIdx = findCityPhIdxFirst,
                     .pfnFindStreetVarIdx = dbFindStreetVarIdxFirst};
  dbFindCity = dbFindCityFirst;
  dbFindTruncCity = dbFindTruncCityFirst;
  dbFindCityPh = dbFindCityPhFirst;
  findStreetVartn = findStreetVartnIn;
}

void installInLookups(ProcObj* proc) {
  lookupsOf(proc) = {.pfnFindFirm = dbFindFirm,
                     .pfnFindStreetKey = dbFindStreetKey,
                     .pfnFindStreetVar = dbFindStreetVar,
                     .pfnGetStreetNameUSPS = dbGetStreetNameUSPS,
                     .pfnGetStreetNameUSPSwc = dbGetStreetNameUSPS,
                     .pfnFindCityIndex = dbFindCityHashIn,
                     .pfnFindTruncCityIndex = dbFindTruncCityIndex,
                     .pfnGetCityUSPS = dbGetCityUSPS,
                     .pfnGetCityUSPSwc = dbGetCityUSPS,
                     .pfnSeqSearchCity = seqSearchCityIn,
                     .pfnGetCityPh = dbGetCityPh,
                     .pfnGetFirmName = dbGetFirmName,
                     .pfnFindCityNameIdx = dbFindCityNameIdx,
                     .pfnFindCityPhIdx = findCityPhIdx,
                     .pfnFindStreetVarIdx = dbFindStreetVarIdx};
  dbGetZipIndex = dbGetZipIndexIn;
  dbGetZipData = dbGetZipDataIn;
  dbGetZipDataFromKey = dbGetZipDataFromKeyIn;
  dbGetCityKeysPtr = dbGetCityKeysPtrIn;
  dbGetMultiZipFinRBA = dbGetMultiZipFinRBAIn;
  dbGetZipFinMltZpRBA = dbGetZipFinMltZpRBAIn;
  dbGetMultiZips = dbGetMultiZipsIn;
  dbFindCity = dbFindCityIn;
  dbFindTruncCity = dbFindTruncCityIn;
  dbFindCityData = dbFindCityDataIn;
  dbFindTruncCityData = dbFindTruncCityDataIn;
  dbGetCityData = dbGetCityDataIn;
  dbGetCityZipKeyPtr = dbGetCityZipKeyPtrIn;
  dbGetCityFinKeyPtr = dbGetCityFinKeyPtrIn;
  dbGetCityMultiZipRBAData = dbGetCityMultiZipRBADataIn;
  dbFindCityPh = dbFindCityPhIn;
  findStreetVartn = findStreetVartnIn;
  dbGetGenrlDelvry = dbGetGenrlDelvryIn;
  fillStreetVariations(proc, false);
}

void installOffLookups(ProcObj* proc) {
  lookupsOf(proc) = {.pfnFindFirm = dbFindFirmOff,
                     .pfnFindStreetKey = dbFindStreetKeyOff,
                     .pfnFindStreetVar = dbFindStreetVar,
                     .pfnGetStreetNameUSPS = dbGetStreetNameUSPSCacheOff,
                     .pfnGetStreetNameUSPSwc = dbGetStreetNameUSPSCacheOffwc,
                     .pfnFindCityIndex = dbFindCityHashOff,
                     .pfnFindTruncCityIndex = dbFindTruncCityIdxOff,
                     .pfnGetCityUSPS = dbGetCityUSPSOff,
                     .pfnGetCityUSPSwc = dbGetCityUSPSOffwc,
                     .pfnSeqSearchCity = seqSearchCityOff,
                     .pfnGetCityPh = dbGetCityPhOff,
                     .pfnGetFirmName = dbGetFirmNameCacheOff,
                     .pfnFindCityNameIdx = dbFindCityNameIdxOff,
                     .pfnFindCityPhIdx = findCityPhIdxOff,
                     .pfnFindStreetVarIdx = dbFindStreetVarIdxOff};
  dbGetZipIndex = dbGetZipIndexOff;
  dbGetZipData = dbGetZipDataOff;
  dbGetZipDataFromKey = dbGetZipDataFromKeyOff;
  dbGetCityKeysPtr = dbGetCityKeysPtrOff;
  dbGetMultiZipFinRBA = dbGetMultiZipFinRBAOff;
  dbGetZipFinMltZpRBA = dbGetZipFinMltZpRBAOff;
  dbGetMultiZips = dbGetMultiZipsOff;
  dbFindCity = dbFindCityOff;
  dbFindTruncCity = dbFindTruncCityOff;
  dbFindCityData = dbFindCityDataOff;
  dbFindTruncCityData = dbFindTruncCityDataOff;
  dbGetCityData = dbGetCityDataOff;
  dbGetCityZipKeyPtr = dbGetCityZipKeyPtrOff;
  dbGetCityFinKeyPtr = dbGetCityFinKeyPtrOff;
  dbGetCityMultiZipRBAData = dbGetCityMultiZipRBADataOff;
  dbFindCityPh = dbFindCityPhOff;
  findStreetVartn = findStreetVartnOff;
  dbGetGenrlDelvry = dbGetGenrlDelvryOff;
  fillStreetVariations(proc, true);
}

}  // namespace statecut
