// What the city data and the ZIP data say of each other.

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "tables/rows.h"
#include "verify/pairrules.h"

namespace statecut::verify {

namespace {

// Calls visit(city) for the cities of a ZIP record that lie inside the city data.
template <typename Visit>
void forEachCityOf(const ZipDataRow& zip, std::span<const unsigned char> lists, Visit&& visit) {
  const std::uint32_t count = zip.get(ZipDataRow::cityKeysCount);
  if (count == 1) return visit(std::uint32_t{zip.get(ZipDataRow::cityKey)});
  const std::uint64_t first = zip.get(ZipDataRow::cityKeysIndex);
  for (std::uint64_t i = first; i < first + count; ++i) visit(number16(lists, i));
}

// How many ZIP records lead to each city; one that lists it twice is one.
void checkZipCounts(const Pair& pair, Report& report) {
  const auto zips = pair.records<ZipDataRow>(TableId::ZipData);
  const auto cities = pair.records<CityDataRow>(TableId::CityData);
  const auto lists = pair.table(TableId::ZipMultiCityLists);
  std::vector<std::uint32_t> served(cities.size());
  std::vector<std::size_t> last(cities.size());  // the record that was counted last
  for (std::size_t key = 1; key < zips.size(); ++key)
    forEachCityOf(zips[key], lists, [&](std::uint32_t city) {
      if (city >= served.size() || last[city] == key) return;
      last[city] = key;
      ++served[city];
    });
  for (std::size_t city = 1; city < cities.size(); ++city) {
    const std::uint32_t count = cities[city].get(CityDataRow::zipCount);
    if (count != served[city])
      report.add(RuleId::CityZips, File::Reference, static_cast<std::int64_t>(city),
                 cities.offset(city) + CityDataRow::zipCount.at, [&] {
                   return "zipCount " + std::to_string(count) + ", " +
                          std::to_string(served[city]) + " ZIP records lead to the city";
                 });
  }
}

// The states of the names of each city.
std::vector<std::set<std::uint32_t>> cityStates(const Pair& pair) {
  const auto names = pair.records<CityNameRow>(TableId::CityNames);
  std::vector<std::set<std::uint32_t>> states(pair.records<CityDataRow>(TableId::CityData).size());
  for (std::size_t i = 1; i < names.size(); ++i)
    if (const std::uint32_t city = names[i].get(CityNameRow::cityKey); city < states.size())
      states[city].insert(le::get<2>(names[i].bytes.data() + CityNameRow::state.at));
  return states;
}

void checkZipStates(const Pair& pair, Report& report) {
  const auto states = cityStates(pair);
  const auto zips = pair.records<ZipDataRow>(TableId::ZipData);
  const auto sizes = pair.records<ZipBytesRow>(TableId::ZipBytes);
  const auto lists = pair.table(TableId::ZipMultiCityLists);
  for (std::size_t key = 1; key < std::min(zips.size(), sizes.size()); ++key) {
    const std::uint32_t state = le::get<2>(sizes[key].bytes.data() + ZipBytesRow::state.at);
    bool known = false;
    bool found = false;
    forEachCityOf(zips[key], lists, [&](std::uint32_t city) {
      if (city >= states.size()) return;
      known = known || !states[city].empty();
      found = found || states[city].count(state) != 0;
    });
    if (known && !found)
      report.add(RuleId::ZipState, File::Reference, static_cast<std::int64_t>(key),
                 sizes.offset(key), "none of the cities of the ZIP code is in its state");
  }
}

}  // namespace

void checkCityFinance(const Pair& pair, Report& report) {
  const auto cities = pair.records<CityDataRow>(TableId::CityData);
  for (std::size_t city = 1; city < cities.size(); ++city) {
    const std::uint32_t flag = cities[city].get(CityDataRow::finMultiZipFlag);
    const std::uint32_t key = cities[city].get(CityDataRow::finMultiZipKey);
    if (flag > 1 || (flag == 1) != (key != 0))
      report.add(RuleId::CityFinance, File::Reference, static_cast<std::int64_t>(city),
                 cities.offset(city) + CityDataRow::finMultiZipFlag.at, [&] {
                   return "finance flag " + std::to_string(flag) + " with finance key " +
                          std::to_string(key);
                 });
  }
}

void checkCityZips(const Pair& pair, Report& report) {
  // A list outside its table is a finding of its own.
  if (report.count(RuleId::ZipCities) > 0 || report.count(RuleId::CityKey) > 0) return;
  for (const TableId id : {TableId::CityData, TableId::ZipData, TableId::ZipMultiCityLists})
    if (!pair.usable(id)) return;
  checkZipCounts(pair, report);
  if (report.count(RuleId::ZipRecord) == 0) checkZipStates(pair, report);
}

}  // namespace statecut::verify
