#pragma once
// The directory of the reference tables: one line a table, in the order in which a cut writes them.
// Where the table stands, how many records of which width it has, and what a cut does with it.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/procobj.h"
#include "dbfiles/controlrec.h"
#include "tables/refpointers.h"
#include "tables/rows.h"

namespace statecut {

inline constexpr std::uint32_t kZipCodes = 100000;  // entries of a ZIP code index
inline constexpr std::uint32_t kZipIndexBytes = kZipCodes * std::uint32_t{ZipIndexRow::size};

enum class TableId : std::uint8_t {
  kStreetPatterns,
  kPobPatterns,
  kRrPatterns,
  kStreetNames,
  kFirms,
  kCityMultiZipLists,
  kCityMultiFinanceLists,
  kZipMultiCityLists,
  kUniqueZips,
  kCounties,
  kUrbs,
  kUrbMultiZipLists,
  kUrbVariations,
  kStreetPhoneticAmb,
  kStreetPhonetics,
  kStreetPhoneticsRbos,
  kStreetStandardAmb,
  kStreetStandards,
  kStreetStandardsRbos,
  kGeneralDelivery,
  kMultiZipLists,
  kCityData,
  kCityMultiZipRbas,
  kFinMultiZipRbas,
  kCityNames,
  kCityNamesByState,
  kCityPhonetics,
  kZipData,
  kZipIndex,
  kHashTable,
  kHashOverflow,
  kMilitary,
  kPobZones,
  kScfs,
  kZipBytes,
  kSfhMultiZipBytes,
  kPobMultiZipBytes,
  kRrMultiZipBytes,
  kStreetRbos,
  kFirmRbos,
  kCount
};

// What a cut does with a table.
enum class Fate : std::uint8_t {
  kKept,     // copied, its RBA kept
  kCopied,   // copied, its RBA that of the copy
  kEdited,   // loaded, fields of its records changed, written
  kRebuilt,  // written from a work table
  kDropped,  // not carried: its RBA becomes 0, its count too unless another table has the same
  kLeftOut,  // not carried, its words kept
};

// How many records a table has.
enum class Counted : std::uint8_t {
  kWord,     // as a word of the control record says
  kLessOne,  // one less than it says
  kFixed,    // always as many
  kItself,   // as a 16-bit number for each of its parts says, in front of them; RBA 0 = no table
};

struct Records {
  Counted by;
  std::uint32_t at;  // the word's offset in the control record; kFixed: the count
};

struct TableLine {
  TableId id;
  Fate fate;
  SlotNumber slot;    // of the loaded table; kNoSlot: never loaded
  const char* name;   // in docs/format.md
  std::size_t rbaAt;  // offset of its RBA in the control record
  Records records;
  std::uint32_t width;     // of a record, 1 = packed names; kItself: of a record of the first part
  std::uint32_t cutWidth;  // the same in a cut, 0 = not carried
  std::uint32_t width2 = 0;  // kItself: of a record of the second part, 0 = there is none
};

inline constexpr auto kDirectory = [] {
  using enum TableId;
  using enum Fate;
  using enum Counted;
  using R = RefControlRec;
  constexpr auto word = [](auto field) { return Records{kWord, field.at}; };
  constexpr auto lessOne = [](auto field) { return Records{kLessOne, field.at}; };
  // clang-format off
  return std::to_array<TableLine>({
      // The first four stand right behind the control record, in this order: their copies land where
      // the source has them.
      {kStreetPatterns, kKept, kSlotSfhPatterns, "Street patterns", R::streetPatternsRba.at, word(R::streetPatternsCount), 18, 18},
      {kPobPatterns, kKept, kSlotPobPatterns, "POB patterns", R::pobPatternsRba.at, word(R::pobPatternsCount), 18, 18},
      {kRrPatterns, kKept, kSlotRrPatterns, "RR patterns", R::rrPatternsRba.at, word(R::rrPatternsCount), 18, 18},
      {kStreetNames, kKept, kSlotStreetNames, "Street names", R::streetNamesRba.at, word(R::streetNamesBytes), 1, 1},
      {kFirms, kCopied, kSlotFirms, "Firm names", R::firmsRba.at, word(R::firmsBytes), 1, 1},
      {kCityMultiZipLists, kCopied, kSlotCityMultiZip, "City multi-ZIP lists", R::cityMultiZipListsRba.at, word(R::cityMultiZipListsCount), 6, 6},
      {kCityMultiFinanceLists, kCopied, kSlotCityMultiFinance, "City multi-finance lists", R::cityMultiFinanceListsRba.at, word(R::cityMultiFinanceListsCount), 2, 2},
      // Deliberate: loaded with 4 bytes an entry, carried with 2; the keys fill the first half.
      {kZipMultiCityLists, kCopied, kSlotZipMultiCity, "ZIP multi-city lists", R::zipMultiCityListsRba.at, word(R::zipMultiCityListsCount), 4, 2},
      {kUniqueZips, kCopied, kSlotUniqueZips, "Unique ZIPs", R::uniqueZipsRba.at, word(R::uniqueZipsCount), 12, 12},
      {kCounties, kCopied, kSlotCounties, "Counties", R::countiesRba.at, word(R::countiesCount), 32, 32},
      {kUrbs, kCopied, kSlotUrbs, "Urbanizations", R::urbsRba.at, word(R::urbsCount), 32, 32},
      {kUrbMultiZipLists, kCopied, kSlotUrbMultiZip, "Urbanization multi-ZIP lists", R::urbMultiZipListsRba.at, word(R::urbMultiZipListsCount), 2, 2},
      {kUrbVariations, kCopied, kSlotUrbVariations, "Urbanization variations", R::urbVariationsRba.at, word(R::urbVariationsCount), 32, 32},
      {kStreetPhoneticAmb, kCopied, kSlotStreetPhoneticAmb, "Street phonetic ambiguous data", R::streetPhoneticAmbDataRba.at, word(R::streetPhoneticAmbDataBytes), 1, 1},
      {kStreetPhonetics, kCopied, kSlotStreetPhonetics, "Street phonetics", R::streetPhoneticsRba.at, word(R::streetPhoneticsBytes), 1, 1},
      {kStreetPhoneticsRbos, kCopied, kNoSlot, "Street phonetics RBOs", R::streetPhoneticsRbosRba.at, word(R::streetPhoneticsCount), 4, 4},
      {kStreetStandardAmb, kCopied, kSlotStreetStandardAmb, "Standardized street ambiguous data", R::streetStandardAmbDataRba.at, word(R::streetStandardAmbDataBytes), 1, 1},
      {kStreetStandards, kCopied, kSlotStreetStandards, "Standardized street names", R::streetStandardsRba.at, word(R::streetStandardsBytes), 1, 1},
      {kStreetStandardsRbos, kCopied, kNoSlot, "Standardized street RBOs", R::streetStandardsRbosRba.at, word(R::streetStandardsCount), 4, 4},
      {kGeneralDelivery, kCopied, kSlotGeneralDelivery, "General delivery", R::generalDeliveryRba.at, word(R::generalDeliveryCount), 4, 4},
      // Deliberate: as the ZIP multi-city lists.
      {kMultiZipLists, kCopied, kSlotMultiZip, "Multi-ZIP lists", R::multiZipListsRba.at, word(R::multiZipListsCount), 4, 2},
      {kCityData, kEdited, kSlotCityData, "City data", R::cityDataRba.at, word(R::cityDataCount), 36, 36},
      {kCityMultiZipRbas, kEdited, kSlotCityMultiZipRbas, "City multi-ZIP RBAs", R::cityMultiZipRbasRba.at, word(R::cityMultiZipRbasCount), 28, 28},
      {kFinMultiZipRbas, kEdited, kSlotFinMultiZip, "Finance multi-ZIP RBAs", R::finMultiZipRbasRba.at, word(R::finMultiZipRbasCount), 8, 8},
      {kCityNames, kRebuilt, kSlotCityNames, "City names", R::cityNamesRba.at, word(R::cityNamesCount), 34, 34},
      {kCityNamesByState, kRebuilt, kSlotCityNamesByState, "City names by state", R::cityNamesByStateRba.at, lessOne(R::cityNamesCount), 34, 34},
      {kCityPhonetics, kRebuilt, kSlotCityPhonetics, "City phonetics", R::cityPhoneticsRba.at, word(R::cityPhoneticsCount), 26, 26},
      {kZipData, kEdited, kSlotZipData, "ZIP data", R::zipDataRba.at, word(R::zipDataCount), 52, 52},
      {kZipIndex, kRebuilt, kSlotZipIndex, "ZIP index", R::zipIndexRba.at, Records{kFixed, kZipCodes}, 2, 2},
      {kHashTable, kEdited, kSlotHashTable, "Hash slots", R::hashTableRba.at, word(R::hashTableCount), 7, 7},
      {kHashOverflow, kEdited, kSlotHashOverflow, "Hash overflow", R::hashOverflowRba.at, word(R::hashOverflowCount), 6, 6},
      // Loaded and written as they came. The aliases have a second part, of 42 bytes each.
      {kMilitary, kCopied, kSlotMilitary, "Military aliases", R::militaryRba.at, Records{kItself, 0}, 38, 38, 42},
      {kPobZones, kCopied, kSlotPobZones, "PO Box zones", R::pobZonesRba.at, Records{kItself, 0}, 2, 2},
      {kScfs, kDropped, kSlotScfs, "SCFs", R::scfsRba.at, word(R::scfsCount), 4, 0},
      {kZipBytes, kDropped, kSlotZipBytes, "ZIP bytes", R::zipBytesRba.at, word(R::zipDataCount), 12, 0},
      {kSfhMultiZipBytes, kDropped, kSlotSfhMultiZipBytes, "SFH multi-ZIP bytes", R::sfhMultiZipBytesRba.at, word(R::sfhMultiZipBytesCount), 8, 0},
      {kPobMultiZipBytes, kDropped, kSlotPobMultiZipBytes, "POB multi-ZIP bytes", R::pobMultiZipBytesRba.at, word(R::pobMultiZipBytesCount), 8, 0},
      {kRrMultiZipBytes, kDropped, kSlotRrMultiZipBytes, "RR multi-ZIP bytes", R::rrMultiZipBytesRba.at, word(R::rrMultiZipBytesCount), 8, 0},
      // Deliberate: their words stay, for no reader asks for them.
      {kStreetRbos, kLeftOut, kNoSlot, "Street RBOs", R::streetRbosRba.at, word(R::streetNamesCount), 4, 0},
      {kFirmRbos, kLeftOut, kNoSlot, "Firm RBOs", R::firmRbosRba.at, word(R::firmsCount), 4, 0},
  });
  // clang-format on
}();

[[nodiscard]] constexpr const TableLine& tableLine(TableId id) {
  return kDirectory[static_cast<std::size_t>(id)];
}

// True when the count of the table is that of another one as well.
[[nodiscard]] constexpr bool sharesCount(const TableLine& table) {
  return std::any_of(kDirectory.begin(), kDirectory.end(), [&table](const TableLine& other) {
    return other.id != table.id && other.records.at == table.records.at;
  });
}

// A word of the control record by its offset.
[[nodiscard]] inline std::uint32_t wordAt(const RefControlRec& record, std::size_t at) {
  return le::get<4>(record.bytes.data() + at);
}

inline void setWordAt(RefControlRec& record, std::size_t at, std::uint32_t value) {
  le::put<4>(record.bytes.data() + at, value);
}

// The records of a table, -1 where one is missing to none; 0 for one that counts itself.
[[nodiscard]] inline std::int64_t tableRecords(const RefControlRec& record, TableId id) {
  const Records records = tableLine(id).records;
  switch (records.by) {
    case Counted::kWord:
      return wordAt(record, records.at);
    case Counted::kLessOne:
      return std::int64_t{wordAt(record, records.at)} - 1;
    case Counted::kFixed:
      return records.at;
    case Counted::kItself:
      break;
  }
  return 0;
}

// The bytes of a table in memory, exact and below 0 where tableRecords is.
[[nodiscard]] inline std::int64_t tableBytes(const RefControlRec& record, TableId id) {
  return tableRecords(record, id) * tableLine(id).width;
}

// The bytes of it that a cut carries, modulo 2^32 like all positions in a file.
[[nodiscard]] inline std::uint32_t carriedBytes(const RefControlRec& record, TableId id) {
  return static_cast<std::uint32_t>(tableRecords(record, id) * tableLine(id).cutWidth);
}

// The same of a table that counts itself: of its counts, of its first part and of both parts.
[[nodiscard]] constexpr std::uint32_t countsBytes(TableId id) {
  return tableLine(id).width2 == 0 ? 2 : 4;
}
[[nodiscard]] inline std::uint32_t firstPartBytes(const unsigned char* counts, TableId id) {
  return le::get<2>(counts) * tableLine(id).width;
}
[[nodiscard]] inline std::uint32_t partsBytes(const unsigned char* counts, TableId id) {
  const std::uint32_t width2 = tableLine(id).width2;
  return firstPartBytes(counts, id) + (width2 == 0 ? 0 : le::get<2>(counts + 2) * width2);
}

// The reference control record in memory, or null.
[[nodiscard]] inline RefControlRec* refRecord() {
  return pProcObj == nullptr ? nullptr : pProcObj->refControlRec;
}

// The lines stand in the order of their ids, and the widths are those of the rows.
static_assert(kDirectory.size() == static_cast<std::size_t>(TableId::kCount) &&
              std::all_of(kDirectory.begin(), kDirectory.end(),
                          [](const TableLine& line) { return &line == &tableLine(line.id); }));
static_assert(tableLine(TableId::kCityMultiZipLists).width == CityZipKeyRow::size &&
              tableLine(TableId::kCityMultiFinanceLists).width == KeyRow::size &&
              tableLine(TableId::kZipMultiCityLists).cutWidth == KeyRow::size &&
              tableLine(TableId::kMultiZipLists).cutWidth == KeyRow::size &&
              tableLine(TableId::kGeneralDelivery).width == GeneralDeliveryRow::size &&
              tableLine(TableId::kCityData).width == CityDataRow::size &&
              tableLine(TableId::kCityMultiZipRbas).width == CityMultiZipRow::size &&
              tableLine(TableId::kFinMultiZipRbas).width == FinMultiZipRow::size &&
              tableLine(TableId::kCityNames).width == CityNameRow::size &&
              tableLine(TableId::kCityNamesByState).width == CityByStateRow::size &&
              tableLine(TableId::kCityPhonetics).width == CityPhoneticRow::size &&
              tableLine(TableId::kZipData).width == ZipDataRow::size &&
              tableLine(TableId::kZipIndex).width == ZipIndexRow::size &&
              tableLine(TableId::kHashTable).width == HashSlotRow::size &&
              tableLine(TableId::kHashOverflow).width == HashOverflowRow::size &&
              tableLine(TableId::kZipBytes).width == ZipBytesRow::size &&
              tableLine(TableId::kSfhMultiZipBytes).width == MultiZipBytesLong::size);

}  // namespace statecut
