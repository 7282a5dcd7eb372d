#include "reader/placing.h"

#include <algorithm>

#include "tables/directory.h"

namespace statecut {

namespace {

using Ref = RefControlRec;

// A table of a lookup.
struct Place {
  TableId table;
  const char* name;
};

constexpr Place kPlaces[] = {
    {TableId::kCityData, "City Data"},
    {TableId::kCityMultiZipLists, "City Multi Zip Lists"},
    {TableId::kCityMultiFinanceLists, "City Multi Finance Lists"},
    {TableId::kCityMultiZipRbas, "City Multi Zip RBAs"},
    {TableId::kFinMultiZipRbas, "Finance Multi Zip RBAs"},
    {TableId::kCityNames, "City Names"},
    {TableId::kCityPhonetics, "City Phonetics"},
    {TableId::kZipData, "Zip Code Data"},
    {TableId::kZipMultiCityLists, "Zip Multi City Lists"},
    {TableId::kZipIndex, "Zip Code Index"},
    {TableId::kCounties, "Counties"},
    {TableId::kUrbs, "Urbanizations"},
    {TableId::kStreetNames, "Street Names"},
    {TableId::kStreetPhoneticAmb, "Street Phonetic Lists"},
    {TableId::kStreetPhonetics, "Street Phonetics"},
    {TableId::kStreetStandardAmb, "Street Standard Lists"},
    {TableId::kStreetStandards, "Street Standards"},
    {TableId::kFirms, "Firm Names"},
    {TableId::kGeneralDelivery, "General Delivery"},
    {TableId::kMultiZipLists, "Multi Zip Lists"},
    {TableId::kZipBytes, "Zip Bytes"},
    {TableId::kHashTable, "Hash Table"},
    {TableId::kHashOverflow, "Hash Overflow"},
};

// The search of the hash reads a few entries at once, also at the end of its tables.
constexpr std::uint64_t kReadBehind = 32;

bool isThere(const TableLine& line, const Ref& record) {
  if (line.fate != Fate::kDropped) return true;
  return (record.get(Ref::typeFlags) & kTypeStateCut) == 0 && wordAt(record, line.rbaAt) != 0;
}

// Of lists of 16-bit keys what a cut carries: what an uncut file has behind is not theirs.
std::uint64_t bytesOf(const TableLine& line, const Ref& record) {
  const std::uint32_t width = line.fate == Fate::kDropped ? line.width : line.cutWidth;
  return static_cast<std::uint64_t>(tableRecords(record, line.id)) * width;
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

bool placeOne(Database::Loaded& loaded, const Place& place, Error& error) {
  const Ref& record = *loaded.view.record;
  const TableLine& line = tableLine(place.table);
  const std::uint64_t rba = wordAt(record, line.rbaAt);
  const std::uint64_t bytes = bytesOf(line, record);
  if (bytes > 0 && rba < Ref::size)
    return failedTable(error, ErrorCode::kDamaged, loaded.file, place.name, rba,
                       "begins inside the control record");
  if (bytes > 0 && rba + bytes > loaded.bytes.size())
    return failedTable(
        error, ErrorCode::kShortFile, loaded.file, place.name, rba,
        "has " + std::to_string(bytes) + " bytes, the file " + std::to_string(loaded.bytes.size()));
  // Nothing writes to the tables of a Database: they are not constant for the library's own.
  loaded.slots[line.slot].table =
      const_cast<unsigned char*>(loaded.bytes.data() + (bytes == 0 ? Ref::size : rba));
  if (line.slot != kSlotHashTable && line.slot != kSlotHashOverflow) return true;
  const std::uint64_t end = bytes == 0 ? Ref::size : rba + bytes;
  const std::uint64_t readable = std::max(loaded.bytes.size(), loaded.zerosTo);
  if (end + kReadBehind <= readable) return true;
  Block& copy = loaded.copies[line.slot == kSlotHashTable ? 0 : 1];
  return copyWithSlack(loaded, copy, line.slot, bytes) ||
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
  for (const Place& place : kPlaces) {
    const TableLine& line = tableLine(place.table);
    const std::uint64_t bytes = isThere(line, record) ? bytesOf(line, record) : 0;
    if (bytes > 0) end = std::max(end, wordAt(record, line.rbaAt) + bytes);
  }
  return end;
}

bool placeTables(Database::Loaded& loaded, Error& error) {
  loaded.view.slots = loaded.slots.data();
  loaded.view.record = reinterpret_cast<const Ref*>(loaded.bytes.data());
  loaded.view.behind = 0;
  return std::all_of(std::begin(kPlaces), std::end(kPlaces), [&](const Place& place) {
    return !isThere(tableLine(place.table), *loaded.view.record) || placeOne(loaded, place, error);
  });
}

}  // namespace statecut
