#pragma once
// The tables of a reference file: where the control record says that each one stands, and how many
// bytes it has.

#include <cstddef>
#include <cstdint>
#include <span>

#include "dbfiles/controlrec.h"

namespace statecut::format {

enum class TableId {
  StreetPatterns,
  PobPatterns,
  RrPatterns,
  StreetNames,
  StreetRbos,
  Firms,
  FirmRbos,
  CityData,
  CityMultiZipLists,
  CityMultiFinanceLists,
  CityMultiZipRbas,
  FinMultiZipRbas,
  CityNames,
  CityNamesByState,
  CityPhonetics,
  ZipData,
  ZipMultiCityLists,
  ZipIndex,
  UniqueZips,
  Counties,
  Urbs,
  UrbMultiZipLists,
  UrbVariations,
  StreetPhoneticAmbData,
  StreetPhonetics,
  StreetPhoneticsRbos,
  StreetStandardAmbData,
  StreetStandards,
  StreetStandardsRbos,
  GeneralDelivery,
  MultiZipLists,
  Scfs,
  ZipBytes,
  SfhMultiZipBytes,
  PobMultiZipBytes,
  RrMultiZipBytes,
  HashTable,
  HashOverflow,
  Military,
  PobZones,
  Count_
};
inline constexpr std::size_t kTables = static_cast<std::size_t>(TableId::Count_);
inline constexpr std::uint32_t kZipIndexEntries = 100000;

// How the size of a table follows from its count.
enum class Sizing {
  Records,    // count x width
  OneLess,    // (count - 1) x width
  Fixed,      // kZipIndexEntries x width
  OwnHeader,  // a header of counts in front of the records; no table when the RBA is 0
};

struct TableDef {
  const char* name;
  std::size_t rbaAt;       // offset of its RBA in the control record
  std::size_t countAt;     // offset of its count, 0 = none
  std::uint32_t width;     // bytes of a record
  std::uint32_t cutWidth;  // the same in a cut; 0 = a cut does not carry the table
  Sizing sizing;
};

std::span<const TableDef, kTables> tableDefs();
const TableDef& tableDef(TableId id);

struct TablePlace {
  std::uint32_t rba = 0;
  std::uint64_t count = 0;  // records
  std::uint64_t bytes = 0;
  bool carried = true;  // false: not in this file (a cut leaves it out, or its RBA of 0 says so)
  bool fits = true;     // false: starts inside the control record or ends past the file
};

// Places a table without a header of its own in a file of so many bytes.
TablePlace placeTable(TableId id, const RefControlRec& record, std::uint64_t fileBytes);

// Places a table with a header of its own by that header, of which bytes may be missing. An RBA of
// 0 stands for no table.
inline constexpr std::size_t kMostHeaderBytes = 4;
std::size_t headerBytes(TableId id);
TablePlace placeTable(TableId id, std::uint32_t rba, std::span<const unsigned char> header,
                      std::uint64_t fileBytes);

// Places any table of the reference file `file`, which holds at least its control record.
TablePlace placeTable(TableId id, std::span<const unsigned char> file);

}  // namespace statecut::format
