#include "reader/placing.h"

#include <algorithm>

#include "lookup/inmemory.h"

namespace statecut {

namespace {

using Ref = RefControlRec;

// A table of a lookup.
struct Place {
  SlotNumber slot;
  const char* name;
  std::size_t rbaAt;
  std::size_t countAt;  // 0: as many as the ZIP index has
  std::uint32_t unit;
  bool uncutOnly = false;  // a cut has none, nor has a file with RBA 0
};

template <std::size_t Rba, std::size_t Count>
constexpr Place place(SlotNumber slot, const char* name, Num<Rba, 4>, Num<Count, 4>,
                      std::uint32_t unit, bool uncutOnly = false) {
  return {slot, name, Rba, Count, unit, uncutOnly};
}

constexpr Place kPlaces[] = {
    place(kSlotCityData, "City Data", Ref::cityDataRba, Ref::cityDataCount, CityDataRow::size),
    place(kSlotCityMultiZip, "City Multi Zip Lists", Ref::cityMultiZipListsRba,
          Ref::cityMultiZipListsCount, CityZipKeyRow::size),
    place(kSlotCityMultiFinance, "City Multi Finance Lists", Ref::cityMultiFinanceListsRba,
          Ref::cityMultiFinanceListsCount, KeyRow::size),
    place(kSlotCityMultiZipRbas, "City Multi Zip RBAs", Ref::cityMultiZipRbasRba,
          Ref::cityMultiZipRbasCount, CityMultiZipRow::size),
    place(kSlotFinMultiZip, "Finance Multi Zip RBAs", Ref::finMultiZipRbasRba,
          Ref::finMultiZipRbasCount, FinMultiZipRow::size),
    place(kSlotCityNames, "City Names", Ref::cityNamesRba, Ref::cityNamesCount, CityNameRow::size),
    place(kSlotCityPhonetics, "City Phonetics", Ref::cityPhoneticsRba, Ref::cityPhoneticsCount,
          CityPhoneticRow::size),
    place(kSlotZipData, "Zip Code Data", Ref::zipDataRba, Ref::zipDataCount, ZipDataRow::size),
    // Lists of 16-bit keys: what an uncut file has behind as many is not theirs.
    place(kSlotZipMultiCity, "Zip Multi City Lists", Ref::zipMultiCityListsRba,
          Ref::zipMultiCityListsCount, KeyRow::size),
    {kSlotZipIndex, "Zip Code Index", Ref::zipIndexRba.at, 0, KeyRow::size},
    place(kSlotCounties, "Counties", Ref::countiesRba, Ref::countiesCount, 32),
    place(kSlotUrbs, "Urbanizations", Ref::urbsRba, Ref::urbsCount, 32),
    place(kSlotStreetNames, "Street Names", Ref::streetNamesRba, Ref::streetNamesBytes, 1),
    place(kSlotStreetPhoneticAmb, "Street Phonetic Lists", Ref::streetPhoneticAmbDataRba,
          Ref::streetPhoneticAmbDataBytes, 1),
    place(kSlotStreetPhonetics, "Street Phonetics", Ref::streetPhoneticsRba,
          Ref::streetPhoneticsBytes, 1),
    place(kSlotStreetStandardAmb, "Street Standard Lists", Ref::streetStandardAmbDataRba,
          Ref::streetStandardAmbDataBytes, 1),
    place(kSlotStreetStandards, "Street Standards", Ref::streetStandardsRba,
          Ref::streetStandardsBytes, 1),
    place(kSlotFirms, "Firm Names", Ref::firmsRba, Ref::firmsBytes, 1),
    place(kSlotGeneralDelivery, "General Delivery", Ref::generalDeliveryRba,
          Ref::generalDeliveryCount, GeneralDeliveryRow::size),
    place(kSlotMultiZip, "Multi Zip Lists", Ref::multiZipListsRba, Ref::multiZipListsCount,
          KeyRow::size),
    place(kSlotZipBytes, "Zip Bytes", Ref::zipBytesRba, Ref::zipDataCount, ZipBytesRow::size, true),
    place(kSlotHashTable, "Hash Table", Ref::hashTableRba, Ref::hashTableCount, HashSlotRow::size),
    place(kSlotHashOverflow, "Hash Overflow", Ref::hashOverflowRba, Ref::hashOverflowCount,
          HashOverflowRow::size)};

// The search of the hash reads a few entries at once, also at the end of its tables.
constexpr std::uint64_t kReadBehind = 32;

std::uint32_t wordAt(const Ref& record, std::size_t at) {
  return le::get<4>(record.bytes.data() + at);
}

bool isThere(const Place& place, const Ref& record) {
  if (!place.uncutOnly) return true;
  return (record.get(Ref::typeFlags) & kTypeStateCut) == 0 && wordAt(record, place.rbaAt) != 0;
}

std::uint64_t bytesOf(const Place& place, const Ref& record) {
  const std::uint64_t count =
      place.countAt == 0 ? std::uint64_t{memory::kZipIndexEntries} : wordAt(record, place.countAt);
  return count * place.unit;
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
  for (const Place& place : kPlaces) {
    const std::uint64_t bytes = isThere(place, record) ? bytesOf(place, record) : 0;
    if (bytes > 0) end = std::max(end, wordAt(record, place.rbaAt) + bytes);
  }
  return end;
}

bool placeTables(Database::Loaded& loaded, Error& error) {
  loaded.view.slots = loaded.slots.data();
  loaded.view.record = reinterpret_cast<const Ref*>(loaded.bytes.data());
  loaded.view.behind = 0;
  return std::all_of(std::begin(kPlaces), std::end(kPlaces), [&](const Place& place) {
    return !isThere(place, *loaded.view.record) || placeOne(loaded, place, error);
  });
}

}  // namespace statecut
