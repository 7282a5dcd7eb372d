// City names, city data, names by state and phonetic keys.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "tables/rows.h"
#include "verify/pairrules.h"

namespace statecut::verify {

namespace {

std::string_view textOf(std::span<const unsigned char> bytes, std::size_t length) {
  return {reinterpret_cast<const char*>(bytes.data()), std::min(length, bytes.size())};
}

// State, then name without its padding: bytes compare as unsigned in a string_view.
template <typename RowType>
std::string_view stateOf(const RowType& row) {
  return textOf(row.get(RowType::state), 2);
}
template <typename RowType>
std::string_view nameOf(const RowType& row) {
  return textOf(row.get(RowType::name), row.get(RowType::nameLength));
}
template <typename A, typename B>
int compareNames(const A& a, const B& b) {
  const int states = stateOf(a).compare(stateOf(b));
  return states != 0 ? states : nameOf(a).compare(nameOf(b));
}

constexpr std::uint32_t kMaxName = 28;
constexpr std::uint32_t kMaxPhonetic = 19;

template <typename RowType>
bool isZero(const RowType& row) {
  return std::all_of(row.bytes.begin(), row.bytes.end(), [](unsigned char c) { return c == 0; });
}

// Name, then state, with the padding.
int compareByState(const CityByStateRow& a, const CityByStateRow& b) {
  return std::memcmp(a.bytes.data() + CityByStateRow::name.at,
                     b.bytes.data() + CityByStateRow::name.at, 30);
}

// Key, value, length, name and state.
bool sameName(const CityNameRow& name, const CityByStateRow& row) {
  constexpr std::size_t kFront = CityNameRow::state.at;
  static_assert(kFront == CityByStateRow::name.at);
  return std::memcmp(name.bytes.data(), row.bytes.data(), kFront) == 0 &&
         std::memcmp(name.bytes.data() + CityNameRow::name.at,
                     row.bytes.data() + CityByStateRow::name.at, CityNameRow::name.width) == 0;
}

// The first record sorts before all others and belongs to no state.
template <typename RowType>
void checkBlank(const Records<RowType>& records, RuleId ruleId, Report& report) {
  if (records.size() > 0 && !isZero(records[0]))
    report.add(ruleId, File::Reference, 0, records.offset(0), "the first record is not blank");
}

// By city key: some name leads to the city.
std::vector<bool> namedCities(const Records<CityNameRow>& names, std::size_t cities) {
  std::vector<bool> named(cities);
  for (std::size_t i = 1; i < names.size(); ++i)
    if (const std::uint32_t key = names[i].get(CityNameRow::cityKey); key < cities)
      named[key] = true;
  return named;
}

}  // namespace

void checkCityNames(const Pair& pair, Report& report) {
  const auto names = pair.records<CityNameRow>(TableId::CityNames);
  checkBlank(names, RuleId::CityName, report);
  const std::uint64_t cities = pair.place(TableId::CityData).count;
  const bool checkKeys = pair.usable(TableId::CityData);
  for (std::size_t i = 1; i < names.size(); ++i) {
    const auto record = static_cast<std::int64_t>(i);
    if (names[i].get(CityNameRow::nameLength) > kMaxName) {
      report.add(
          RuleId::CityName, File::Reference, record, names.offset(i) + CityNameRow::nameLength.at,
          [&] { return "name length " + std::to_string(names[i].get(CityNameRow::nameLength)); });
    }
    if (i > 1 && compareNames(names[i - 1], names[i]) > 0)
      report.add(RuleId::CityOrder, File::Reference, record, names.offset(i),
                 "the name sorts before the one ahead of it");
    const std::uint32_t key = names[i].get(CityNameRow::cityKey);
    if (checkKeys && key != 0 && key >= cities)
      report.add(RuleId::CityKey, File::Reference, record, names.offset(i), [&] {
        return "city key " + std::to_string(key) + " of " + std::to_string(cities);
      });
  }
}

void checkCityLinks(const Pair& pair, Report& report) {
  if (!pair.usable(TableId::CityNames)) return;
  const auto names = pair.records<CityNameRow>(TableId::CityNames);
  const auto cities = pair.records<CityDataRow>(TableId::CityData);
  const std::vector<bool> named = namedCities(names, cities.size());
  const auto check = [&](std::size_t city, auto field) {
    const std::uint32_t link = cities[city].get(field);
    // A cut drops names, and with them the links.
    if (link == 0 && (pair.isCut() || !named[city])) return;
    const bool inside = link < names.size();
    // A key outside the city data is a finding of its own.
    if (inside && (names[link].get(CityNameRow::cityKey) == city ||
                   names[link].get(CityNameRow::cityKey) >= cities.size()))
      return;
    report.add(RuleId::CityLinks, File::Reference, static_cast<std::int64_t>(city),
               cities.offset(city) + field.at, [&] {
                 if (link == 0) return std::string(field.name) + " is 0, yet the city has a name";
                 return std::string(field.name) + " is name " + std::to_string(link) +
                        (inside ? ", a name of city " +
                                      std::to_string(names[link].get(CityNameRow::cityKey))
                                : " of " + std::to_string(names.size()));
               });
  };
  for (std::size_t city = 1; city < cities.size(); ++city) {
    check(city, CityDataRow::nameUsps);
    check(city, CityDataRow::nameStandard);
  }
}

void checkCitiesByState(const Pair& pair, Report& report) {
  const auto byState = pair.records<CityByStateRow>(TableId::CityNamesByState);
  const auto names = pair.records<CityNameRow>(TableId::CityNames);
  std::size_t count = byState.size();
  // Records that a cut found no name for are zero, behind the sorted ones.
  if (pair.isCut())
    while (count > 0 && isZero(byState[count - 1])) --count;
  // The search needs sound, sorted names.
  const bool search = pair.usable(TableId::CityNames) && report.count(RuleId::CityOrder) == 0 &&
                      report.count(RuleId::CityName) == 0;
  // First name at or behind the record's.
  const auto firstOf = [&](const CityByStateRow& row) {
    std::size_t low = 1, high = names.size();
    while (low < high) {
      const std::size_t mid = low + (high - low) / 2;
      if (compareNames(names[mid], row) < 0)
        low = mid + 1;
      else
        high = mid;
    }
    return low;
  };
  // Each name stands there once; in a cut, as often as its state was given.
  std::vector<bool> taken(names.size());
  for (std::size_t i = 0; i < count; ++i) {
    const CityByStateRow& row = byState[i];
    const auto record = static_cast<std::int64_t>(i);
    if (i > 0 && compareByState(byState[i - 1], row) > 0)
      report.add(RuleId::ByStateOrder, File::Reference, record, byState.offset(i),
                 "the record sorts before the one ahead of it");
    if (!search) continue;
    bool found = false;
    for (std::size_t n = firstOf(row);
         !found && n < names.size() && compareNames(names[n], row) == 0; ++n)
      if (sameName(names[n], row) && (pair.isCut() || !taken[n])) found = taken[n] = true;
    if (!found)
      report.add(RuleId::ByStateNames, File::Reference, record, byState.offset(i),
                 "no city name is the same, or another record has it");
  }
}

void checkCityPhonetics(const Pair& pair, Report& report) {
  const auto keys = pair.records<CityPhoneticRow>(TableId::CityPhonetics);
  checkBlank(keys, RuleId::PhoneticKey, report);
  for (std::size_t i = 1; i < keys.size(); ++i) {
    const std::uint32_t length = keys[i].get(CityPhoneticRow::keyLength);
    if (length > kMaxPhonetic)
      report.add(RuleId::PhoneticKey, File::Reference, static_cast<std::int64_t>(i),
                 keys.offset(i) + CityPhoneticRow::keyLength.at,
                 [&] { return "key length " + std::to_string(length); });
    if (i > 1 && stateOf(keys[i - 1]) > stateOf(keys[i]))
      report.add(RuleId::PhoneticOrder, File::Reference, static_cast<std::int64_t>(i),
                 keys.offset(i), "the state sorts before the one ahead of it");
  }
}

}  // namespace statecut::verify
