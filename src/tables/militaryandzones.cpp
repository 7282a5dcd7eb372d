// The military aliases and the PO Box zones, whose counts stand in front of their records.
#include "base/memory.h"
#include "dbfiles/apiutil.h"
#include "log/utllgmsg.h"
#include "tables/tableload.h"

namespace statecut {

namespace {

constexpr LogSource kDbapi{"dbapi", 2000};

constexpr std::int32_t kMilitaryFailed = -19;
constexpr std::int32_t kPobZonesFailed = -20;

std::int32_t failed(const char* what, std::int32_t code, ProcObj* proc) {
  readRefError(what, proc);
  return code;
}

bool readPiece(Stream* file, std::uint32_t rba, std::uint32_t bytes, void* to, ProcObj* proc) {
  return dbReadFile(file, rba, static_cast<std::int32_t>(bytes), to, proc) >= 0 &&
         !streamError(file);
}

}  // namespace

std::int32_t dbReadMilitaryTable(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  constexpr TableId kTable = TableId::kMilitary;
  constexpr char kHeader[] = "Military Alias Table - Header";
  if (proc == nullptr) return kMilitaryFailed;
  traceEntering(proc, kDbapi, __LINE__, "dbReadMilitaryTable");
  if (controlRecord == nullptr) return failed(kHeader, kMilitaryFailed, proc);
  const std::uint32_t rba = wordAt(*controlRecord, tableLine(kTable).rbaAt);
  unsigned char* const counts = refPointers[kSlotMilitaryHeader].bytes;
  if (!readPiece(file, rba, countsBytes(kTable), counts, proc))
    return failed(kHeader, kMilitaryFailed, proc);

  const std::uint32_t bytes = partsBytes(counts, kTable);
  auto* const block = static_cast<unsigned char*>(allocTable(bytes == 0 ? 1 : bytes));
  // Deliberate: a failed allocation is reported as a failed read.
  if (block == nullptr) return failed("Military Alias Table - malloc", kMilitaryFailed, proc);
  logTableSize("Military Alias Table", bytes, proc);
  if (!readPiece(file, rba + countsBytes(kTable), bytes, block, proc)) {
    freeTable(block);
    return failed("Military Alias Table - read", kMilitaryFailed, proc);
  }
  refPointers[kSlotMilitary].table = block;
  refPointers[kSlotMilitarySecond].table = block + firstPartBytes(counts, kTable);
  traceLeaving(proc, kDbapi, __LINE__, "dbReadMilitaryTable");
  return 0;
}

std::int32_t dbReadPOBZone(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  constexpr TableId kTable = TableId::kPobZones;
  constexpr char kCount[] = "PO BOX Zone records - read count";
  if (proc == nullptr) return kPobZonesFailed;
  traceEntering(proc, kDbapi, __LINE__, "dbReadPOBZone");
  if (controlRecord == nullptr) return failed(kCount, kPobZonesFailed, proc);
  const std::uint32_t rba = wordAt(*controlRecord, tableLine(kTable).rbaAt);
  unsigned char* const counts = refPointers[kSlotPobZoneCount].bytes;
  if (!readPiece(file, rba, countsBytes(kTable), counts, proc))
    return failed(kCount, kPobZonesFailed, proc);

  const std::uint32_t bytes = partsBytes(counts, kTable);
  void* const block = allocTable(bytes);
  refPointers[kSlotPobZones].table = static_cast<unsigned char*>(block);
  if (block == nullptr) return failed("PO BOX Zone records - malloc()", kPobZonesFailed, proc);
  // Deliberate: no size line for this table.
  if (!readPiece(file, rba + countsBytes(kTable), bytes, block, proc))
    return failed("PO BOX Zone records - read records", kPobZonesFailed, proc);
  traceLeaving(proc, kDbapi, __LINE__, "dbReadPOBZone");
  return 0;
}

}  // namespace statecut
