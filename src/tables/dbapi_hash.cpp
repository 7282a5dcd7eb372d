// The name hash table and the two tables that carry their own counts in the file.
#include "base/memory.h"
#include "dbfiles/apiutil.h"
#include "log/utllgmsg.h"
#include "tables/rows.h"
#include "tables/tableload.h"

namespace statecut {

namespace {

constexpr LogSource kDbapi{"dbapi", 2000};

using Ref = RefControlRec;

constexpr TableInfo kHashedNames[] = {
    {kSlotHashTable, "Hash Table", Ref::hashTableRba.at,
     counted(Ref::hashTableCount, HashSlotRow::size), -18, Reports::kWarnings},
    {kSlotHashOverflow, "Hash Overflow", Ref::hashOverflowRba.at,
     counted(Ref::hashOverflowCount, HashOverflowRow::size), -18, Reports::kWarnings, nullptr,
     nullptr, kSlotHashTable}};

constexpr std::int32_t kMilitaryFailed = -19;
constexpr std::int32_t kMilitaryHeaderBytes = 4;
constexpr std::uint32_t kMilitaryFirstBytes = 38;
constexpr std::uint32_t kMilitarySecondBytes = 42;

constexpr std::int32_t kPobZonesFailed = -20;
constexpr std::int32_t kPobZoneHeaderBytes = 2;
constexpr std::uint32_t kPobZoneBytes = 2;

std::int32_t failed(const char* what, std::int32_t code, ProcObj* proc) {
  readRefError(what, proc);
  return code;
}

}  // namespace

std::int32_t dbReadHashedNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  dropHashMask();
  const std::int32_t code =
      loadTables("dbReadHashedNames", kHashedNames, file, controlRecord, proc);
  if (code == 0) keepHashMask(controlRecord->get(Ref::hashTableCount));
  return code;
}

std::int32_t dbReadMilitaryTable(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  if (proc == nullptr) return kMilitaryFailed;
  traceEntering(proc, kDbapi, __LINE__, "dbReadMilitaryTable");
  constexpr char kHeader[] = "Military Alias Table - Header";
  if (controlRecord == nullptr) return failed(kHeader, kMilitaryFailed, proc);
  const std::uint32_t rba = controlRecord->get(Ref::militaryRba);
  unsigned char* const header = refPointers[kSlotMilitaryHeader].bytes;
  if (dbReadFile(file, rba, kMilitaryHeaderBytes, header, proc) < 0 || streamError(file))
    return failed(kHeader, kMilitaryFailed, proc);

  const std::uint32_t firstBytes = le::get<2>(header) * kMilitaryFirstBytes;
  const std::uint32_t bytes = firstBytes + le::get<2>(header + 2) * kMilitarySecondBytes;
  auto* const block = static_cast<unsigned char*>(allocTable(bytes == 0 ? 1 : bytes));
  // A failed allocation is reported as a failed read; that is meant.
  if (block == nullptr) return failed("Military Alias Table - malloc", kMilitaryFailed, proc);
  logTableSize("Military Alias Table", bytes, proc);
  const auto count = static_cast<std::int32_t>(bytes);
  if (dbReadFile(file, rba + kMilitaryHeaderBytes, count, block, proc) < 0 || streamError(file)) {
    freeTable(block);
    return failed("Military Alias Table - read", kMilitaryFailed, proc);
  }
  refPointers[kSlotMilitary].table = block;
  refPointers[kSlotMilitarySecond].table = block + firstBytes;
  traceLeaving(proc, kDbapi, __LINE__, "dbReadMilitaryTable");
  return 0;
}

std::int32_t dbReadPOBZone(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  if (proc == nullptr) return kPobZonesFailed;
  traceEntering(proc, kDbapi, __LINE__, "dbReadPOBZone");
  constexpr char kCount[] = "PO BOX Zone records - read count";
  if (controlRecord == nullptr) return failed(kCount, kPobZonesFailed, proc);
  const std::uint32_t rba = controlRecord->get(Ref::pobZonesRba);
  unsigned char* const header = refPointers[kSlotPobZoneCount].bytes;
  if (dbReadFile(file, rba, kPobZoneHeaderBytes, header, proc) < 0 || streamError(file))
    return failed(kCount, kPobZonesFailed, proc);

  const std::uint32_t bytes = le::get<2>(header) * kPobZoneBytes;
  void* const block = allocTable(bytes);
  refPointers[kSlotPobZones].table = static_cast<unsigned char*>(block);
  if (block == nullptr) return failed("PO BOX Zone records - malloc()", kPobZonesFailed, proc);
  // No size line for this table; that is meant.
  const auto count = static_cast<std::int32_t>(bytes);
  if (dbReadFile(file, rba + kPobZoneHeaderBytes, count, block, proc) < 0 || streamError(file))
    return failed("PO BOX Zone records - read records", kPobZonesFailed, proc);
  traceLeaving(proc, kDbapi, __LINE__, "dbReadPOBZone");
  return 0;
}

}  // namespace statecut
