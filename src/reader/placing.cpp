#include "reader/placing.h"

#include <algorithm>

#include "tables/directory.h"

namespace statecut {

namespace {

using Ref = RefControlRec;

// What lookups use.
constexpr TableId kTables[] = {
    TableId::kCityData,          TableId::kCityMultiZipLists, TableId::kCityMultiFinanceLists,
    TableId::kCityMultiZipRbas,  TableId::kFinMultiZipRbas,   TableId::kCityNames,
    TableId::kCityPhonetics,     TableId::kZipData,           TableId::kZipMultiCityLists,
    TableId::kZipIndex,          TableId::kCounties,          TableId::kUrbs,
    TableId::kStreetNames,       TableId::kStreetPhoneticAmb, TableId::kStreetPhonetics,
    TableId::kStreetStandardAmb, TableId::kStreetStandards,   TableId::kFirms,
    TableId::kGeneralDelivery,   TableId::kMultiZipLists,     TableId::kZipBytes,
    TableId::kHashTable,         TableId::kHashOverflow};

// The search of the hash reads a few entries at once, also at the end of its tables.
constexpr std::uint64_t kReadBehind = 32;

// A cut has no tables that it does not carry, nor has a file that says RBA 0 of one.
bool isThere(const TableLine& table, const Ref& record) {
  if (table.cutWidth != 0) return true;
  return (record.get(Ref::typeFlags) & kTypeStateCut) == 0 && wordAt(record, table.rbaAt) != 0;
}

// In the width that a cut has: behind its keys a source has as much again that is not a list's.
std::uint64_t bytesOf(const TableLine& table, const Ref& record) {
  const std::int64_t count = tableRecords(record, table.id);
  return static_cast<std::uint64_t>(count) * (table.cutWidth == 0 ? table.width : table.cutWidth);
}

// A copy with zeros behind it, for a table that is read beyond its end where the bytes end.
bool copyWithSlack(Database::Loaded& loaded, Block& copy, SlotNumber slot, std::uint64_t bytes) {
  unsigned char* const table = loaded.slots[slot].table;
  copy = Block::allocated(bytes + kReadBehind);
  if (copy.data() == nullptr) return false;
  std::copy_n(table, bytes, copy.data());
  loaded.slots[slot].table = copy.data();
  return true;
}

bool placeOne(Database::Loaded& loaded, const TableLine& place, Error& error) {
  const Ref& record = *loaded.view.record;
  const std::uint64_t rba = wordAt(record, place.rbaAt);
  const std::uint64_t bytes = bytesOf(place, record);
  if (bytes > 0 && rba < Ref::size)
    return failedTable(error, ErrorCode::kDamaged, loaded.file, place.name, rba,
                       "begins inside the control record");
  if (bytes > 0 && rba + bytes > loaded.bytes.size())
    return failedTable(
        error, ErrorCode::kShortFile, loaded.file, place.name, rba,
        "has " + std::to_string(bytes) + " bytes, the file " + std::to_string(loaded.bytes.size()));
  // Nothing writes to the tables of a Database: they are not constant for the library's own.
  loaded.slots[place.slot].table =
      const_cast<unsigned char*>(loaded.bytes.data() + (bytes == 0 ? Ref::size : rba));
  if (place.slot != kSlotHashTable && place.slot != kSlotHashOverflow) return true;
  const std::uint64_t end = bytes == 0 ? Ref::size : rba + bytes;
  const std::uint64_t readable = std::max(loaded.bytes.size(), loaded.zerosTo);
  if (end + kReadBehind <= readable) return true;
  Block& copy = loaded.copies[place.slot == kSlotHashTable ? 0 : 1];
  return copyWithSlack(loaded, copy, place.slot, bytes) ||
         failed(error, ErrorCode::kNoMemory, 0, "no memory for " + loaded.file);
}

}  // namespace

bool failed(Error& error, ErrorCode code, int number, std::string text) {
  error.code = code;
  error.number = number;
  error.text = std::move(text);
  return false;
}

bool failedTable(Error& error, ErrorCode code, const std::string& file, const char* table,
                 std::uint64_t offset, const std::string& what) {
  error.table = table;
  error.offset = offset;
  return failed(error, code, 0,
                file + ": the table " + table + " at " + std::to_string(offset) + " " + what);
}

std::uint64_t endOfTables(const RefControlRec& record) {
  std::uint64_t end = Ref::size;
  for (const TableId id : kTables) {
    const TableLine& table = tableLine(id);
    const std::uint64_t bytes = isThere(table, record) ? bytesOf(table, record) : 0;
    if (bytes > 0) end = std::max(end, wordAt(record, table.rbaAt) + bytes);
  }
  return end;
}

bool placeTables(Database::Loaded& loaded, Error& error) {
  loaded.view.slots = loaded.slots.data();
  loaded.view.record = reinterpret_cast<const Ref*>(loaded.bytes.data());
  loaded.view.behind = 0;
  return std::all_of(std::begin(kTables), std::end(kTables), [&](TableId id) {
    return !isThere(tableLine(id), *loaded.view.record) || placeOne(loaded, tableLine(id), error);
  });
}

}  // namespace statecut
