#pragma once
// The pointers through which the lookups are called when the variant is open: these and the pfn
// members of ProcObj. The lookups themselves take a null pointer for one that holds the First
// variant (findStreetVartn: the In variant).

#include "../base/procobj.h"
#include "../lookup/cities.h"
#include "../lookup/firm.h"
#include "../lookup/street.h"
#include "../lookup/zip.h"

namespace statecut {

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

// Makes a successful dbOpenRefDB call installLookups. Including this header does it at start-up.
void dbInitLookups() noexcept;
[[maybe_unused]] inline const bool lookupsInitialized = (dbInitLookups(), true);

// The members of `proc`, dbFindCity, dbFindTruncCity and dbFindCityPh get their First variants,
// findStreetVartn its In variant.
void installLookups(ProcObj* proc);

// Every pointer gets its In or its Off variant; the tables must be loaded for In.
void installInLookups(ProcObj* proc);
void installOffLookups(ProcObj* proc);

// The global pointers whose lookups have no First variant: the load of a set of tables (a TableSet)
// decides whether they hold In or Off.
[[nodiscard]] bool decidesVariants(std::uint32_t set);
void chooseVariants(std::uint32_t set, bool inMemory);

// True when the reference file could not be read, by any lookup since it was opened; *error is
// errno of the first failure, 0 when the file became shorter. From then on every Off variant
// answers "not found", in memory what was not loaded whole. Close the file and open it again to go
// on.
[[nodiscard]] bool lookupsFailed(int* error = nullptr);

// The variant that a pointer stands for.
template <typename Function>
Function* orFirst(Function* held, Function* first) {
  return held != nullptr ? held : first;
}
// The same for a member of pProcObj.
template <typename Function>
Function* orFirst(Function* ProcObj::*member, Function* first) {
  return orFirst(pProcObj == nullptr ? nullptr : pProcObj->*member, first);
}

}  // namespace statecut
