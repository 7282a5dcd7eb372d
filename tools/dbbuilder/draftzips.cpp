#include <algorithm>

#include "base/le.h"
#include "dbbuilder/draft.h"

namespace statecut::builder {

namespace {

std::map<std::pair<std::string, std::string>, std::uint16_t> addCounties(Draft& draft) {
  std::map<std::pair<std::string, std::string>, std::uint16_t> keys;
  for (std::size_t i = 1; i < draft.places.size(); ++i)
    if (!draft.places[i].county.empty())
      keys.emplace(std::pair(draft.places[i].state, draft.places[i].county), 0);
  draft.model.counties.push_back({});
  for (auto& [place, key] : keys) {
    key = static_cast<std::uint16_t>(draft.model.counties.size());
    constexpr std::size_t longest = 27;
    draft.model.counties.push_back({place.first, key, place.second.substr(0, longest)});
  }
  return keys;
}

void addScfs(Draft& draft) {
  std::map<std::uint16_t, std::string> states;
  for (std::size_t i = 1; i < draft.places.size(); ++i)
    states.emplace(zipPrefix(draft.places[i].zip), draft.places[i].state);
  draft.model.scfs.push_back({});
  for (const auto& [prefix, state] : states) draft.model.scfs.push_back({prefix, state});
}

void addCityKeys(Draft& draft, std::size_t zip, ZipRecord& record) {
  const std::vector<std::uint16_t>& cities = draft.citiesOfZip[zip];
  record.cityKey = cities[0];
  record.cityKeysCount = static_cast<Byte>(cities.size());
  if (cities.size() == 1) return;
  std::vector<std::uint16_t>& keys = draft.model.cityKeysOfZips;
  record.cityKeysIndex = static_cast<std::uint32_t>(keys.size());
  keys.insert(keys.end(), cities.begin(), cities.end());
}

// ZIP codes of a single firm.
void addUniqueZips(Draft& draft) {
  constexpr std::size_t every = 37;
  Random random = draft.random(11);
  Model& model = draft.model;
  model.uniqueZips.push_back({});
  std::uint32_t firmOffset = 0;
  std::size_t firm = 0;
  for (std::size_t i = 3; i < model.zips.size(); i += every) {
    model.uniqueZips.push_back(
        {model.zips[i].zip, firmOffset, static_cast<std::uint16_t>(random.below(10000)), 1});
    if (firm + 1 < model.firmNames.size())
      firmOffset += static_cast<std::uint32_t>(model.firmNames[firm++].size() + 1);
  }
}

}  // namespace

void addZipTables(Draft& draft) {
  const auto counties = addCounties(draft);
  addScfs(draft);
  Model& model = draft.model;
  Random random = draft.random(10);
  model.cityKeysOfZips.push_back(0);
  model.zips.push_back({});
  model.zipBytes.push_back({});
  for (std::size_t i = 1; i < draft.places.size(); ++i) {
    const Place& place = draft.places[i];
    ZipRecord record;
    record.zip = place.zip;
    const auto county = counties.find({place.state, place.county});
    record.other4 = county == counties.end() ? 0 : county->second;
    le::put<2>(record.other20.data(), zipPrefix(place.zip));
    for (Byte& byte : record.other40) byte = static_cast<Byte>(random.below(256));
    addCityKeys(draft, i, record);
    model.zips.push_back(record);
    model.zipBytes.push_back({place.state, {}, {}, {}});
  }
  addUniqueZips(draft);
}

}  // namespace statecut::builder
