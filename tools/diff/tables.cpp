#include "diff/tables.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "tables/rows.h"

namespace statecut::diff {

namespace {

bool sameBytes(std::span<const unsigned char> a, std::span<const unsigned char> b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size()) == 0);
}

// Every RBA counts as there or not.
template <typename RowType, typename... Rbas>
bool sameRows(const Release& before, const Release& after, TableId id, Rbas... rbas) {
  const auto was = before.records<RowType>(id), is = after.records<RowType>(id);
  if (was.size() != is.size()) return false;
  const auto plain = [&](RowType row) {
    (row.set(rbas, row.get(rbas) != 0 ? 1 : 0), ...);
    return row.bytes;
  };
  for (std::size_t i = 0; i < was.size(); ++i)
    if (plain(was[i]) != plain(is[i])) return false;
  return true;
}

bool sameTable(const Release& before, const Release& after, TableId id) {
  if (id == TableId::ZipData)
    return sameRows<ZipDataRow>(before, after, id, ZipDataRow::sfhRba, ZipDataRow::pobRba,
                                ZipDataRow::rrRba);
  if (id == TableId::CityMultiZipRbas)
    return sameRows<CityMultiZipRow>(before, after, id, CityMultiZipRow::sfhRba,
                                     CityMultiZipRow::pobRba, CityMultiZipRow::rrRba);
  if (id == TableId::FinMultiZipRbas)
    return sameRows<FinMultiZipRow>(before, after, id, FinMultiZipRow::rba);
  auto was = before.table(id), is = after.table(id);
  if (before.isCut() != after.isCut() && before.place(id).count == after.place(id).count) {
    // A cut carries the first half of some tables.
    const std::size_t common = std::min(was.size(), is.size());
    was = was.first(common);
    is = is.first(common);
  }
  return sameBytes(was, is);
}

// The stamps, the flag of a cut, where things lie and how long the areas of a range file are: these
// follow from the partitions.
bool follows(std::string_view field) {
  return field == "buildTimeStamp" || field == "typeFlags" || field == "stateCutTimeStamp" ||
         field.ends_with("Rba") || field.ends_with("Start") || field.ends_with("ZipBytes");
}

template <typename Record>
void compareRecords(const char* name, const Record& was, const Record& is, Changes& changes) {
  bool same = true;
  forEachField<Record>([&](const auto& field) {
    if (follows(field.name)) return;
    same = same &&
           std::memcmp(was.bytes.data() + field.at, is.bytes.data() + field.at, field.width) == 0;
  });
  if (!same) changes.tables.push_back({name, 0, 0, Record::size, Record::size});
}

}  // namespace

void compareTables(const Comparison& comparison, Changes& changes) {
  const Release &before = comparison.before, &after = comparison.after;
  compareRecords("Control Record", before.ref(), after.ref(), changes);
  if (changes.partitionsCompared)
    compareRecords("Range Control Record", before.rng(), after.rng(), changes);
  for (std::size_t i = 0; i < format::kTables; ++i) {
    const auto id = static_cast<TableId>(i);
    const TablePlace &was = before.place(id), &is = after.place(id);
    const format::TableDef& def = format::tableDef(id);
    if (before.isCut() != after.isCut() && def.cutWidth == 0) continue;
    if (!was.carried && !is.carried) continue;
    if (was.carried == is.carried && sameTable(before, after, id)) continue;
    changes.tables.push_back({def.name, was.count, is.count, was.bytes, is.bytes});
  }
}

}  // namespace statecut::diff
