#include "cut/refcopy.h"

#include "base/memory.h"
#include "base/procobj.h"
#include "cut/blockcopy.h"
#include "cut/cutlog.h"
#include "cut/guards.h"
#include "cut/refwrite.h"
#include "cut/workstate.h"
#include "dbfiles/apiutil.h"
#include "hash/namehash.h"
#include "tables/dbapi.h"
#include "tables/refpointers.h"

namespace statecut {

namespace {

using Directory = RefControlRec;

struct LoadedTable {
  LogSite site;
  const char* name;
  const char* errorName;
  SlotNumber slot;
  std::int32_t failure;
};

bool outOfMemory = false;

std::int32_t load(const LoadedTable& table, std::uint64_t bytes, std::uint32_t rba) {
  logRequired(table.site, "Info Message", table.name, bytes);
  auto* block = static_cast<unsigned char*>(allocTable(bytes));
  refPointers[table.slot].table = block;
  if (block == nullptr) {
    // A table above the bound is left out of every cut, one without memory of this one alone.
    if (bytes <= kTableMaxBytes) outOfMemory = true;
    memoryError(table.errorName, pProcObj);
    return table.failure;
  }
  Stream* from = pProcObj->files->reference;
  if (inError(from)) return table.failure;
  if (dbReadFile(from, rba, static_cast<std::int32_t>(bytes), block, pProcObj) < 0 ||
      inError(from)) {
    readRefError(table.errorName, pProcObj);
    return table.failure;
  }
  return 0;
}

// Copies a table whose RBA field keeps its value: the first four follow the control record in this
// order, so their copies land where the source has them. This is meant.
template <std::size_t At>
void copyKept(Num<At, 4> rbaField, std::uint32_t bytes) {
  copyPartition(refWord(rbaField), bytes);
}

template <std::size_t At>
void copyMoved(Num<At, 4> rbaField, std::uint32_t bytes) {
  const std::uint32_t rba = refWord(rbaField);
  setRefWord(rbaField, totalBytes);
  copyPartition(rba, bytes);
}

// False when the loader failed or the source could not be read before it.
bool loaded(TableReader* reader) {
  Stream* from = pProcObj->files->reference;
  return !inError(from) && reader(from, refControl(), pProcObj) == 0;
}

bool copyCityTables() {
  copyMoved(Directory::firmsRba, refWord(Directory::firmsBytes));
  readCityData4SC1();  // the cut goes on without a table that one of these four failed to load
  copyMoved(Directory::cityMultiZipListsRba, 6 * refWord(Directory::cityMultiZipListsCount));
  copyMoved(Directory::cityMultiFinanceListsRba,
            2 * refWord(Directory::cityMultiFinanceListsCount));
  readCityData4SC2();
  if (!loaded(dbReadCityNames) || !loaded(dbReadCityByState) || !loaded(dbReadCityPhonetics)) {
    return false;
  }
  readZipData4SC1();
  // The loaders of this table and of the multi-ZIP lists read 4 bytes an entry, the cut carries 2.
  // This is meant.
  copyMoved(Directory::zipMultiCityListsRba, 2 * refWord(Directory::zipMultiCityListsCount));
  readZipData4SC2();
  return !inError(pProcObj->files->reference);
}

void copyNameTables() {
  copyMoved(Directory::uniqueZipsRba, 12 * refWord(Directory::uniqueZipsCount));
  copyMoved(Directory::countiesRba, 32 * refWord(Directory::countiesCount));
  copyMoved(Directory::urbsRba, 32 * refWord(Directory::urbsCount));
  copyMoved(Directory::urbMultiZipListsRba, 2 * refWord(Directory::urbMultiZipListsCount));
  copyMoved(Directory::urbVariationsRba, 32 * refWord(Directory::urbVariationsCount));
  copyMoved(Directory::streetPhoneticAmbDataRba, refWord(Directory::streetPhoneticAmbDataBytes));
  copyMoved(Directory::streetPhoneticsRba, refWord(Directory::streetPhoneticsBytes));
  copyMoved(Directory::streetPhoneticsRbosRba, 4 * refWord(Directory::streetPhoneticsCount));
  copyMoved(Directory::streetStandardAmbDataRba, refWord(Directory::streetStandardAmbDataBytes));
  copyMoved(Directory::streetStandardsRba, refWord(Directory::streetStandardsBytes));
  copyMoved(Directory::streetStandardsRbosRba, 4 * refWord(Directory::streetStandardsCount));
  copyMoved(Directory::generalDeliveryRba, 4 * refWord(Directory::generalDeliveryCount));
  copyMoved(Directory::multiZipListsRba, 2 * refWord(Directory::multiZipListsCount));
}

bool loadIndexTables() {
  // A database that is itself a cut no longer has the tables that a cut selects by.
  if (!loaded(dbReadBytesTables) || !loaded(dbReadHashedNames)) return false;
  if (refWord(Directory::militaryRba) != 0 && !loaded(dbReadMilitaryTable)) return false;
  return refWord(Directory::pobZonesRba) == 0 || loaded(dbReadPOBZone);
}

}  // namespace

std::int32_t copyRefDb() {
  totalBytes = 0;
  outOfMemory = false;
  refPointers.fill(RefSlot{});
  RefControlRec* record = refControl();
  if (record == nullptr) return -1;
  keepHashMask(record->get(Directory::hashTableCount));
  markStateCut(*record);
  writePartition(record->bytes.data(), RefControlRec::size);  // holds the final record's place

  copyKept(Directory::streetPatternsRba, 18 * refWord(Directory::streetPatternsCount));
  copyKept(Directory::pobPatternsRba, 18 * refWord(Directory::pobPatternsCount));
  copyKept(Directory::rrPatternsRba, 18 * refWord(Directory::rrPatternsCount));
  copyKept(Directory::streetNamesRba, refWord(Directory::streetNamesBytes));
  if (!copyCityTables()) return -1;
  copyNameTables();
  if (inError(pProcObj->files->reference)) return -1;
  return loadIndexTables() ? 0 : -1;
}

bool refCopyOutOfMemory() { return outOfMemory; }

std::int32_t readCityData4SC1() {
  return load({logsite::kCityData, "City Data Table", "City Data", kSlotCityData, -2},
              std::uint64_t{36} * refWord(Directory::cityDataCount),
              refWord(Directory::cityDataRba));
}

std::int32_t readCityData4SC2() {
  constexpr char kRbas[] = "City Multiple Zip RBAs";
  constexpr char kFinance[] = "Zip Finance Multi Zip Data";
  const std::int32_t status =
      load({logsite::kCityMultiZipRbas, kRbas, kRbas, kSlotCityMultiZipRbas, -2},
           std::uint64_t{28} * refWord(Directory::cityMultiZipRbasCount),
           refWord(Directory::cityMultiZipRbasRba));
  if (status != 0) return status;
  return load({logsite::kFinMultiZipRbas, kFinance, kFinance, kSlotFinMultiZip, -5},
              std::uint64_t{8} * refWord(Directory::finMultiZipRbasCount),
              refWord(Directory::finMultiZipRbasRba));
}

std::int32_t readZipData4SC1() {
  constexpr char kName[] = "Zip Code Data";
  return load({logsite::kZipCodeData, kName, kName, kSlotZipData, -5},
              std::uint64_t{52} * refWord(Directory::zipDataCount), refWord(Directory::zipDataRba));
}

std::int32_t readZipData4SC2() {
  constexpr char kName[] = "Zip Code Index";
  return load({logsite::kZipCodeIndex, kName, kName, kSlotZipIndex, -5}, kZipIndexBytes,
              refWord(Directory::zipIndexRba));
}

}  // namespace statecut
