// The directory of the tables against the two others who know the tables: the builder, which makes
// databases, and the checks of statedb. Neither uses the directory, so an error in one shows here.

#include "tables/directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "dbbuilder/places.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "format/directory.h"

namespace statecut {
namespace {

struct Same {
  TableId table;
  format::TableId checked;
  builder::Table built;
};

using V = format::TableId;
using B = builder::Table;

constexpr Same kSame[] = {
    {TableId::kStreetPatterns, V::StreetPatterns, B::SfhPatterns},
    {TableId::kPobPatterns, V::PobPatterns, B::PobPatterns},
    {TableId::kRrPatterns, V::RrPatterns, B::RrPatterns},
    {TableId::kStreetNames, V::StreetNames, B::StreetNames},
    {TableId::kFirms, V::Firms, B::FirmNames},
    {TableId::kCityMultiZipLists, V::CityMultiZipLists, B::CityZipLists},
    {TableId::kCityMultiFinanceLists, V::CityMultiFinanceLists, B::CityFinanceLists},
    {TableId::kZipMultiCityLists, V::ZipMultiCityLists, B::CityKeysOfZips},
    {TableId::kUniqueZips, V::UniqueZips, B::UniqueZips},
    {TableId::kCounties, V::Counties, B::Counties},
    {TableId::kUrbs, V::Urbs, B::Urbanizations},
    {TableId::kUrbMultiZipLists, V::UrbMultiZipLists, B::UrbMultiZips},
    {TableId::kUrbVariations, V::UrbVariations, B::UrbVariations},
    {TableId::kStreetPhoneticAmb, V::StreetPhoneticAmbData, B::StreetPhoneticLists},
    {TableId::kStreetPhonetics, V::StreetPhonetics, B::StreetPhonetics},
    {TableId::kStreetPhoneticsRbos, V::StreetPhoneticsRbos, B::StreetPhoneticRbos},
    {TableId::kStreetStandardAmb, V::StreetStandardAmbData, B::StreetStandardLists},
    {TableId::kStreetStandards, V::StreetStandards, B::StreetStandards},
    {TableId::kStreetStandardsRbos, V::StreetStandardsRbos, B::StreetStandardRbos},
    {TableId::kGeneralDelivery, V::GeneralDelivery, B::GeneralDelivery},
    {TableId::kMultiZipLists, V::MultiZipLists, B::MultiZipLists},
    {TableId::kCityData, V::CityData, B::CityData},
    {TableId::kCityMultiZipRbas, V::CityMultiZipRbas, B::CityMultiZip},
    {TableId::kFinMultiZipRbas, V::FinMultiZipRbas, B::FinMultiZip},
    {TableId::kCityNames, V::CityNames, B::CityNames},
    {TableId::kCityNamesByState, V::CityNamesByState, B::CityNamesByState},
    {TableId::kCityPhonetics, V::CityPhonetics, B::CityPhonetics},
    {TableId::kZipData, V::ZipData, B::ZipData},
    {TableId::kZipIndex, V::ZipIndex, B::ZipIndex},
    {TableId::kHashTable, V::HashTable, B::HashSlots},
    {TableId::kHashOverflow, V::HashOverflow, B::HashOverflow},
    {TableId::kMilitary, V::Military, B::Military},
    {TableId::kPobZones, V::PobZones, B::PoBoxZones},
    {TableId::kScfs, V::Scfs, B::Scfs},
    {TableId::kZipBytes, V::ZipBytes, B::ZipBytes},
    {TableId::kSfhMultiZipBytes, V::SfhMultiZipBytes, B::SfhMultiZipBytes},
    {TableId::kPobMultiZipBytes, V::PobMultiZipBytes, B::PobMultiZipBytes},
    {TableId::kRrMultiZipBytes, V::RrMultiZipBytes, B::RrMultiZipBytes},
    {TableId::kStreetRbos, V::StreetRbos, B::StreetRbos},
    {TableId::kFirmRbos, V::FirmRbos, B::FirmRbos},
};

format::Sizing sizingOf(Counted counted) {
  switch (counted) {
    case Counted::kWord:
      return format::Sizing::Records;
    case Counted::kLessOne:
      return format::Sizing::OneLess;
    case Counted::kFixed:
      return format::Sizing::Fixed;
    case Counted::kItself:
      break;
  }
  return format::Sizing::OwnHeader;
}

bool countedByWord(const TableLine& line) {
  return line.records.by == Counted::kWord || line.records.by == Counted::kLessOne;
}

TEST(Directory, NamesEachTableOnce) {
  std::set<std::size_t> rbas;
  std::set<std::string> names;
  std::set<format::TableId> checked;
  std::set<builder::Table> built;
  for (const Same& same : kSame) {
    rbas.insert(tableLine(same.table).rbaAt);
    names.insert(tableLine(same.table).name);
    checked.insert(same.checked);
    built.insert(same.built);
  }
  EXPECT_EQ(rbas.size(), kDirectory.size());
  EXPECT_EQ(names.size(), kDirectory.size());
  EXPECT_EQ(checked.size(), format::kTables);
  EXPECT_EQ(built.size(), builder::tableCount);
}

TEST(Directory, AgreesWithTheChecksOfStatedb) {
  for (const Same& same : kSame) {
    const TableLine& line = tableLine(same.table);
    const format::TableDef& def = format::tableDef(same.checked);
    SCOPED_TRACE(line.name);
    EXPECT_EQ(line.rbaAt, def.rbaAt);
    EXPECT_EQ(sizingOf(line.records.by), def.sizing);
    EXPECT_EQ(line.fate == Fate::kDropped || line.fate == Fate::kLeftOut, def.cutWidth == 0);
    if (countedByWord(line)) {
      EXPECT_EQ(line.records.at, def.countAt);
    }
    if (line.records.by == Counted::kFixed) {
      EXPECT_EQ(line.records.at, format::kZipIndexEntries);
    }
    if (line.records.by == Counted::kItself) continue;  // both widths stand in their own code
    EXPECT_EQ(line.width, def.width);
    EXPECT_EQ(line.cutWidth, def.cutWidth);
  }
}

TEST(Directory, FindsEveryTableOfABuiltDatabase) {
  const builder::ReferenceFile file =
      builder::referenceFile(builder::makeModel(builder::tinyPlaces(), builder::tinyOptions()));
  RefControlRec record{};
  std::copy_n(file.bytes.begin(), RefControlRec::size, record.bytes.begin());
  std::uint32_t firstRba = RefControlRec::size;
  for (const Same& same : kSame) {
    const TableLine& line = tableLine(same.table);
    const builder::TablePlace& place = file.place(same.built);
    const format::TablePlace checked = format::placeTable(same.checked, file.bytes);
    SCOPED_TRACE(line.name);
    EXPECT_EQ(wordAt(record, line.rbaAt), place.rba);
    EXPECT_EQ(checked.bytes, place.bytes);
    if (line.records.by == Counted::kItself) {
      const unsigned char* counts = file.bytes.data() + place.rba;
      ASSERT_GT(place.bytes, countsBytes(same.table));
      EXPECT_EQ(countsBytes(same.table) + partsBytes(counts, same.table), place.bytes);
    } else {
      EXPECT_EQ(tableBytes(record, same.table), static_cast<std::int64_t>(place.bytes));
    }
    if (line.fate != Fate::kKept) continue;
    EXPECT_EQ(place.rba, firstRba) << "a cut relies on it";
    firstRba += static_cast<std::uint32_t>(place.bytes);
  }
}

TEST(Directory, BytesOfACutCountModulo2To32AndThoseInMemoryExactly) {
  RefControlRec record{};
  record.set(RefControlRec::zipDataCount, 82595525);
  EXPECT_EQ(tableBytes(record, TableId::kZipData), 4294967300);
  EXPECT_EQ(carriedBytes(record, TableId::kZipData), 4u);
  EXPECT_EQ(tableBytes(record, TableId::kCityNamesByState), -34);
  record.set(RefControlRec::zipMultiCityListsCount, 3);
  EXPECT_EQ(tableBytes(record, TableId::kZipMultiCityLists), 12);
  EXPECT_EQ(carriedBytes(record, TableId::kZipMultiCityLists), 6u);
  EXPECT_EQ(carriedBytes(record, TableId::kZipBytes), 0u);
}

TEST(Directory, OnlyTheCountsOfTheCityNamesAndTheZipDataAreShared) {
  std::set<TableId> shared;
  for (const TableLine& line : kDirectory)
    if (countedByWord(line) && sharesCount(line)) shared.insert(line.id);
  EXPECT_EQ(shared, (std::set<TableId>{TableId::kCityNames, TableId::kCityNamesByState,
                                       TableId::kZipData, TableId::kZipBytes}));
}

}  // namespace
}  // namespace statecut
