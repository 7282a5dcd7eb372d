#include "lookup/dispatch.h"

#include <algorithm>
#include <iterator>

#include "dbfiles/apiutil.h"
#include "lookup/tablesets.h"

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

enum class Variant { First, In, Off };

template <auto first, auto in, auto off, typename Pointer>
void hold(Pointer& pointer, Variant variant) {
  if (variant == Variant::In) {
    pointer = in;
  } else if (variant == Variant::Off) {
    pointer = off;
  } else if constexpr (first != nullptr) {  // else an open keeps what it holds
    pointer = first;
  }
}

template <auto pointer, auto first, auto in, auto off>
void member(ProcObj& proc, Variant variant) {
  hold<first, in, off>(proc.*pointer, variant);
}

template <auto& pointer, auto first, auto in, auto off>
void global(Variant variant) {
  hold<first, in, off>(pointer, variant);
}

// A global pointer, and the set of tables whose load decides its variant; kNoSet: the lookup has a
// First variant, which decides by itself.
struct Global {
  std::uint32_t set;
  void (*hold)(Variant variant);
};
constexpr std::uint32_t kNoSet = 0;

// Every pointer with its variants: First, In, Off.
constexpr void (*kMembers[])(ProcObj& proc, Variant variant) = {
    member<&ProcObj::pfnFindFirm, dbFindFirmFirst, dbFindFirm, dbFindFirmOff>,
    member<&ProcObj::pfnFindStreetKey, dbFindStreetFirst, dbFindStreetKey, dbFindStreetKeyOff>,
    member<&ProcObj::pfnFindStreetVar, dbFindStreetVarFirst, dbFindStreetVar, dbFindStreetVar>,
    member<&ProcObj::pfnGetStreetNameUSPS, dbGetStreetNameUSPSFirst, dbGetStreetNameUSPS,
           dbGetStreetNameUSPSCacheOff>,
    member<&ProcObj::pfnGetStreetNameUSPSwc, dbGetStreetNameUSPSFirst, dbGetStreetNameUSPS,
           dbGetStreetNameUSPSCacheOffwc>,
    member<&ProcObj::pfnFindCityIndex, dbFindCityIndexFirst, dbFindCityHashIn, dbFindCityHashOff>,
    member<&ProcObj::pfnFindTruncCityIndex, dbFindTruncCityIndexFirst, dbFindTruncCityIndex,
           dbFindTruncCityIdxOff>,
    member<&ProcObj::pfnGetCityUSPS, dbGetCityUSPSFirst, dbGetCityUSPS, dbGetCityUSPSOff>,
    member<&ProcObj::pfnGetCityUSPSwc, dbGetCityUSPSFirst, dbGetCityUSPS, dbGetCityUSPSOffwc>,
    member<&ProcObj::pfnSeqSearchCity, seqSearchCityFirst, seqSearchCityIn, seqSearchCityOff>,
    member<&ProcObj::pfnGetCityPh, dbGetCityPhFirst, dbGetCityPh, dbGetCityPhOff>,
    member<&ProcObj::pfnGetFirmName, dbGetFirmNameFirst, dbGetFirmName, dbGetFirmNameCacheOff>,
    member<&ProcObj::pfnFindCityNameIdx, dbFindCityNameIdxFirst, dbFindCityNameIdx,
           dbFindCityNameIdxOff>,
    member<&ProcObj::pfnFindCityPhIdx, findCityPhIdxFirst, findCityPhIdx, findCityPhIdxOff>,
    member<&ProcObj::pfnFindStreetVarIdx, dbFindStreetVarIdxFirst, dbFindStreetVarIdx,
           dbFindStreetVarIdxOff>,
};
constexpr Global kGlobals[] = {
    {kZipSet, global<dbGetZipIndex, nullptr, dbGetZipIndexIn, dbGetZipIndexOff>},
    {kZipSet, global<dbGetZipData, nullptr, dbGetZipDataIn, dbGetZipDataOff>},
    {kZipSet, global<dbGetZipDataFromKey, nullptr, dbGetZipDataFromKeyIn, dbGetZipDataFromKeyOff>},
    {kZipSet, global<dbGetCityKeysPtr, nullptr, dbGetCityKeysPtrIn, dbGetCityKeysPtrOff>},
    {kCitySet, global<dbGetMultiZipFinRBA, nullptr, dbGetMultiZipFinRBAIn, dbGetMultiZipFinRBAOff>},
    {kCitySet, global<dbGetZipFinMltZpRBA, nullptr, dbGetZipFinMltZpRBAIn, dbGetZipFinMltZpRBAOff>},
    {kMultiZipSet, global<dbGetMultiZips, nullptr, dbGetMultiZipsIn, dbGetMultiZipsOff>},
    {kNoSet, global<dbFindCity, dbFindCityFirst, dbFindCityIn, dbFindCityOff>},
    {kNoSet, global<dbFindTruncCity, dbFindTruncCityFirst, dbFindTruncCityIn, dbFindTruncCityOff>},
    {kCitySet, global<dbFindCityData, nullptr, dbFindCityDataIn, dbFindCityDataOff>},
    {kCitySet, global<dbFindTruncCityData, nullptr, dbFindTruncCityDataIn, dbFindTruncCityDataOff>},
    {kCitySet, global<dbGetCityData, nullptr, dbGetCityDataIn, dbGetCityDataOff>},
    {kCitySet, global<dbGetCityZipKeyPtr, nullptr, dbGetCityZipKeyPtrIn, dbGetCityZipKeyPtrOff>},
    {kCitySet, global<dbGetCityFinKeyPtr, nullptr, dbGetCityFinKeyPtrIn, dbGetCityFinKeyPtrOff>},
    {kCitySet, global<dbGetCityMultiZipRBAData, nullptr, dbGetCityMultiZipRBADataIn,
                      dbGetCityMultiZipRBADataOff>},
    {kNoSet, global<dbFindCityPh, dbFindCityPhFirst, dbFindCityPhIn, dbFindCityPhOff>},
    // Deliberate: an open makes this one hold its In variant.
    {kNoSet, global<findStreetVartn, findStreetVartnIn, findStreetVartnIn, findStreetVartnOff>},
    {kGeneralDeliverySet,
     global<dbGetGenrlDelvry, nullptr, dbGetGenrlDelvryIn, dbGetGenrlDelvryOff>},
};

void holdAll(ProcObj* proc, Variant variant) {
  if (proc != nullptr) {
    for (const auto& holdMember : kMembers) holdMember(*proc, variant);
  }
  for (const Global& one : kGlobals) one.hold(variant);
}

}  // namespace

void dbInitLookups() noexcept { dbLookupInstaller = installLookups; }

void installLookups(ProcObj* proc) { holdAll(proc, Variant::First); }

void installInLookups(ProcObj* proc) {
  holdAll(proc, Variant::In);
  fillStreetVariations(proc, false);
}

void installOffLookups(ProcObj* proc) {
  holdAll(proc, Variant::Off);
  fillStreetVariations(proc, true);
}

bool decidesVariants(std::uint32_t set) {
  return std::any_of(std::begin(kGlobals), std::end(kGlobals),
                     [set](const Global& one) { return one.set == set; });
}

void chooseVariants(std::uint32_t set, bool inMemory) {
  for (const Global& one : kGlobals) {
    if (one.set == set) one.hold(inMemory ? Variant::In : Variant::Off);
  }
}

}  // namespace statecut
