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

void dbInitLookups() noexcept { dbLookupInstaller = installLookups; }

void installLookups(ProcObj* proc) {
  if (proc != nullptr) {
    proc->pfnFindFirm = dbFindFirmFirst;
    proc->pfnFindStreetKey = dbFindStreetFirst;
    proc->pfnFindStreetVar = dbFindStreetVarFirst;
    proc->pfnGetStreetNameUSPS = dbGetStreetNameUSPSFirst;
    proc->pfnGetStreetNameUSPSwc = dbGetStreetNameUSPSFirst;
    proc->pfnFindCityIndex = dbFindCityIndexFirst;
    proc->pfnFindTruncCityIndex = dbFindTruncCityIndexFirst;
    proc->pfnGetCityUSPS = dbGetCityUSPSFirst;
    proc->pfnGetCityUSPSwc = dbGetCityUSPSFirst;
    proc->pfnSeqSearchCity = seqSearchCityFirst;
    proc->pfnGetCityPh = dbGetCityPhFirst;
    proc->pfnGetFirmName = dbGetFirmNameFirst;
    proc->pfnFindCityNameIdx = dbFindCityNameIdxFirst;
    proc->pfnFindCityPhIdx = findCityPhIdxFirst;
    proc->pfnFindStreetVarIdx = dbFindStreetVarIdxFirst;
  }
  dbFindCity = dbFindCityFirst;
  dbFindTruncCity = dbFindTruncCityFirst;
  dbFindCityPh = dbFindCityPhFirst;
  findStreetVartn = findStreetVartnIn;
}

void installInLookups(ProcObj* proc) {
  if (proc != nullptr) {
    proc->pfnFindFirm = dbFindFirm;
    proc->pfnFindStreetKey = dbFindStreetKey;
    proc->pfnFindStreetVar = dbFindStreetVar;
    proc->pfnGetStreetNameUSPS = dbGetStreetNameUSPS;
    proc->pfnGetStreetNameUSPSwc = dbGetStreetNameUSPS;
    proc->pfnFindCityIndex = dbFindCityHashIn;
    proc->pfnFindTruncCityIndex = dbFindTruncCityIndex;
    proc->pfnGetCityUSPS = dbGetCityUSPS;
    proc->pfnGetCityUSPSwc = dbGetCityUSPS;
    proc->pfnSeqSearchCity = seqSearchCityIn;
    proc->pfnGetCityPh = dbGetCityPh;
    proc->pfnGetFirmName = dbGetFirmName;
    proc->pfnFindCityNameIdx = dbFindCityNameIdx;
    proc->pfnFindCityPhIdx = findCityPhIdx;
    proc->pfnFindStreetVarIdx = dbFindStreetVarIdx;
  }
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
  if (proc != nullptr) {
    proc->pfnFindFirm = dbFindFirmOff;
    proc->pfnFindStreetKey = dbFindStreetKeyOff;
    proc->pfnFindStreetVar = dbFindStreetVar;
    proc->pfnGetStreetNameUSPS = dbGetStreetNameUSPSCacheOff;
    proc->pfnGetStreetNameUSPSwc = dbGetStreetNameUSPSCacheOffwc;
    proc->pfnFindCityIndex = dbFindCityHashOff;
    proc->pfnFindTruncCityIndex = dbFindTruncCityIdxOff;
    proc->pfnGetCityUSPS = dbGetCityUSPSOff;
    proc->pfnGetCityUSPSwc = dbGetCityUSPSOffwc;
    proc->pfnSeqSearchCity = seqSearchCityOff;
    proc->pfnGetCityPh = dbGetCityPhOff;
    proc->pfnGetFirmName = dbGetFirmNameCacheOff;
    proc->pfnFindCityNameIdx = dbFindCityNameIdxOff;
    proc->pfnFindCityPhIdx = findCityPhIdxOff;
    proc->pfnFindStreetVarIdx = dbFindStreetVarIdxOff;
  }
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
