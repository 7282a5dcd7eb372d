// Street and firm names with their phonetic and standardized forms, and the hash index of names.
#include "tables/tableload.h"

namespace statecut {

namespace {

constexpr TableLoad kStreetNames[] = {{.table = TableId::kStreetNames,
                                       .logName = "Street Names",
                                       .code = -10,
                                       .reports = Reports::kWarnings,
                                       .lengthOfContext = true}};

// Deliberate: a failed allocation of the second table of a pair releases the first.
constexpr TableLoad kStreetPhonetics[] = {{.table = TableId::kStreetPhoneticAmb,
                                           .logName = "Ambiguous Data for Street Phonetics",
                                           .code = -11,
                                           .reports = Reports::kWarnings},
                                          {.table = TableId::kStreetPhonetics,
                                           .logName = "Phonetic Street Names",
                                           .code = -11,
                                           .reports = Reports::kWarnings,
                                           .freedWithIt = kSlotStreetPhoneticAmb,
                                           .lengthOfContext = true}};

// Deliberate: the size lines and the reports spell these tables in five ways.
constexpr TableLoad kStreetStandards[] = {{.table = TableId::kStreetStandardAmb,
                                           .logName = "Ambiguous Data for Standardized Streets",
                                           .code = -12,
                                           .errorName = "Ambiguous Data for Standrdzed Streets"},
                                          {.table = TableId::kStreetStandards,
                                           .logName = "Standard Street Names",
                                           .code = -12,
                                           .errorName = "Standardzed Street Names",
                                           .allocName = "Standrdzed Street Names",
                                           .freedWithIt = kSlotStreetStandardAmb,
                                           .lengthOfContext = true}};

constexpr TableLoad kFirms[] = {{.table = TableId::kFirms,
                                 .logName = "Firm Names",
                                 .code = -13,
                                 .reports = Reports::kWarnings,
                                 .lengthOfContext = true}};

constexpr TableLoad kHashedNames[] = {{.table = TableId::kHashTable,
                                       .logName = "Hash Table",
                                       .code = -18,
                                       .reports = Reports::kWarnings},
                                      {.table = TableId::kHashOverflow,
                                       .logName = "Hash Overflow",
                                       .code = -18,
                                       .reports = Reports::kWarnings,
                                       .freedWithIt = kSlotHashTable}};

}  // namespace

std::int32_t dbReadStreetNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadStreetNames", kStreetNames, file, controlRecord, proc);
}

std::int32_t dbReadStreetPhonetics(Stream* file, const RefControlRec* controlRecord,
                                   ProcObj* proc) {
  return loadTables("dbReadStreetPhonetics", kStreetPhonetics, file, controlRecord, proc);
}

std::int32_t dbReadStreetStndrdzd(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadStreetStndrdzd", kStreetStandards, file, controlRecord, proc);
}

std::int32_t dbReadFirmNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadFirmNames", kFirms, file, controlRecord, proc);
}

std::int32_t dbReadHashedNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  dropHashMask();
  const std::int32_t code =
      loadTables("dbReadHashedNames", kHashedNames, file, controlRecord, proc);
  if (code == 0) {
    keepHashMask(controlRecord->get(RefControlRec::hashTableCount));
    loadedHashTable = refPointers[kSlotHashTable].table;
  }
  return code;
}

}  // namespace statecut
