#include "tables/rows.h"
#include "tables/tableload.h"

namespace statecut {

namespace {

using Ref = RefControlRec;

constexpr std::uint32_t kZipIndexBytes = 200000;
constexpr std::uint32_t kPatternBytes = 18;

constexpr TableInfo kZipData[] = {
    {kSlotZipData, "Zip Code Data", Ref::zipDataRba.at,
     counted(Ref::zipDataCount, ZipDataRow::size), -5},
    {kSlotZipMultiCity, "Zip Multi City Data", Ref::zipMultiCityListsRba.at,
     counted(Ref::zipMultiCityListsCount, 4), -5},
    {kSlotZipIndex, "Zip Code Index", Ref::zipIndexRba.at, fixedSize(kZipIndexBytes), -5}};

// "Unique Zips" in the size line, "Unique ZIPs" in the reports; both are meant.
constexpr TableInfo kUniqueZips[] = {{kSlotUniqueZips, "Unique Zips", Ref::uniqueZipsRba.at,
                                      counted(Ref::uniqueZipsCount, 12), -6, Reports::kErrors,
                                      "Unique ZIPs", "Unique ZIPs"}};

constexpr TableInfo kMultiZip[] = {{kSlotMultiZip, "Multi Zip Table", Ref::multiZipListsRba.at,
                                    counted(Ref::multiZipListsCount, 4), -16}};

// One of the tables that a cut drops, and reads itself to select by.
template <std::size_t RbaAt, std::size_t CountAt>
constexpr TableInfo bytesTable(SlotNumber slot, const char* name, Num<RbaAt, 4>,
                               Num<CountAt, 4> count, std::uint32_t recordSize) {
  return {.slot = slot,
          .logName = name,
          .rbaAt = RbaAt,
          .size = counted(count, recordSize),
          .code = -17,
          .absentAtZero = true};
}

constexpr TableInfo kBytes[] = {
    bytesTable(kSlotZipBytes, "Zip Bytes Table", Ref::zipBytesRba, Ref::zipDataCount,
               ZipBytesRow::size),
    bytesTable(kSlotSfhMultiZipBytes, "Multi-Zip SFH Bytes Table", Ref::sfhMultiZipBytesRba,
               Ref::sfhMultiZipBytesCount, MultiZipBytesLong::size),
    bytesTable(kSlotPobMultiZipBytes, "Multi-Zip POB Bytes Table", Ref::pobMultiZipBytesRba,
               Ref::pobMultiZipBytesCount, MultiZipBytesLong::size),
    bytesTable(kSlotRrMultiZipBytes, "Multi-Zip RR Bytes Table", Ref::rrMultiZipBytesRba,
               Ref::rrMultiZipBytesCount, MultiZipBytesLong::size)};

constexpr TableInfo kScfs[] = {
    {kSlotScfs, "SCF Table", Ref::scfsRba.at, counted(Ref::scfsCount, 4), -15}};

constexpr TableInfo kPatterns[] = {
    {kSlotSfhPatterns, "SFH Pattern Table", Ref::streetPatternsRba.at,
     counted(Ref::streetPatternsCount, kPatternBytes), -1},
    {kSlotPobPatterns, "POB Pattern Table", Ref::pobPatternsRba.at,
     counted(Ref::pobPatternsCount, kPatternBytes), -1},
    {kSlotRrPatterns, "RR Pattern Table", Ref::rrPatternsRba.at,
     counted(Ref::rrPatternsCount, kPatternBytes), -1}};

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

std::int32_t dbReadPatternTables(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  return loadTables("dbReadPatternTables", kPatterns, file, controlRecord, proc);
}

}  // namespace statecut
