// Lists that records lead to: each entry belongs to one list, and every list to a record.

#include <algorithm>
#include <string>
#include <vector>

#include "format/names.h"
#include "tables/rows.h"
#include "verify/pairrules.h"
#include "verify/sharedentries.h"
#include "verify/tiling.h"

namespace statecut::verify {

namespace {

using M = CityMultiZipRow;

// The lists of ZIP keys of the multi-ZIP records, as positions in their table. An entry of RBA 0 is
// none of a cut, but may have a list.
struct MultiZipLists {
  Tiling inUse;
  Tiling all;
};

MultiZipLists multiZipLists(const Pair& pair) {
  MultiZipLists lists;
  const std::uint64_t end = pair.place(TableId::MultiZipLists).count;
  forEachSharedEntry(pair, [&](const SharedEntry& entry) {
    if (entry.zipCount < 2) return;
    const std::uint64_t behind = std::uint64_t{entry.key} + entry.zipCount;
    lists.all.add(entry.key, std::min(behind, end), entry.offset);
    if (entry.rba != 0) lists.inUse.add(entry.key, behind, entry.offset);
  });
  return lists;
}

// Where the ambiguous list of a name ends, 0 for a list that runs out of its table.
std::uint64_t listEnd(std::span<const unsigned char> lists, std::uint64_t at) {
  if (at + 2 > lists.size()) return 0;
  std::uint32_t entries = le::get<2>(lists.data() + at);
  for (at += 2; entries > 0; --entries) {
    if (at + 5 > lists.size()) return 0;
    at += 5 + 2ULL * lists[at + 4];
  }
  return at > lists.size() ? 0 : at;
}

void checkAmbiguousLists(const Pair& pair, unsigned type, TableId listTable, Report& report) {
  const TableId table = tableOfType(type);
  if (!pair.usable(table) || !pair.usable(listTable)) return;
  const auto bytes = pair.table(table);
  const auto lists = pair.table(listTable);
  Tiling tiling;
  forEachName(type, bytes, [&](std::uint64_t at, std::string_view) {
    const std::uint32_t value = le::get<4>(bytes.data() + at);
    if (bytes[at + 4] > 127) tiling.add(value, listEnd(lists, value), at);
  });
  tiling.check(
      0, lists.size(),
      [&](const Tiling::Piece& piece) {
        report.add(
            RuleId::StreetLists, File::Reference, kNoRecord, pair.place(table).rba + piece.owner,
            "the ambiguous list at " + std::to_string(piece.begin) + " begins inside another one");
      },
      [&](std::uint64_t begin, std::uint64_t end) {
        report.add(RuleId::StreetLists, File::Reference, kNoRecord,
                   pair.place(listTable).rba + begin,
                   std::to_string(end - begin) + " bytes belong to no ambiguous list");
      });
}

// By record: how many cities lead to it.
void checkOwners(const Pair& pair, Report& report) {
  const auto cities = pair.records<CityDataRow>(TableId::CityData);
  const auto records = pair.records<M>(TableId::CityMultiZipRbas);
  std::vector<bool> owned(records.size());
  for (std::size_t city = 1; city < cities.size(); ++city) {
    const std::uint32_t key = cities[city].get(CityDataRow::multiZipRbaKey);
    if (key == 0 || key >= records.size()) continue;
    if (owned[key])
      report.add(RuleId::MultiZipOwner, File::Reference, static_cast<std::int64_t>(city),
                 cities.offset(city) + CityDataRow::multiZipRbaKey.at,
                 "another city has this multi-ZIP record");
    owned[key] = true;
  }
  for (std::size_t key = 1; key < records.size(); ++key)
    if (!owned[key])
      report.add(RuleId::MultiZipOwner, File::Reference, static_cast<std::int64_t>(key),
                 records.offset(key), "no city leads to this multi-ZIP record");
}

}  // namespace

void checkMultiZipLists(const Pair& pair, Report& report) {
  // What is wrong with a link is a finding of its own.
  for (const RuleId id : {RuleId::MultiZipLink, RuleId::MultiZipKey, RuleId::MultiZipLists})
    if (report.count(id) > 0) return;
  for (const TableId id : {TableId::CityMultiZipRbas, TableId::FinMultiZipRbas,
                           TableId::MultiZipLists, TableId::CityData})
    if (!pair.usable(id)) return;
  checkOwners(pair, report);
  MultiZipLists lists = multiZipLists(pair);
  const auto keys = pair.table(TableId::MultiZipLists);
  const std::uint64_t count = pair.place(TableId::MultiZipLists).count;
  lists.inUse.check(
      0, count,
      [&](const Tiling::Piece& piece) {
        report.add(RuleId::MultiZipEntries, File::Reference, kNoRecord, piece.owner,
                   "the list of multi-ZIP key " + std::to_string(piece.begin) +
                       " begins inside another one");
      },
      [](std::uint64_t, std::uint64_t) {});
  lists.all.check(
      0, count, [](const Tiling::Piece&) {},
      [&](std::uint64_t begin, std::uint64_t end) {
        while (begin < end && number16(keys, begin) == 0) ++begin;
        if (begin < end)
          report.add(RuleId::MultiZipEntries, File::Reference, static_cast<std::int64_t>(begin),
                     pair.place(TableId::MultiZipLists).rba + 2 * begin,
                     "a ZIP key that no list holds");
      });
}

void checkStreetLists(const Pair& pair, Report& report) {
  if (report.count(RuleId::NamePacking) > 0 || report.count(RuleId::StreetLinks) > 0) return;
  checkAmbiguousLists(pair, 3, TableId::StreetStandardAmbData, report);
  checkAmbiguousLists(pair, 4, TableId::StreetPhoneticAmbData, report);
}

}  // namespace statecut::verify
