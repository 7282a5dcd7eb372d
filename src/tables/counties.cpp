// Counties, urbanizations and general delivery.
#include "tables/tableload.h"

namespace statecut {

namespace {

constexpr TableLoad kCounties[] = {
    {.table = TableId::kCounties, .logName = "County Data", .code = -7}};

constexpr TableLoad kUrbMultiZip = {
    .table = TableId::kUrbMultiZipLists, .logName = "Urb MultiZips", .code = -5};

constexpr TableLoad kUrbNames[] = {{.table = TableId::kUrbs, .logName = "URB names", .code = -8},
                                   kUrbMultiZip};

constexpr TableLoad kUrbMultiZips[] = {kUrbMultiZip};

constexpr TableLoad kUrbVariations[] = {
    {.table = TableId::kUrbVariations, .logName = "URB Variations", .code = -9}};

// Deliberate: a failed allocation names the partition, not the table.
constexpr TableLoad kGeneralDelivery[] = {{.table = TableId::kGeneralDelivery,
                                           .logName = "General Delivery",
                                           .code = -14,
                                           .allocName = "partition 14"}};

}  // namespace

std::int32_t dbReadCountyData(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadCountyData", kCounties, file, controlRecord, proc);
}

// Deliberate: loads the urbanization multi-ZIP lists as well, as dbReadURBMultiZip does.
std::int32_t dbReadURBNames(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadURBNames", kUrbNames, file, controlRecord, proc);
}

std::int32_t dbReadURBMultiZip(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadURBMultiZip", kUrbMultiZips, file, controlRecord, proc);
}

std::int32_t dbReadURBVariations(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadURBVariations", kUrbVariations, file, controlRecord, proc);
}

std::int32_t dbReadGenDelivery(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadGenDelivery", kGeneralDelivery, file, controlRecord, proc);
}

}  // namespace statecut
