// Cities by the phonetic code of their name. None of these functions writes trace lines.

#include "hash/namehash.h"
#include "lookup/cities.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr std::int32_t kMaxCode = memory::StateKey::kMost;
constexpr std::int32_t kMaxKey = memory::kLongestPhoneticKey;

// Stores the index of state and code, -1 when there is none.
std::int32_t phoneticIndex(const char* state, const char* code, std::int32_t length,
                           std::int32_t* index) {
  *index = -1;
  const memory::StateKey key(state, code, length);
  if (key.length == -1) return -1;
  *index =
      orFirst(&ProcObj::pfnFindCityPhIdx, findCityPhIdxFirst)(key.chars(), key.length, pProcObj);
  return *index;
}

void storeCount(const CityPhoneticRow& record, std::int32_t* count) {
  *count = memory::phoneticCount(record);
}

CityPhoneticRow* phoneticInMemory(std::int32_t index) {
  return memory::cityPhoneticAt(processTables(), index);
}

bool phoneticsFail(ProcObj* proc) {
  return loadFails(kSlotCityPhonetics, dbReadCityPhonetics, proc);
}

bool hashFails(ProcObj* proc) {
  return loaded(kSlotCityPhonetics) && loadFails(kSlotHashTable, dbReadHashedNames, proc);
}

void phoneticsOff(ProcObj& proc) {
  proc.pfnGetCityPh = dbGetCityPhOff;
  dbFindCityPh = dbFindCityPhOff;
  proc.pfnFindCityPhIdx = findCityPhIdxOff;
}

}  // namespace

std::int32_t findCityPhIdx(const char* key, std::int32_t length, ProcObj* proc) {
  return length > kMaxKey ? -1 : hashIn(key, length, kCityPhonetics, proc);
}

std::int32_t findCityPhIdxOff(const char* key, std::int32_t length, ProcObj* proc) {
  return length > kMaxKey ? -1 : hashOff(key, length, kCityPhonetics, proc);
}

CityPhoneticRow* dbFindCityPhIn(const char* state, const char* code, std::int32_t length,
                                std::int32_t* count, std::int32_t* index) {
  if (length > kMaxCode) return nullptr;
  if (phoneticIndex(state, code, length, index) == -1) return nullptr;
  CityPhoneticRow* record = phoneticInMemory(*index);
  if (record != nullptr) storeCount(*record, count);
  return record;
}

CityPhoneticRow* dbFindCityPhOff(const char* state, const char* code, std::int32_t length,
                                 std::int32_t* count, std::int32_t* index) {
  static CityPhoneticRow cityPhBuff{};
  // Unlike the In variant, a code that is too long is a miss with index -1.
  if (phoneticIndex(state, code, length, index) == -1) return nullptr;
  const RefControlRec* ref = refRecord();
  if (ref == nullptr) return nullptr;
  if (!readRow(ref->get(RefControlRec::cityPhoneticsRba), static_cast<std::uint32_t>(*index),
               &cityPhBuff)) {
    *index = -1;
    return nullptr;
  }
  storeCount(cityPhBuff, count);
  return &cityPhBuff;
}

CityPhoneticRow* dbGetCityPh(std::int32_t index) {
  return index < 1 ? nullptr : phoneticInMemory(index);
}

CityPhoneticRow* dbGetCityPhOff(std::int32_t index) {
  static CityPhoneticRow cityPhBuff{};
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || index < 1 ||
      static_cast<std::uint32_t>(index) > ref->get(RefControlRec::cityPhoneticsCount))
    return nullptr;
  const bool read = readRow(ref->get(RefControlRec::cityPhoneticsRba),
                            static_cast<std::uint32_t>(index), &cityPhBuff);
  return read ? &cityPhBuff : nullptr;
}

CityPhoneticRow* dbFindCityPhFirst(const char* state, const char* code, std::int32_t length,
                                   std::int32_t* count, std::int32_t* index) {
  if (pProcObj == nullptr) return nullptr;
  dbFindCityPh = dbFindCityPhIn;
  pProcObj->pfnFindCityPhIdx = findCityPhIdx;
  if (phoneticsFail(pProcObj)) phoneticsOff(*pProcObj);
  if (hashFails(pProcObj)) pProcObj->pfnFindCityPhIdx = findCityPhIdxOff;
  return dbFindCityPh(state, code, length, count, index);
}

std::int32_t findCityPhIdxFirst(const char* key, std::int32_t length, ProcObj* proc) {
  if (proc == nullptr) return -1;
  proc->pfnFindCityPhIdx = findCityPhIdx;
  if (phoneticsFail(proc)) phoneticsOff(*proc);
  if (hashFails(proc)) proc->pfnFindCityPhIdx = findCityPhIdxOff;
  return proc->pfnFindCityPhIdx(key, length, proc);
}

CityPhoneticRow* dbGetCityPhFirst(std::int32_t index) {
  if (pProcObj == nullptr) return nullptr;
  pProcObj->pfnGetCityPh = dbGetCityPh;
  if (phoneticsFail(pProcObj)) phoneticsOff(*pProcObj);
  return pProcObj->pfnGetCityPh(index);
}

}  // namespace statecut
