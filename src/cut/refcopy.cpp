#include "cut/refcopy.h"

#include <algorithm>

#include "base/memory.h"
#include "base/procobj.h"
#include "cut/blockcopy.h"
#include "cut/logsites.h"
#include "cut/openfiles.h"
#include "cut/refwrite.h"
#include "cut/workstate.h"
#include "dbfiles/apiutil.h"
#include "hash/namehash.h"
#include "tables/dbapi.h"
#include "tables/directory.h"

namespace statecut {

namespace {

using Loader = std::int32_t();

// One of these three does the work of a step.
struct Step {
  TableId table = TableId::kCount;  // copied; of a reader: without it there is nothing to read
  Loader* loader = nullptr;         // the cut goes on without a table that it failed to load
  TableReader* reader = nullptr;    // the cut ends when it fails
};

constexpr Step copy(TableId table) { return {.table = table}; }
constexpr Step load(Loader* loader) { return {.loader = loader}; }
constexpr Step need(TableReader* reader) { return {.reader = reader}; }
constexpr Step needIfPresent(TableId table, TableReader* reader) {
  return {.table = table, .reader = reader};
}

constexpr Step kSteps[] = {
    copy(TableId::kStreetPatterns),
    copy(TableId::kPobPatterns),
    copy(TableId::kRrPatterns),
    copy(TableId::kStreetNames),
    copy(TableId::kFirms),
    load(readCityData4SC1),
    copy(TableId::kCityMultiZipLists),
    copy(TableId::kCityMultiFinanceLists),
    load(readCityData4SC2),
    need(dbReadCityNames),
    need(dbReadCityByState),
    need(dbReadCityPhonetics),
    load(readZipData4SC1),
    copy(TableId::kZipMultiCityLists),
    load(readZipData4SC2),
    copy(TableId::kUniqueZips),
    copy(TableId::kCounties),
    copy(TableId::kUrbs),
    copy(TableId::kUrbMultiZipLists),
    copy(TableId::kUrbVariations),
    copy(TableId::kStreetPhoneticAmb),
    copy(TableId::kStreetPhonetics),
    copy(TableId::kStreetPhoneticsRbos),
    copy(TableId::kStreetStandardAmb),
    copy(TableId::kStreetStandards),
    copy(TableId::kStreetStandardsRbos),
    copy(TableId::kGeneralDelivery),
    copy(TableId::kMultiZipLists),
    // A database that is itself a cut ends here: it has no tables to select by.
    need(dbReadBytesTables),
    need(dbReadHashedNames),
    needIfPresent(TableId::kMilitary, dbReadMilitaryTable),
    needIfPresent(TableId::kPobZones, dbReadPOBZone),
};

constexpr bool isCopy(const Step& step) { return step.loader == nullptr && step.reader == nullptr; }

constexpr bool isCopied(const TableLine& table) {
  return (table.fate == Fate::kKept || table.fate == Fate::kCopied) &&
         table.records.by != Counted::kItself;
}

// The copies are those of the directory, in its order.
static_assert([] {
  auto step = std::begin(kSteps);
  for (const TableLine& table : kDirectory) {
    if (!isCopied(table)) continue;
    step = std::find_if(step, std::end(kSteps), isCopy);
    if (step == std::end(kSteps) || step->table != table.id) return false;
    ++step;
  }
  return std::find_if(step, std::end(kSteps), isCopy) == std::end(kSteps);
}());

void copyTable(const TableLine& table, RefControlRec& record) {
  const std::uint32_t rba = wordAt(record, table.rbaAt);
  if (table.fate != Fate::kKept) setWordAt(record, table.rbaAt, totalBytes);
  copyPartition(rba, carriedBytes(record, table.id));
}

// False when the reader failed or the source could not be read before it.
bool loaded(TableReader* reader, const RefControlRec& record) {
  Stream* from = pProcObj->files->reference;
  return !inError(from) && reader(from, &record, pProcObj) == 0;
}

bool take(const Step& step, RefControlRec& record) {
  if (isCopy(step)) {
    copyTable(tableLine(step.table), record);
    return true;
  }
  if (step.loader != nullptr) {
    step.loader();
    return true;
  }
  const bool absent =
      step.table != TableId::kCount && wordAt(record, tableLine(step.table).rbaAt) == 0;
  return absent || loaded(step.reader, record);
}

struct LoadedTable {
  TableId table;
  LogSite site;
  const char* name;
  const char* errorName;
  std::int32_t failure;
};

constexpr LoadedTable kCityData = {TableId::kCityData, logsite::kCityData, "City Data Table",
                                   "City Data", -2};
constexpr LoadedTable kCityMultiZipRbas = {TableId::kCityMultiZipRbas, logsite::kCityMultiZipRbas,
                                           "City Multiple Zip RBAs", "City Multiple Zip RBAs", -2};
// Deliberate: the code of the ZIP tables, as in the library's reader of the city data.
constexpr LoadedTable kFinMultiZipRbas = {TableId::kFinMultiZipRbas, logsite::kFinMultiZipRbas,
                                          "Zip Finance Multi Zip Data",
                                          "Zip Finance Multi Zip Data", -5};
constexpr LoadedTable kZipData = {TableId::kZipData, logsite::kZipCodeData, "Zip Code Data",
                                  "Zip Code Data", -5};
constexpr LoadedTable kZipIndex = {TableId::kZipIndex, logsite::kZipCodeIndex, "Zip Code Index",
                                   "Zip Code Index", -5};

bool outOfMemory = false;

constexpr bool isLoaded(const TableLine& table) {
  return table.fate == Fate::kEdited || table.fate == Fate::kRebuilt ||
         (table.fate == Fate::kDropped && table.id != TableId::kScfs);
}

// The block for the tables, as far as the source can fill them: what a damaged record counts beyond
// that takes its memory by itself.
void makeArena(const RefControlRec& record) {
  const std::uint64_t most = streamSize(pProcObj->files->reference);
  std::uint64_t bytes = 0;
  std::size_t tables = 0;
  for (const TableLine& table : kDirectory) {
    const std::int64_t size = isLoaded(table) ? tableBytes(record, table.id) : 0;
    if (size <= 0 || static_cast<std::uint64_t>(size) > most) continue;
    bytes += static_cast<std::uint64_t>(size);
    ++tables;
  }
  loadedTables.make(std::min(bytes, most), tables);
}

// What the first pass writes.
void reserveCopies(const RefControlRec& record) {
  std::uint64_t bytes = RefControlRec::size;
  for (const TableLine& table : kDirectory)
    if (isCopied(table)) bytes += carriedBytes(record, table.id);
  reserveOutput(newRefDb, std::min(bytes, streamSize(pProcObj->files->reference)));
}

std::int32_t loadTable(const LoadedTable& table) {
  const RefControlRec* record = refRecord();
  if (record == nullptr) return table.failure;
  const auto bytes = static_cast<std::uint64_t>(tableBytes(*record, table.table));
  logRequired(table.site, "Info Message", table.name, bytes);
  auto* block = static_cast<unsigned char*>(allocTable(bytes));
  refPointers[tableLine(table.table).slot].table = block;
  if (block == nullptr) {
    // A table above the bound is left out of every cut, one without memory of this one alone.
    if (bytes <= kTableMaxBytes) outOfMemory = true;
    memoryError(table.errorName, pProcObj);
    return table.failure;
  }
  Stream* from = pProcObj->files->reference;
  if (inError(from)) return table.failure;
  const std::uint32_t rba = wordAt(*record, tableLine(table.table).rbaAt);
  if (dbReadFile(from, rba, static_cast<std::int32_t>(bytes), block, pProcObj) < 0 ||
      inError(from)) {
    readRefError(table.errorName, pProcObj);
    return table.failure;
  }
  return 0;
}

}  // namespace

std::int32_t copyRefDb() {
  totalBytes = 0;
  outOfMemory = false;
  refPointers.fill(RefSlot{});
  RefControlRec* record = refRecord();
  if (record == nullptr) return -1;
  keepHashMask(record->get(RefControlRec::hashTableCount));
  markStateCut(*record);
  makeArena(*record);
  const TableArena::Use use(loadedTables);
  reserveCopies(*record);
  writePartition(record->bytes.data(), RefControlRec::size);  // holds the final record's place
  for (const Step& step : kSteps) {
    if (!take(step, *record)) return -1;
  }
  return 0;
}

bool refCopyOutOfMemory() { return outOfMemory; }

std::int32_t readCityData4SC1() { return loadTable(kCityData); }

std::int32_t readCityData4SC2() {
  const std::int32_t status = loadTable(kCityMultiZipRbas);
  return status != 0 ? status : loadTable(kFinMultiZipRbas);
}

std::int32_t readZipData4SC1() { return loadTable(kZipData); }

std::int32_t readZipData4SC2() { return loadTable(kZipIndex); }

}  // namespace statecut
