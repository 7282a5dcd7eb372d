// The ZIP index, city data and the three rewritten city tables.

#include <cstring>
#include <string>
#include <vector>

#include "tables/rows.h"
#include "verify/cutchecks.h"
#include "verify/cutrecords.h"

namespace statecut::verify {

namespace {

void checkCityData(const CutCase& cut, Report& report) {
  const auto records = cut.cut.records<CityDataRow>(TableId::CityData);
  const auto originals = cut.source.records<CityDataRow>(TableId::CityData);
  const auto renumbered = [&](std::uint32_t link) {
    return link < cut.nameMap.size() ? cut.nameMap[link] : 0;
  };
  for (std::size_t city = 0; city < std::min(records.size(), originals.size()); ++city) {
    CityDataRow expected = originals[city];
    const bool kept = cut.cityKept[city];
    expected.set(CityDataRow::nameUsps, kept ? renumbered(expected.get(CityDataRow::nameUsps)) : 0);
    expected.set(CityDataRow::nameStandard,
                 kept ? renumbered(expected.get(CityDataRow::nameStandard)) : 0);
    compareRecord(records[city], expected, RuleId::CutCityData, city, records.offset(city), report);
  }
}

// A blank record, then the kept ones.
template <typename RowType>
void checkKept(const CutCase& cut, TableId id, const std::vector<std::uint32_t>& map, RuleId ruleId,
               Report& report) {
  const auto records = cut.cut.records<RowType>(id);
  const auto originals = cut.source.records<RowType>(id);
  if (records.size() > 0)
    compareRecord(records[0], RowType{}, ruleId, 0, records.offset(0), report);
  for (std::size_t i = 0; i < map.size(); ++i)
    if (map[i] != 0 && map[i] < records.size())
      compareRecord(records[map[i]], originals[i], ruleId, map[i], records.offset(map[i]), report);
}

bool lessBytes(const CityByStateRow* a, const CityByStateRow* b) { return a->bytes < b->bytes; }

// The records of a table that `keep` takes, sorted by their bytes.
template <typename Keep>
std::vector<const CityByStateRow*> sortedRecords(const Records<CityByStateRow>& records,
                                                 Keep&& keep) {
  std::vector<const CityByStateRow*> sorted;
  for (std::size_t i = 0; i < records.size(); ++i)
    if (keep(records[i])) sorted.push_back(&records[i]);
  std::sort(sorted.begin(), sorted.end(), lessBytes);
  return sorted;
}

// How often a state was named does not matter: a state named twice has its records twice, and
// those that then find no room are missing.
void checkByState(const CutCase& cut, Report& report) {
  const auto records = cut.cut.records<CityByStateRow>(TableId::CityNamesByState);
  const auto originals = cut.source.records<CityByStateRow>(TableId::CityNamesByState);
  if (!cut.cut.usable(TableId::CityNamesByState)) return;
  const auto expected = sortedRecords(originals, [&](const CityByStateRow& row) {
    return cut.stateChosen[stateIndex(row.get(CityByStateRow::state).data())];
  });
  const auto found = sortedRecords(
      records, [](const CityByStateRow& row) { return row.bytes != CityByStateRow{}.bytes; });
  bool complete = records.size() >= expected.size();
  for (std::size_t i = 0, e = 0; i < found.size(); ++i) {
    while (e < expected.size() && lessBytes(expected[e], found[i])) ++e;
    if (e < expected.size() && expected[e]->bytes == found[i]->bytes) {
      const std::size_t copies = static_cast<std::size_t>(
          std::upper_bound(expected.begin(), expected.end(), found[i], lessBytes) -
          std::lower_bound(expected.begin(), expected.end(), found[i], lessBytes));
      if (i >= copies && found[i - copies]->bytes == found[i]->bytes) complete = false;
      continue;
    }
    const auto record = static_cast<std::size_t>(found[i] - &records[0]);
    report.add(RuleId::CutByState, File::Reference, static_cast<std::int64_t>(record),
               records.offset(record), "the source has no such record of the states");
    complete = false;
  }
  if (!complete) return;
  for (const CityByStateRow* row : expected)
    if (!std::binary_search(found.begin(), found.end(), row, lessBytes)) {
      const auto record = static_cast<std::size_t>(row - &originals[0]);
      report.add(RuleId::CutByState, File::Reference, kNoRecord,
                 cut.cut.place(TableId::CityNamesByState).rba,
                 [&] { return "record " + std::to_string(record) + " of the source is missing"; });
    }
}

}  // namespace

void checkCutZips(const CutCase& cut, Report& report) {
  if (!cut.cut.usable(TableId::ZipIndex)) return;
  const auto index = cut.cut.table(TableId::ZipIndex);
  for (std::uint32_t zip = 0; zip < kZipIndexEntries; ++zip) {
    const std::uint32_t key = number16(index, zip);
    if (key != cut.zipIndex[zip])
      report.add(RuleId::CutZips, File::Reference, zip,
                 cut.cut.place(TableId::ZipIndex).rba + zip * 2ULL, [&] {
                   return "ZIP key " + std::to_string(key) + ", the source leads to " +
                          std::to_string(cut.zipIndex[zip]);
                 });
  }
}

void checkCutCities(const CutCase& cut, Report& report) {
  checkCityData(cut, report);
  checkKept<CityNameRow>(cut, TableId::CityNames, cut.nameMap, RuleId::CutNames, report);
  checkByState(cut, report);
  checkKept<CityPhoneticRow>(cut, TableId::CityPhonetics, cut.phoneticMap, RuleId::CutPhonetics,
                             report);
}

}  // namespace statecut::verify
