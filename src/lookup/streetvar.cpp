// The streets that a phonetic or standardized variation of a street name stands for.

#include <cstdio>

#include "hash/namehash.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"
#include "lookup/refaccess.h"
#include "lookup/street.h"
#include "lookup/streetlist.h"

namespace statecut {

StreetVariation streetPhnVariation{};
StreetVariation streetStdVariation{};

namespace {

constexpr std::int32_t kMaxKey = memory::kLongestStreet;
constexpr std::int32_t kMaxScfKeys = 5;
constexpr std::int32_t kAddLimit = 500;  // of the in-memory lookup, before it adds

std::int32_t variationIndex(std::uint32_t type, const char* key, std::int32_t length) {
  return orFirst(&ProcObj::pfnFindStreetVarIdx, dbFindStreetVarIdxFirst)(type, key, length,
                                                                         pProcObj);
}

}  // namespace

std::int32_t dbFindStreetVarIdx(std::uint32_t type, const char* key, std::int32_t length,
                                ProcObj* proc) {
  return length > kMaxKey ? -1 : hashIn(key, length, type, proc);
}

std::int32_t dbFindStreetVarIdxOff(std::uint32_t type, const char* key, std::int32_t length,
                                   ProcObj* proc) {
  return length > kMaxKey ? -1 : hashOff(key, length, type, proc);
}

const std::uint32_t* dbFindStreetVar(const char* key, std::int32_t length,
                                     const std::uint16_t* scfKeys, std::int32_t scfCount,
                                     std::int32_t kind, std::int8_t* flag, std::int32_t* count) {
  // The number is limited although the first key alone is compared. Meant.
  if (scfCount > kMaxScfKeys) {
    std::fputs("Error, max of 5 scf keys in dbFindStreet()", stderr);
    return nullptr;
  }
  FindStreetVartn* find = orFirst(findStreetVartn, findStreetVartnIn);
  if (kind == kPhoneticVariation)
    return find(&streetPhnVariation, key, length, scfKeys, scfCount, flag, count, kStreetPhonetics);
  if (kind == kStandardVariation)
    return find(&streetStdVariation, key, length, scfKeys, scfCount, flag, count, kStreetStandards);
  return nullptr;
}

const std::uint32_t* findStreetVartnIn(const StreetVariation* set, const char* key,
                                       std::int32_t length, const std::uint16_t* scfKey,
                                       std::int32_t filter, std::int8_t* flag, std::int32_t* count,
                                       std::uint32_t type) {
  const std::int32_t found = variationIndex(type, key, length);
  const VariationRow* entry = nullptr;
  if (set != nullptr && set->index != nullptr)
    entry = memory::variationAt({set->index, set->indexBytes}, found);
  if (entry != nullptr && *count < kAddLimit) {
    const std::uint32_t value = entry->get(VariationRow::value);
    *flag = memory::flagOf(*entry);
    if (*flag >= 0)
      addStreetKey(value, count);
    else if (set->list != nullptr && value < set->listBytes)
      ambgsStreetMatch({set->list + value, set->listBytes - value}, scfKey, filter, count);
  }
  return *count != 0 ? keyList.data() : nullptr;
}

// Unlike the In variant: no limit of 500, a single key replaces the list, and the list is the
// result even when nothing was found. Meant.
const std::uint32_t* findStreetVartnOff(const StreetVariation* set, const char* key,
                                        std::int32_t length, const std::uint16_t* scfKey,
                                        std::int32_t filter, std::int8_t* flag, std::int32_t* count,
                                        std::uint32_t type) {
  const std::int32_t position = variationIndex(type, key, length);
  if (position == -1 || set == nullptr || set->index == nullptr || set->list == nullptr)
    return nullptr;
  VariationRow entry{};
  const std::uint32_t rba = le::get<4>(set->index) + static_cast<std::uint32_t>(position);
  if (!readDirect(rba, VariationRow::size, &entry)) return nullptr;
  const std::uint32_t value = entry.get(VariationRow::value);
  const std::uint32_t* keys = keyList.data();
  if (memory::flagOf(entry) < 0) {
    keys = ambgsStreetMatchOff(le::get<4>(set->list) + value, scfKey, filter, count);
  } else {
    *count = 0;
    addStreetKey(value, count);
  }
  if (keys != nullptr) *flag = memory::flagOf(entry);
  return keys;
}

}  // namespace statecut
