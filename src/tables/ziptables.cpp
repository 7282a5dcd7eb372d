#include "tables/tableload.h"

namespace statecut {

namespace {

constexpr TableLoad kZipData[] = {
    {.table = TableId::kZipData, .logName = "Zip Code Data", .code = -5},
    {.table = TableId::kZipMultiCityLists, .logName = "Zip Multi City Data", .code = -5},
    {.table = TableId::kZipIndex, .logName = "Zip Code Index", .code = -5}};

// Deliberate: "Unique Zips" in the size line, "Unique ZIPs" in the reports.
constexpr TableLoad kUniqueZips[] = {{.table = TableId::kUniqueZips,
                                      .logName = "Unique Zips",
                                      .code = -6,
                                      .errorName = "Unique ZIPs"}};

constexpr TableLoad kMultiZip[] = {
    {.table = TableId::kMultiZipLists, .logName = "Multi Zip Table", .code = -16}};

constexpr TableLoad bytesTable(TableId table, const char* name) {
  return {.table = table, .logName = name, .code = -17, .absentAtZero = true};
}

constexpr TableLoad kBytes[] = {bytesTable(TableId::kZipBytes, "Zip Bytes Table"),
                                bytesTable(TableId::kSfhMultiZipBytes, "Multi-Zip SFH Bytes Table"),
                                bytesTable(TableId::kPobMultiZipBytes, "Multi-Zip POB Bytes Table"),
                                bytesTable(TableId::kRrMultiZipBytes, "Multi-Zip RR Bytes Table")};

constexpr TableLoad kScfs[] = {{.table = TableId::kScfs, .logName = "SCF Table", .code = -15}};

}  // namespace

std::int32_t dbReadZipData(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadZipData", kZipData, file, controlRecord, proc);
}

std::int32_t dbReadUniqueZips(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadUniqueZips", kUniqueZips, file, controlRecord, proc);
}

std::int32_t dbReadMultiZipTable(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadMultiZipTable", kMultiZip, file, controlRecord, proc);
}

std::int32_t dbReadBytesTables(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadBytesTables", kBytes, file, controlRecord, proc);
}

std::int32_t dbReadSCFTable(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadSCFTable", kScfs, file, controlRecord, proc);
}

}  // namespace statecut
