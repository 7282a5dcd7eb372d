#include "tables/rows.h"
#include "tables/tableload.h"

namespace statecut {

namespace {

using Ref = RefControlRec;

constexpr TableInfo kCityData[] = {
    {kSlotCityData, "City Data Table", Ref::cityDataRba.at,
     counted(Ref::cityDataCount, CityDataRow::size), -2, Reports::kErrors, "City Data",
     "City Data"},
    {kSlotCityMultiZip, "City Multi Zip Table", Ref::cityMultiZipListsRba.at,
     counted(Ref::cityMultiZipListsCount, 6), -2, Reports::kErrors, "City Multiple Zips",
     "City Multiple Zips"},
    {kSlotCityMultiFinance, "City Multiple Finance Areas", Ref::cityMultiFinanceListsRba.at,
     counted(Ref::cityMultiFinanceListsCount, 2), -2},
    {kSlotCityMultiZipRbas, "City Multiple Zip RBAs", Ref::cityMultiZipRbasRba.at,
     counted(Ref::cityMultiZipRbasCount, CityMultiZipRow::size), -2},
    // The last table fails with another code than the rest; that is meant.
    {kSlotFinMultiZip, "Zip Finance Multi Zip Data", Ref::finMultiZipRbasRba.at,
     counted(Ref::finMultiZipRbasCount, FinMultiZipRow::size), -5}};

constexpr TableInfo kCityNames[] = {{kSlotCityNames, "City Names Table", Ref::cityNamesRba.at,
                                     counted(Ref::cityNamesCount, CityNameRow::size), -3,
                                     Reports::kWarnings, "City Names", "City Names"}};

// One record shorter than the names table; that is meant.
constexpr TableInfo kCityByState[] = {{kSlotCityNamesByState, "City State Names Table",
                                       Ref::cityNamesByStateRba.at,
                                       counted(Ref::cityNamesCount, CityByStateRow::size,
                                               -static_cast<std::int32_t>(CityByStateRow::size)),
                                       -3, Reports::kErrors, "City State", "City State"}};

constexpr TableInfo kCityPhonetics[] = {
    {kSlotCityPhonetics, "City Name Phonetics", Ref::cityPhoneticsRba.at,
     counted(Ref::cityPhoneticsCount, CityPhoneticRow::size), -4, Reports::kWarnings}};

}  // namespace

std::int32_t dbReadCityData(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadCityData", kCityData, file, controlRecord, proc);
}

std::int32_t dbReadCityNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadCityNames", kCityNames, file, controlRecord, proc);
}

std::int32_t dbReadCityByState(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadCityByState", kCityByState, file, controlRecord, proc);
}

std::int32_t dbReadCityPhonetics(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadCityPhonetics", kCityPhonetics, file, controlRecord, proc);
}

}  // namespace statecut
