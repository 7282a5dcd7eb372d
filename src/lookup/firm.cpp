// Firm names and general delivery entries. None of these functions writes trace lines.

#include "lookup/firm.h"

#include "hash/namehash.h"
#include "lookup/cache.h"
#include "lookup/dispatch.h"
#include "lookup/inmemory.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr std::int32_t kMaxKey = memory::kLongestFirm;

bool firmNamesFail(ProcObj* proc) { return loadFails(kSlotFirms, dbReadFirmNames, proc); }

void firmNamesOff(ProcObj& proc) {
  proc.pfnFindFirm = dbFindFirmOff;
  proc.pfnGetFirmName = dbGetFirmNameCacheOff;
}

// The low 16 bits of a general delivery key; 0 when they name no entry.
std::uint32_t generalDeliveryIndex(const RefControlRec* ref, std::uint32_t key) {
  const std::uint32_t index = key & 0xFFFF;
  const bool there = ref != nullptr && index <= ref->get(RefControlRec::generalDeliveryCount);
  return there ? index : 0;
}

}  // namespace

std::int32_t dbFindFirm(const char* key, std::int32_t length, ProcObj* proc) {
  return length > kMaxKey ? -1 : hashIn(key, length, kFirmNames, proc);
}

std::int32_t dbFindFirmOff(const char* key, std::int32_t length, ProcObj* proc) {
  return length > kMaxKey ? -1 : hashOff(key, length, kFirmNames, proc);
}

std::int32_t dbFindFirmFirst(const char* key, std::int32_t length, ProcObj* proc) {
  if (proc == nullptr) return -1;
  proc->pfnFindFirm = dbFindFirm;
  if (firmNamesFail(proc)) firmNamesOff(*proc);
  if (loaded(kSlotFirms) && loadFails(kSlotHashTable, dbReadHashedNames, proc))
    proc->pfnFindFirm = dbFindFirmOff;
  return proc->pfnFindFirm(key, length, proc);
}

const char* dbGetFirmName(std::uint32_t offset, std::int32_t* length, ProcObj* proc) {
  const RefControlRec* ref = proc == nullptr ? nullptr : proc->refControlRec;
  if (ref == nullptr) return nullptr;
  return packedNameIn(processTables(ref), kSlotFirms, offset, ref->get(RefControlRec::firmsBytes),
                      length);
}

const char* dbGetFirmNameCacheOff(std::uint32_t offset, std::int32_t* length, ProcObj* proc) {
  const RefControlRec* ref = proc == nullptr ? nullptr : proc->refControlRec;
  if (ref == nullptr) return nullptr;
  return packedNameOff(ref->get(RefControlRec::firmsRba), offset, length, proc);
}

const char* dbGetFirmNameFirst(std::uint32_t offset, std::int32_t* length, ProcObj* proc) {
  if (proc == nullptr) return nullptr;
  proc->pfnGetFirmName = dbGetFirmName;
  if (firmNamesFail(proc)) firmNamesOff(*proc);
  return proc->pfnGetFirmName(offset, length, proc);
}

GeneralDeliveryRow* dbGetGenrlDelvryIn(std::uint32_t key) {
  return memory::generalDelivery(processTables(), key & 0xFFFF);
}

GeneralDeliveryRow* dbGetGenrlDelvryOff(std::uint32_t key) {
  static GeneralDeliveryRow genDelBuff{};
  const RefControlRec* ref = refRecord();
  const std::uint32_t index = generalDeliveryIndex(ref, key);
  if (index == 0) return nullptr;
  const bool read = readRow(ref->get(RefControlRec::generalDeliveryRba), index, &genDelBuff);
  return read ? &genDelBuff : nullptr;
}

}  // namespace statecut
