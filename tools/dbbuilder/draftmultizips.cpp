#include <algorithm>

#include "base/le.h"
#include "dbbuilder/draft.h"

namespace statecut::builder {

namespace {

using Keys = std::vector<std::uint16_t>;

// The lists begin in the second half of the entries (see referenceFile), and keys are 16-bit.
constexpr std::size_t mostListed = 32000;

// Remembers a list that will be stored; false when there is no room for it.
bool wantList(Draft& draft, const Keys& zips, std::size_t& listed) {
  if (draft.lists.count(zips) != 0) return true;
  if (listed + zips.size() > mostListed) return false;
  listed += zips.size();
  draft.lists.emplace(zips, 0);
  return true;
}

Keys firstOf(const Keys& zips, std::size_t count) {
  return {zips.begin(), zips.begin() + static_cast<std::ptrdiff_t>(count)};
}

struct CityLists {
  std::uint16_t city = 0;
  Keys sfh, pob, rr;  // shorter than 2 entries = no such entry
};

// Cities of several ZIP codes. Some share the SFH list of the city before them, some have no PO
// Box or rural route entry, some no record at all.
std::vector<CityLists> chooseCityLists(Draft& draft, std::size_t& listed) {
  Random random = draft.random(20);
  std::vector<CityLists> chosen;
  std::size_t number = 0;
  for (std::size_t i = 1; i < draft.cities.size(); ++i) {
    const Keys& zips = draft.cities[i].zips;
    if (zips.size() < 2) continue;
    const std::size_t turn = number++;
    if (turn % 17 == 16) continue;
    CityLists lists{static_cast<std::uint16_t>(i), zips, {}, {}};
    const bool sameState =
        !chosen.empty() && draft.cities[chosen.back().city].state == draft.cities[i].state;
    if (turn % 4 == 1 && sameState) lists.sfh = chosen.back().sfh;
    if (turn % 9 == 8) lists.sfh.clear();
    const auto most = static_cast<std::uint32_t>(zips.size());
    if (random.percent(75)) lists.pob = firstOf(zips, random.between(2, most));
    if (random.percent(50)) lists.rr = firstOf(zips, random.between(2, most));
    for (Keys* keys : {&lists.sfh, &lists.pob, &lists.rr})
      if (!keys->empty() && !wantList(draft, *keys, listed)) keys->clear();
    chosen.push_back(std::move(lists));
  }
  return chosen;
}

// The list of each finance record: the ZIP codes of the area, or, every third time that it can be,
// the list of a city in it, whose partition the area then shares.
std::vector<Keys> chooseAreaLists(Draft& draft, const std::vector<CityLists>& cities,
                                  std::size_t& listed) {
  std::map<std::uint16_t, const Keys*> sfhOfCity;
  for (const CityLists& city : cities)
    if (!city.sfh.empty()) sfhOfCity.emplace(city.city, &city.sfh);
  std::vector<Keys> areas(draft.model.finMultiZip.size());
  for (std::size_t zip = 1; zip < draft.model.zips.size(); ++zip)
    areas[draft.model.zips[zip].finKey].push_back(static_cast<std::uint16_t>(zip));
  areas[0].clear();
  std::size_t sharable = 0;
  for (std::size_t i = 1; i < areas.size(); ++i) {
    Keys& area = areas[i];
    const auto shared = sfhOfCity.find(draft.citiesOfZip[area[0]][0]);
    if (shared != sfhOfCity.end() && sharable++ % 3 == 0) area = *shared->second;
    if (area.size() < 2 || !wantList(draft, area, listed)) area.resize(1);
  }
  return areas;
}

// Gives the lists their keys: start indexes in the second half of the entries, in the order of
// the lists, and each list once more at twice its start (see referenceFile).
void placeLists(Draft& draft, std::size_t listed) {
  Model& model = draft.model;
  const std::size_t half = std::max<std::size_t>(listed, 1);
  Keys room(4 * half);
  std::size_t next = half;
  for (auto& [zips, key] : draft.lists) {
    key = static_cast<std::uint16_t>(next);
    std::copy(zips.begin(), zips.end(), room.begin() + static_cast<std::ptrdiff_t>(next));
    std::copy(zips.begin(), zips.end(), room.begin() + static_cast<std::ptrdiff_t>(2 * next));
    next += zips.size();
  }
  const auto middle = room.begin() + static_cast<std::ptrdiff_t>(2 * half);
  model.multiZipLists.assign(room.begin(), middle);
  model.multiZipListsTail.assign(middle, room.end());
}

MultiZipRef refTo(const Draft& draft, const Keys& zips) {
  if (zips.size() < 2) return {};
  return {static_cast<std::uint16_t>(zips.size()), draft.lists.at(zips), {}};
}

}  // namespace

void addFinanceAreas(Draft& draft) {
  constexpr std::size_t mostAreasOfCity = 16;
  constexpr std::size_t largeDatabase = 2000;
  const std::size_t areaEvery = draft.places.size() < largeDatabase ? 2 : 5;
  Random random = draft.random(21);
  Model& model = draft.model;
  model.finMultiZip.push_back({});
  for (std::size_t first = 1, group = 0; first < model.zips.size(); ++group) {
    const std::uint32_t size = group % 8 == 7 ? 1 : random.between(2, 6);
    std::size_t end = std::min(first + size, model.zips.size());
    while (draft.places[end - 1].state != draft.places[first].state) --end;
    if (group % areaEvery == 0 && model.finMultiZip.size() < 65535) {
      const auto key = static_cast<std::uint16_t>(model.finMultiZip.size());
      model.finMultiZip.push_back({});
      for (std::size_t zip = first; zip < end; ++zip) model.zips[zip].finKey = key;
    }
    first = end;
  }
  model.cityFinanceLists.push_back(0);
  for (std::size_t i = 1; i < draft.cities.size(); ++i) {
    Keys areas;
    for (const std::uint16_t zip : draft.cities[i].zips)
      if (const std::uint16_t key = model.zips[zip].finKey; key != 0) areas.push_back(key);
    areas.erase(std::unique(areas.begin(), areas.end()), areas.end());
    if (areas.empty()) continue;
    areas.resize(std::min(areas.size(), mostAreasOfCity));
    CityData& city = model.cityData[i];
    city.finFlag = 1;
    city.finKey = areas[0];
    le::put<2>(city.other20.data() + 4, static_cast<std::uint32_t>(model.cityFinanceLists.size()));
    le::put<2>(city.other20.data() + 6, static_cast<std::uint32_t>(areas.size()));
    model.cityFinanceLists.insert(model.cityFinanceLists.end(), areas.begin(), areas.end());
  }
}

void addMultiZips(Draft& draft) {
  Model& model = draft.model;
  std::size_t listed = 0;
  const std::vector<CityLists> cities = chooseCityLists(draft, listed);
  const std::vector<Keys> areas = chooseAreaLists(draft, cities, listed);
  placeLists(draft, listed);
  model.cityMultiZip.push_back({});
  for (const CityLists& city : cities) {
    model.cityData[city.city].multiZipRbaKey =
        static_cast<std::uint16_t>(model.cityMultiZip.size());
    model.cityMultiZip.push_back(
        {refTo(draft, city.sfh), 0, refTo(draft, city.pob), refTo(draft, city.rr)});
  }
  for (std::size_t i = 1; i < areas.size(); ++i) {
    model.finMultiZip[i] = refTo(draft, areas[i]);
    if (areas[i].size() < 2) model.finMultiZip[i].zipCount = 1;
  }
}

}  // namespace statecut::builder
