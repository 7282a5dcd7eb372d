#include "tables/tableload.h"

namespace statecut {

namespace {

constexpr TableLoad kCityData[] = {
    {.table = TableId::kCityData,
     .logName = "City Data Table",
     .code = -2,
     .errorName = "City Data"},
    {.table = TableId::kCityMultiZipLists,
     .logName = "City Multi Zip Table",
     .code = -2,
     .errorName = "City Multiple Zips"},
    {.table = TableId::kCityMultiFinanceLists,
     .logName = "City Multiple Finance Areas",
     .code = -2},
    {.table = TableId::kCityMultiZipRbas, .logName = "City Multiple Zip RBAs", .code = -2},
    // Deliberate: another code than the rest, that of the ZIP tables.
    {.table = TableId::kFinMultiZipRbas, .logName = "Zip Finance Multi Zip Data", .code = -5}};

constexpr TableLoad kCityNames[] = {{.table = TableId::kCityNames,
                                     .logName = "City Names Table",
                                     .code = -3,
                                     .reports = Reports::kWarnings,
                                     .errorName = "City Names"}};

constexpr TableLoad kCityByState[] = {{.table = TableId::kCityNamesByState,
                                       .logName = "City State Names Table",
                                       .code = -3,
                                       .errorName = "City State"}};

constexpr TableLoad kCityPhonetics[] = {{.table = TableId::kCityPhonetics,
                                         .logName = "City Name Phonetics",
                                         .code = -4,
                                         .reports = Reports::kWarnings}};

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
