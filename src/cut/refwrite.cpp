#include "cut/refwrite.h"

#include "cut/guards.h"
#include "cut/workstate.h"
#include "dbfiles/dbaccess.h"
#include "tables/refpointers.h"

namespace statecut {

namespace {

using Directory = RefControlRec;

// Two bytes short of the record: the last two stay as the first write left them. This is meant.
constexpr std::uint32_t kFinalRecordBytes = 842;

template <std::size_t At>
void writeTable(const void* table, std::uint32_t bytes, Num<At, 4> rbaField) {
  setRefWord(rbaField, totalBytes);
  writePartition(table, bytes);
}

template <std::size_t At>
void writeSlot(SlotNumber slot, std::uint32_t bytes, Num<At, 4> rbaField) {
  writeTable(refPointers[slot].table, bytes, rbaField);
}

void writeCityAndZipTables() {
  const std::uint32_t names = refWord(Directory::cityNamesCount);
  writeSlot(kSlotCityData, 36 * refWord(Directory::cityDataCount), Directory::cityDataRba);
  writeSlot(kSlotCityMultiZipRbas, 28 * refWord(Directory::cityMultiZipRbasCount),
            Directory::cityMultiZipRbasRba);
  writeSlot(kSlotFinMultiZip, 8 * refWord(Directory::finMultiZipRbasCount),
            Directory::finMultiZipRbasRba);
  writeTable(scCityNames, 34 * names, Directory::cityNamesRba);
  writeTable(scCityNamesByState, 34 * names - 34, Directory::cityNamesByStateRba);
  writeTable(scCityPhonetics, 26 * refWord(Directory::cityPhoneticsCount),
             Directory::cityPhoneticsRba);
  writeSlot(kSlotZipData, 52 * refWord(Directory::zipDataCount), Directory::zipDataRba);
  writeTable(scZipCodeIndex, kZipIndexBytes, Directory::zipIndexRba);
}

// The tables that a cut database does not have.
void clearDroppedTables() {
  setRefWord(Directory::scfsCount, 0);
  setRefWord(Directory::scfsRba, 0);
  setRefWord(Directory::zipBytesRba, 0);
  setRefWord(Directory::sfhMultiZipBytesRba, 0);
  setRefWord(Directory::pobMultiZipBytesRba, 0);
  setRefWord(Directory::rrMultiZipBytesRba, 0);
  setRefWord(Directory::sfhMultiZipBytesCount, 0);
  setRefWord(Directory::pobMultiZipBytesCount, 0);
  setRefWord(Directory::rrMultiZipBytesCount, 0);
}

void writeMilitary() {
  if (refWord(Directory::militaryRba) == 0) return;
  const unsigned char* header = refPointers[kSlotMilitaryHeader].bytes;
  const std::uint32_t rba = totalBytes;
  writePartition(header, 4);
  writePartition(refPointers[kSlotMilitary].table,
                 42u * le::get<2>(header + 2) + 38u * le::get<2>(header));
  setRefWord(Directory::militaryRba, rba);
}

void writePobZones() {
  if (refWord(Directory::pobZonesRba) == 0) return;
  const unsigned char* header = refPointers[kSlotPobZoneCount].bytes;
  const std::uint32_t rba = totalBytes;
  writePartition(header, 2);
  writePartition(refPointers[kSlotPobZones].table, 2u * le::get<2>(header));
  setRefWord(Directory::pobZonesRba, rba);
}

}  // namespace

std::int32_t writeRefDb() {
  RefControlRec* record = refControl();
  if (record == nullptr) return 0;
  markStateCut(*record);
  writeCityAndZipTables();
  clearDroppedTables();
  writeSlot(kSlotHashTable, 7 * refWord(Directory::hashTableCount), Directory::hashTableRba);
  writeSlot(kSlotHashOverflow, 6 * refWord(Directory::hashOverflowCount),
            Directory::hashOverflowRba);
  writeMilitary();
  writePobZones();
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
