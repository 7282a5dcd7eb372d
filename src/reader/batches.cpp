// Many lookups at once: the cache lines that they need are asked for together.

#include <algorithm>
#include <array>

#include "hash/findname.h"
#include "lookup/inmemory.h"
#include "reader/loaded.h"

namespace statecut {

namespace {

// The numbers of up to kNamesAtOnce names of a type.
void findNumbers(const Database::Loaded& loaded, std::uint32_t type,
                 std::span<const CountedName> names, std::uint32_t* numbers) {
  const NameIndexes* indexes = loaded.names.get();
  if (indexes == nullptr || !(*indexes)[type])
    return findHashedNames(loaded.view, names, type, numbers);
  const NameIndex& index = (*indexes)[type];
  for (const CountedName& name : names) index.prefetch(name.name, name.length);
  for (std::size_t i = 0; i < names.size(); ++i)
    numbers[i] = index.find(names[i].name, names[i].length);
}

// Calls store(position, number) for the names that counted(position) gives.
template <typename Counted, typename Store>
void findAll(const Database::Loaded& loaded, std::uint32_t type, std::size_t count, Counted counted,
             Store store) {
  std::array<CountedName, kNamesAtOnce> names;
  std::array<std::uint32_t, kNamesAtOnce> numbers;
  for (std::size_t from = 0; from < count; from += kNamesAtOnce) {
    const std::size_t some = std::min(kNamesAtOnce, count - from);
    for (std::size_t i = 0; i < some; ++i) names[i] = counted(from + i, i);
    findNumbers(loaded, type, {names.data(), some}, numbers.data());
    for (std::size_t i = 0; i < some; ++i) store(from + i, numbers[i]);
  }
}

CountedName countedName(std::string_view name, std::int32_t longest) {
  if (name.size() > static_cast<std::size_t>(longest)) return {nullptr, -1};
  return {reinterpret_cast<const unsigned char*>(name.data()),
          static_cast<std::int32_t>(name.size())};
}

}  // namespace

inline namespace v1 {

void Database::findZips(std::span<const std::uint32_t> codes, std::span<Zip> zips) const noexcept {
  constexpr std::size_t kAhead = 16;
  const unsigned char* index = loaded_->view.table(kSlotZipIndex);
  const std::size_t count = std::min(codes.size(), zips.size());
  for (std::size_t i = 0; i < count; ++i) {
    if (i + kAhead < count && codes[i + kAhead] <= static_cast<std::uint32_t>(memory::kLastZip))
      __builtin_prefetch(index + std::size_t{codes[i + kAhead]} * KeyRow::size);
    zips[i] = zip(codes[i]);
    if (zips[i]) __builtin_prefetch(zips[i].row);
  }
}

void Database::findCities(std::span<const CityQuery> queries,
                          std::span<CityName> cities) const noexcept {
  std::array<std::array<unsigned char, memory::kLongestCityKey>, kNamesAtOnce> keys;
  findAll(
      *loaded_, kCityNames, std::min(queries.size(), cities.size()),
      [&](std::size_t at, std::size_t place) -> CountedName {
        const auto [state, name] = queries[at];
        if (state.size() != 2 || name.size() > memory::StateKey::kMost) return {nullptr, -1};
        std::copy(state.begin(), state.end(), keys[place].begin());
        std::copy(name.begin(), name.end(), keys[place].begin() + 2);
        return {keys[place].data(), static_cast<std::int32_t>(name.size() + 2)};
      },
      [&](std::size_t at, std::uint32_t number) {
        cities[at] = {};
        if (number != kNotFound)
          cities[at] = {number,
                        memory::cityNameAt(loaded_->view, static_cast<std::int32_t>(number))};
      });
}

void Database::findStreets(std::span<const std::string_view> names,
                           std::span<NamedKey> streets) const noexcept {
  findAll(
      *loaded_, kStreetNames, std::min(names.size(), streets.size()),
      [&](std::size_t at, std::size_t) { return countedName(names[at], memory::kLongestStreet); },
      [&](std::size_t at, std::uint32_t number) {
        streets[at] = {};
        if (number != kNotFound)
          streets[at] = {number, streetName(number).value_or(std::string_view()), true};
      });
}

void Database::findFirms(std::span<const std::string_view> names,
                         std::span<NamedKey> firms) const noexcept {
  findAll(
      *loaded_, kFirmNames, std::min(names.size(), firms.size()),
      [&](std::size_t at, std::size_t) { return countedName(names[at], memory::kLongestFirm); },
      [&](std::size_t at, std::uint32_t number) {
        firms[at] = {};
        if (number != kNotFound)
          firms[at] = {number, firmName(number).value_or(std::string_view()), true};
      });
}

}  // namespace v1
}  // namespace statecut
