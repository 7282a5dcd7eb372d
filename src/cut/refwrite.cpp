#include "cut/refwrite.h"

#include "cut/openfiles.h"
#include "cut/workstate.h"
#include "dbfiles/dbaccess.h"
#include "tables/directory.h"

namespace statecut {

namespace {

// Deliberate: two bytes short of the record; the last two stay as the first write left them.
constexpr std::uint32_t kFinalRecordBytes = RefControlRec::size - 2;

// A rebuilt table stands in the cut's work tables, any other in its slot.
const void* contentOf(const TableLine& table) {
  switch (table.id) {
    case TableId::kCityNames:
      return scCityNames;
    case TableId::kCityNamesByState:
      return scCityNamesByState;
    case TableId::kCityPhonetics:
      return scCityPhonetics;
    case TableId::kZipIndex:
      return scZipCodeIndex;
    default:
      return refPointers[table.slot].table;
  }
}

void reserveTables(const RefControlRec& record) {
  std::uint64_t bytes = 0;
  for (const TableLine& table : kDirectory)
    if (table.fate == Fate::kEdited || table.fate == Fate::kRebuilt)
      bytes += carriedBytes(record, table.id);
  reserveOutput(newRefDb, bytes);
}

void writeEditedAndRebuilt(RefControlRec& record) {
  for (const TableLine& table : kDirectory) {
    if (table.fate != Fate::kEdited && table.fate != Fate::kRebuilt) continue;
    setWordAt(record, table.rbaAt, totalBytes);
    writePartition(contentOf(table), carriedBytes(record, table.id));
  }
}

void clearDropped(RefControlRec& record) {
  for (const TableLine& table : kDirectory) {
    if (table.fate != Fate::kDropped) continue;
    setWordAt(record, table.rbaAt, 0);
    if (!sharesCount(table)) setWordAt(record, table.records.at, 0);
  }
}

void writeCountedByItself(const TableLine& table, SlotNumber counts, RefControlRec& record) {
  if (wordAt(record, table.rbaAt) == 0) return;
  const unsigned char* header = refPointers[counts].bytes;
  setWordAt(record, table.rbaAt, totalBytes);
  writePartition(header, countsBytes(table.id));
  writePartition(refPointers[table.slot].table, partsBytes(header, table.id));
}

}  // namespace

std::int32_t writeRefDb() {
  RefControlRec* record = refRecord();
  if (record == nullptr) return 0;
  markStateCut(*record);
  reserveTables(*record);
  writeEditedAndRebuilt(*record);
  writeCountedByItself(tableLine(TableId::kMilitary), kSlotMilitaryHeader, *record);
  writeCountedByItself(tableLine(TableId::kPobZones), kSlotPobZoneCount, *record);
  clearDropped(*record);
  if (rewindReferenceOutput()) writePartition(record->bytes.data(), kFinalRecordBytes);
  return 0;
}

std::int32_t writeRngControlRec(Stream* stream) {
  RngControlRec* record = pProcObj == nullptr ? nullptr : pProcObj->rngControlRec;
  if (record == nullptr) return 1;
  markStateCut(*record);
  const std::int32_t written =
      writeFile(stream, RngControlRec::size, record->bytes.data(), pProcObj);
  if (written == -1) return 1;
  totalRngBytes = static_cast<std::uint32_t>(written);
  return 0;
}

std::int32_t writePartition(const void* buffer, std::uint32_t bytes) {
  const std::int32_t written = writeFile(newRefDb, bytes, buffer, pProcObj);
  if (written == -1) return 1;
  totalBytes += static_cast<std::uint32_t>(written);
  return 0;
}

}  // namespace statecut
