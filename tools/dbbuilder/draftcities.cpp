#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "base/le.h"
#include "dbbuilder/draft.h"
#include "dbbuilder/words.h"

namespace statecut::builder {

namespace {

using StateAndName = std::pair<std::string, std::string>;

constexpr Byte uspsName = 1;
constexpr Byte otherName = 2;
constexpr std::size_t maxName = 28;

// Places that have no ZIP code of their own.
void addUnservedPlaces(std::map<StateAndName, std::uint16_t>& keys) {
  constexpr std::size_t every = 40;
  constexpr std::size_t mostCities = 65000;
  const std::string suffix = " HEIGHTS";
  std::vector<StateAndName> added;
  std::size_t i = 0;
  for (const auto& [place, key] : keys)
    if (i++ % every == 0 && place.second.size() + suffix.size() <= maxName)
      added.emplace_back(place.first, place.second + suffix);
  for (const StateAndName& place : added)
    if (keys.size() < mostCities) keys.emplace(place, 0);
}

// The nearest other city of the same state in ZIP code order; 0 when there is none in reach.
std::uint16_t neighbour(const Draft& draft, std::size_t zip, std::size_t step) {
  constexpr std::size_t reach = 12;
  const auto& own = draft.citiesOfZip[zip];
  for (std::size_t i = zip + step; i < draft.places.size() && i < zip + reach; ++i) {
    if (draft.places[i].state != draft.places[zip].state) break;
    const std::uint16_t city = draft.citiesOfZip[i][0];
    if (std::find(own.begin(), own.end(), city) == own.end()) return city;
  }
  return 0;
}

struct NameEntry {
  std::string state, name;
  std::uint16_t city;
  Byte value;
};

std::vector<NameEntry> allNames(const Draft& draft) {
  std::set<StateAndName> taken;
  std::vector<NameEntry> names;
  for (std::size_t i = 1; i < draft.cities.size(); ++i) {
    const DraftCity& city = draft.cities[i];
    taken.emplace(city.state, city.name);
    names.push_back({city.state, city.name, static_cast<std::uint16_t>(i), uspsName});
  }
  for (std::size_t i = 1; i < draft.cities.size(); ++i) {
    const DraftCity& city = draft.cities[i];
    const std::optional<std::string> other = otherSpelling(city.name);
    if (other && taken.emplace(city.state, *other).second)
      names.push_back({city.state, *other, static_cast<std::uint16_t>(i), otherName});
  }
  std::sort(names.begin(), names.end(), [](const NameEntry& a, const NameEntry& b) {
    return std::tie(a.state, a.name) < std::tie(b.state, b.name);
  });
  return names;
}

void addNamesAndLinks(Draft& draft) {
  Model& model = draft.model;
  model.cityData.resize(draft.cities.size());
  model.cityNames.push_back({});
  for (NameEntry& entry : allNames(draft)) {
    const auto position = static_cast<std::uint32_t>(model.cityNames.size());
    CityData& city = model.cityData[entry.city];
    (entry.value == uspsName ? city.nameUsps : city.nameStandard) = position;
    model.cityNames.push_back(
        {entry.city, entry.value, std::move(entry.state), std::move(entry.name), {}});
  }
  for (CityData& city : model.cityData)
    if (city.nameStandard == 0) city.nameStandard = city.nameUsps;
}

void addPhonetics(Draft& draft) {
  constexpr std::size_t longestKey = 19;
  constexpr std::uint32_t mostNames = 255;
  struct Group {
    std::uint16_t city = 0;
    std::uint32_t names = 0;
  };
  std::map<StateAndName, Group> groups;
  for (std::size_t i = 1; i < draft.model.cityNames.size(); ++i) {
    const CityName& name = draft.model.cityNames[i];
    Group& group = groups[{name.state, phoneticKey(name.name, longestKey)}];
    if (group.names++ == 0) group.city = name.cityKey;
  }
  draft.model.cityPhonetics.push_back({});
  for (const auto& [key, group] : groups)
    draft.model.cityPhonetics.push_back({group.city,
                                         key.first,
                                         key.second,
                                         static_cast<Byte>(std::min(group.names, mostNames)),
                                         {}});
}

void addZipLists(Draft& draft) {
  Model& model = draft.model;
  model.cityZipLists.push_back({});
  for (std::size_t i = 1; i < draft.cities.size(); ++i) {
    const DraftCity& city = draft.cities[i];
    CityData& record = model.cityData[i];
    record.zipCount = static_cast<std::uint16_t>(city.zips.size());
    const auto start = static_cast<std::uint32_t>(model.cityZipLists.size());
    le::put<4>(record.other20.data(), city.zips.empty() ? 0 : start);
    for (const std::uint16_t zip : city.zips)
      model.cityZipLists.push_back({zip, draft.places[zip].zip});
  }
}

}  // namespace

void addCities(Draft& draft) {
  std::map<StateAndName, std::uint16_t> keys;
  for (std::size_t i = 1; i < draft.places.size(); ++i)
    keys.emplace(StateAndName(draft.places[i].state, draft.places[i].city), 0);
  addUnservedPlaces(keys);
  draft.cities.push_back({});
  for (auto& [place, key] : keys) {
    key = static_cast<std::uint16_t>(draft.cities.size());
    draft.cities.push_back({place.first, place.second, {}});
  }
  draft.citiesOfZip.resize(draft.places.size());
  for (std::size_t i = 1; i < draft.places.size(); ++i)
    draft.citiesOfZip[i].push_back(keys.at({draft.places[i].state, draft.places[i].city}));
  const std::size_t every = std::max(1U, draft.options.severalCitiesEvery);
  for (std::size_t i = every; i < draft.places.size(); i += every)
    for (std::size_t more = 0; more < 1 + i / every % 3 / 2; ++more)
      if (const std::uint16_t city = neighbour(draft, i, more + 1))
        draft.citiesOfZip[i].push_back(city);
  for (std::size_t i = 1; i < draft.places.size(); ++i)
    for (const std::uint16_t city : draft.citiesOfZip[i])
      draft.cities[city].zips.push_back(static_cast<std::uint16_t>(i));
}

void addCityTables(Draft& draft) {
  addNamesAndLinks(draft);
  addPhonetics(draft);
  addZipLists(draft);
}

}  // namespace statecut::builder
