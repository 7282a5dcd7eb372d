#pragma once
// The pointers through which the lookups are called when the variant is open. A null pointer
// counts as holding the First variant (findStreetVartn: the In variant).

#include "../base/procobj.h"
#include "../lookup/cities.h"
#include "../lookup/firm.h"
#include "../lookup/street.h"
#include "../lookup/zip.h"

namespace statecut {

// The lookup members of ProcObj.
struct LookupPointers {
  decltype(&dbFindFirm) pfnFindFirm;
  decltype(&dbFindStreetKey) pfnFindStreetKey;
  FindStreetVar* pfnFindStreetVar;
  GetName* pfnGetStreetNameUSPS;
  GetName* pfnGetStreetNameUSPSwc;
  decltype(&dbFindCityHashIn) pfnFindCityIndex;
  decltype(&dbFindTruncCityIndex) pfnFindTruncCityIndex;
  decltype(&dbGetCityUSPS) pfnGetCityUSPS;
  decltype(&dbGetCityUSPS) pfnGetCityUSPSwc;
  decltype(&seqSearchCityIn) pfnSeqSearchCity;
  decltype(&dbGetCityPh) pfnGetCityPh;
  GetName* pfnGetFirmName;
  decltype(&dbFindCityNameIdx) pfnFindCityNameIdx;
  decltype(&findCityPhIdx) pfnFindCityPhIdx;
  FindStreetVarIdx* pfnFindStreetVarIdx;
};

extern decltype(&dbGetZipIndexIn) dbGetZipIndex;
extern decltype(&dbGetZipDataIn) dbGetZipData;
extern decltype(&dbGetZipDataFromKeyIn) dbGetZipDataFromKey;
extern decltype(&dbGetCityKeysPtrIn) dbGetCityKeysPtr;
extern decltype(&dbGetMultiZipFinRBAIn) dbGetMultiZipFinRBA;
extern decltype(&dbGetZipFinMltZpRBAIn) dbGetZipFinMltZpRBA;
extern decltype(&dbGetMultiZipsIn) dbGetMultiZips;
extern decltype(&dbFindCityIn) dbFindCity;
extern decltype(&dbFindTruncCityIn) dbFindTruncCity;
extern FindCityData* dbFindCityData;
extern FindCityData* dbFindTruncCityData;
extern decltype(&dbGetCityDataIn) dbGetCityData;
extern decltype(&dbGetCityZipKeyPtrIn) dbGetCityZipKeyPtr;
extern decltype(&dbGetCityFinKeyPtrIn) dbGetCityFinKeyPtr;
extern decltype(&dbGetCityMultiZipRBADataIn) dbGetCityMultiZipRBAData;
extern FindCityPh* dbFindCityPh;
extern FindStreetVartn* findStreetVartn;
extern decltype(&dbGetGenrlDelvryIn) dbGetGenrlDelvry;

// Declared for lookups that this system does not have; nothing sets or calls them.
using UnusedLookup = void (*)();
extern UnusedLookup dbGetMilPrefer;
extern UnusedLookup dbGetMilitary;
extern UnusedLookup dbFindUniqueZip4;
extern UnusedLookup dbGetCountyDataFromKey;
extern UnusedLookup dbGetPattern;
extern UnusedLookup dbGetPatternKey;

// Makes a successful dbOpenRefDB call installLookups. Done at start-up in every program that uses a
// lookup pointer.
void dbInitLookups();

// Every member of `proc` (a process-wide record when it has none), dbFindCity, dbFindTruncCity and
// dbFindCityPh get their First variants, findStreetVartn its In variant.
void installLookups(ProcObj* proc);

// Every pointer gets its In or its Off variant; the tables must be loaded for In.
void installInLookups(ProcObj* proc);
void installOffLookups(ProcObj* proc);

// The members of `proc`, or the process-wide ones when it has none.
[[nodiscard]] LookupPointers& lookupsOf(const ProcObj* proc);

// The variant that a pointer stands for.
template <typename Function>
Function* orFirst(Function* held, Function* first) {
  return held != nullptr ? held : first;
}

}  // namespace statecut
