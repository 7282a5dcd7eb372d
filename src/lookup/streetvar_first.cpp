// First-call variants of the street variations, and where their sets are.

#include "lookup/dispatch.h"
#include "lookup/refaccess.h"
#include "lookup/street.h"
#include "tables/tolvfree.h"

namespace statecut {

namespace {

bool phoneticsLoaded() { return loaded(kSlotStreetPhoneticAmb) && loaded(kSlotStreetPhonetics); }
bool standardsLoaded() { return loaded(kSlotStreetStandardAmb) && loaded(kSlotStreetStandards); }

// What the first call could not load.
struct Failures {
  bool sets;
  bool hash;
};

Failures loadVariations(ProcObj* proc) {
  Failures failures{false, false};
  if (!phoneticsLoaded() && readFails(dbReadStreetPhonetics, proc)) failures.sets = true;
  if (phoneticsLoaded() && !standardsLoaded() && readFails(dbReadStreetStndrdzd, proc)) {
    failures.sets = true;
    free11(proc);
  }
  failures.hash =
      phoneticsLoaded() && standardsLoaded() && loadFails(kSlotHashTable, dbReadHashedNames, proc);
  return failures;
}

constexpr SlotNumber kSlotStreetPhoneticThird = SlotNumber{23};
constexpr SlotNumber kSlotStreetStandardThird = SlotNumber{26};

void fillInMemory(StreetVariation* set, SlotNumber third, SlotNumber index, SlotNumber list,
                  std::uint32_t indexBytes, std::uint32_t listBytes) {
  set->third = refPointers[third].table;
  set->index = refPointers[index].table;
  set->list = refPointers[list].table;
  set->indexBytes = set->index == nullptr ? 0 : indexBytes;
  set->listBytes = set->list == nullptr ? 0 : listBytes;
}

void fillOnDisk(StreetVariation* set, const unsigned char* indexRba, const unsigned char* listRba) {
  set->index = indexRba;
  set->list = listRba;
  set->indexBytes = 0;
  set->listBytes = 0;
}

}  // namespace

std::int32_t dbFindStreetVarIdxFirst(std::uint32_t type, const char* key, std::int32_t length,
                                     ProcObj* proc) {
  if (proc == nullptr) return -1;
  const Failures failures = loadVariations(proc);
  proc->pfnFindStreetVarIdx =
      failures.sets || failures.hash ? dbFindStreetVarIdxOff : dbFindStreetVarIdx;
  return proc->pfnFindStreetVarIdx(type, key, length, proc);
}

const std::uint32_t* dbFindStreetVarFirst(const char* key, std::int32_t length,
                                          const std::uint16_t* scfKeys, std::int32_t scfCount,
                                          std::int32_t kind, std::int8_t* flag,
                                          std::int32_t* count) {
  if (pProcObj == nullptr) return nullptr;
  pProcObj->pfnFindStreetVar = dbFindStreetVar;
  const Failures failures = loadVariations(pProcObj);
  pProcObj->pfnFindStreetVarIdx =
      failures.sets || failures.hash ? dbFindStreetVarIdxOff : dbFindStreetVarIdx;
  if (failures.sets) findStreetVartn = findStreetVartnOff;
  if (findStreetVartn == nullptr) findStreetVartn = findStreetVartnIn;
  fillStreetVariations(pProcObj, findStreetVartn == findStreetVartnOff);
  return pProcObj->pfnFindStreetVar(key, length, scfKeys, scfCount, kind, flag, count);
}

void fillStreetVariations(const ProcObj* proc, bool onDisk) {
  const RefControlRec* ref = proc == nullptr ? nullptr : proc->refControlRec;
  if (ref == nullptr) return;
  streetPhnVariation.count = ref->get(RefControlRec::streetPhoneticsCount);
  streetStdVariation.count = ref->get(RefControlRec::streetStandardsCount);
  if (onDisk) {
    const unsigned char* record = ref->bytes.data();
    fillOnDisk(&streetPhnVariation, record + RefControlRec::streetPhoneticsRba.at,
               record + RefControlRec::streetPhoneticAmbDataRba.at);
    fillOnDisk(&streetStdVariation, record + RefControlRec::streetStandardsRba.at,
               record + RefControlRec::streetStandardAmbDataRba.at);
  } else {
    fillInMemory(&streetPhnVariation, kSlotStreetPhoneticThird, kSlotStreetPhonetics,
                 kSlotStreetPhoneticAmb, ref->get(RefControlRec::streetPhoneticsBytes),
                 ref->get(RefControlRec::streetPhoneticAmbDataBytes));
    fillInMemory(&streetStdVariation, kSlotStreetStandardThird, kSlotStreetStandards,
                 kSlotStreetStandardAmb, ref->get(RefControlRec::streetStandardsBytes),
                 ref->get(RefControlRec::streetStandardAmbDataBytes));
  }
}

}  // namespace statecut
