#include "tables/tableload.h"

namespace statecut {

namespace {

constexpr TableLoad kPatterns[] = {
    {.table = TableId::kStreetPatterns, .logName = "SFH Pattern Table", .code = -1},
    {.table = TableId::kPobPatterns, .logName = "POB Pattern Table", .code = -1},
    {.table = TableId::kRrPatterns, .logName = "RR Pattern Table", .code = -1}};

}  // namespace

std::int32_t dbReadPatternTables(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadPatternTables", kPatterns, file, controlRecord, proc);
}

}  // namespace statecut
