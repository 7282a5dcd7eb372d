#include <algorithm>
#include <map>
#include <unordered_set>

#include "diff/differences.h"
#include "diff/places.h"
#include "format/names.h"
#include "tables/rows.h"

namespace statecut::diff {

namespace {

using ZipsOfCity = std::map<std::string_view, std::vector<std::uint32_t>>;

std::vector<std::string_view> citiesOf(const Comparison& comparison, const Release& release) {
  std::vector<std::string_view> cities;
  const std::size_t count = release.records<CityDataRow>(TableId::CityData).size();
  for (std::uint32_t key = 1; key < count; ++key) {
    const std::string_view name = release.cityName(key);
    if (!name.empty() && comparison.wants(name.substr(0, 2))) cities.push_back(name);
  }
  return cities;
}

// The ZIP codes of some cities, ascending.
ZipsOfCity zipsOf(const Release& release, const std::vector<std::string_view>& cities) {
  ZipsOfCity zips;
  for (const std::string_view city : cities) zips[city];
  for (std::uint32_t zip = 0; zip < format::kZipIndexEntries && !zips.empty(); ++zip) {
    const std::uint32_t key = release.zipKey(zip);
    if (key == 0) continue;
    for (const std::string_view city : release.citiesOf(key))
      if (const auto found = zips.find(city);
          found != zips.end() && (found->second.empty() || found->second.back() != zip))
        found->second.push_back(zip);
  }
  return zips;
}

// The new city of the same state with the most of these ZIP codes; empty: none has enough.
std::string_view heir(std::string_view state, const std::vector<std::uint32_t>& zips,
                      const ZipsOfCity& candidates) {
  std::string_view best;
  std::size_t most = 0;
  for (const auto& [city, its] : candidates) {
    if (city.substr(0, 2) != state) continue;
    std::vector<std::uint32_t> common;
    std::set_intersection(zips.begin(), zips.end(), its.begin(), its.end(),
                          std::back_inserter(common));
    if (2 * common.size() <= std::max(zips.size(), its.size()) || common.size() <= most) continue;
    best = city;
    most = common.size();
  }
  return best;
}

void findRenamed(Comparison& comparison, Changes& changes) {
  Names& cities = changes.cities;
  ZipsOfCity candidates = zipsOf(comparison.after, cities.added);
  for (const auto& [city, zips] : zipsOf(comparison.before, cities.dropped)) {
    const std::string_view next = heir(city.substr(0, 2), zips, candidates);
    if (next.empty()) continue;
    candidates.erase(next);
    comparison.renamed[city] = next;
    changes.citiesRenamed.push_back({city, next});
    cities.dropped.erase(std::find(cities.dropped.begin(), cities.dropped.end(), city));
    cities.added.erase(std::find(cities.added.begin(), cities.added.end(), next));
  }
}

std::vector<OtherName> otherNamesOf(const Comparison& comparison, const Release& release,
                                    bool isBefore) {
  std::vector<OtherName> names;
  const auto rows = release.records<CityNameRow>(TableId::CityNames);
  const auto cities = release.records<CityDataRow>(TableId::CityData);
  (void)format::forEachName(format::kCityNameType, release.table(TableId::CityNames),
                            [&](std::uint64_t position, std::string_view name) {
                              if (!comparison.wants(name.substr(0, 2))) return;
                              const std::uint32_t city = rows[position].get(CityNameRow::cityKey);
                              const bool known = city != 0 && city < cities.size();
                              if (known && cities[city].get(CityDataRow::nameUsps) == position)
                                return;
                              const std::string_view of = release.cityName(city);
                              names.push_back({name, isBefore ? comparison.nameAfter(of) : of});
                            });
  return names;
}

}  // namespace

bool Comparison::wants(std::string_view state) const {
  return states.empty() || std::find(states.begin(), states.end(), state) != states.end();
}

std::string_view Comparison::nameAfter(std::string_view city) const {
  const auto found = renamed.find(city);
  return found == renamed.end() ? city : found->second;
}

void compareCities(Comparison& comparison, Changes& changes) {
  auto before = citiesOf(comparison, comparison.before);
  auto after = citiesOf(comparison, comparison.after);
  differences(before, after, changes.cities.added, changes.cities.dropped);
  if (!changes.cities.added.empty() && !changes.cities.dropped.empty())
    findRenamed(comparison, changes);
  auto namesBefore = otherNamesOf(comparison, comparison.before, true);
  auto namesAfter = otherNamesOf(comparison, comparison.after, false);
  differences(namesBefore, namesAfter, changes.otherNamesAdded, changes.otherNamesDropped);
}

}  // namespace statecut::diff
