#include "verify/hashplaces.h"

#include <algorithm>
#include <utility>

namespace statecut::verify {

namespace {

using Place = HashPlaces::Place;

// Numbers of entries change while names are renumbered, and a name is found at the entry of another
// when that one's number leads to an equal name by then. It takes two names with one hash, or two
// entries: a name has a place of its own when no other asks for its entry and it asks for no other.
class Finder {
 public:
  explicit Finder(const Pair& source)
      : names_(nameTables(source)),
        hash_{source.table(TableId::HashTable), source.table(TableId::HashOverflow)},
        asked_(hash_.slotCount() + hash_.overflow.size() / overflowWidth()) {}

  std::vector<Place> candidates(unsigned type) {
    std::vector<Place> places(names_[type].size() / tableDef(tableOfType(type)).width,
                              HashPlaces::kNone);
    for (std::uint32_t i = 0; i < places.size(); ++i)
      if (const auto name = nameAt(type, i, names_[type])) places[i] = candidate(type, *name);
    return places;
  }

  // When all names have asked.
  void settle(std::vector<Place>& places) const {
    for (Place& place : places)
      if (place < HashPlaces::kSearch && asked_[entryOf(place)] > 1) place = HashPlaces::kSearch;
  }

 private:
  static std::uint64_t overflowWidth() { return tableDef(TableId::HashOverflow).width; }

  std::size_t entryOf(std::uint64_t place) const {
    return place < hash_.slots.size()
               ? place / tableDef(TableId::HashTable).width
               : hash_.slotCount() + (place - hash_.slots.size()) / overflowWidth();
  }

  Place candidate(unsigned type, std::string_view name) {
    const std::uint32_t hash = nameHash(name, type);
    if (hash_.slotCount() == 0 || hash_.slotOf(hash) >= hash_.slotCount()) return HashPlaces::kNone;
    const std::uint32_t check = hash_.checkOf(hash, type);
    Place place = HashPlaces::kNone;
    (void)forEachEntry(hash_, hash_.slotOf(hash), [&](const HashEntry& entry) {
      if (entry.check != check) return false;
      const std::uint64_t at = (entry.inOverflow ? hash_.slots.size() : 0) + entry.numberAt;
      if (std::uint8_t& asked = asked_[entryOf(at)]; asked < 2) ++asked;
      const bool found = nameAt(type, entry.number, names_[type]) == name;
      place = place == HashPlaces::kNone && found && at < HashPlaces::kSearch
                  ? static_cast<Place>(at)
                  : HashPlaces::kSearch;
      return false;
    });
    return place;
  }

  NameTables names_;
  HashView hash_;
  std::vector<std::uint8_t> asked_;  // how many names ask for an entry, 2 = several
};

// The source's hash, to be renumbered name by name. Candidates are the names of the source, at
// whatever number stands in an entry by then.
class Renumbered {
 public:
  explicit Renumbered(const Pair& source) : tables_(nameTables(source)) {
    const auto slots = source.table(TableId::HashTable);
    const auto overflow = source.table(TableId::HashOverflow);
    bytes_.reserve(slots.size() + overflow.size());
    bytes_.assign(slots.begin(), slots.end());
    bytes_.insert(bytes_.end(), overflow.begin(), overflow.end());
    slotBytes_ = slots.size();
  }

  void renumber(unsigned type, const std::vector<std::uint32_t>& map,
                const std::vector<HashPlaces::Place>& places) {
    for (std::uint32_t i = 0; i < std::min(map.size(), places.size()); ++i) {
      if (map[i] != 0 && map[i] == i) continue;
      if (places[i] == HashPlaces::kSearch)
        search(type, i, map[i]);
      else if (places[i] != HashPlaces::kNone)
        le::put<4>(bytes_.data() + places[i], map[i]);
    }
  }

  std::vector<unsigned char> take() { return std::move(bytes_); }

 private:
  void search(unsigned type, std::uint32_t position, std::uint32_t number) {
    const auto name = nameAt(type, position, tables_[type]);
    if (!name) return;
    const auto bytes = std::span<const unsigned char>(bytes_);
    const HashResult result =
        findName({bytes.first(slotBytes_), bytes.subspan(slotBytes_)}, tables_, *name, type);
    if (!result.entry) return;
    const std::size_t table = result.entry->inOverflow ? slotBytes_ : 0;
    le::put<4>(bytes_.data() + table + result.entry->numberAt, number);
  }

  NameTables tables_;
  std::vector<unsigned char> bytes_;  // of the hash table, then of the overflow table
  std::size_t slotBytes_ = 0;
};

}  // namespace

HashPlaces findHashPlaces(const Pair& source) {
  Finder finder(source);
  HashPlaces places{finder.candidates(kCityNameType), finder.candidates(kCityPhoneticType)};
  finder.settle(places.cities);
  finder.settle(places.phonetics);
  return places;
}

std::vector<unsigned char> renumberedHash(const Pair& source, const HashPlaces& places,
                                          const std::vector<std::uint32_t>& cities,
                                          const std::vector<std::uint32_t>& phonetics) {
  Renumbered hash(source);
  hash.renumber(kCityNameType, cities, places.cities);
  hash.renumber(kCityPhoneticType, phonetics, places.phonetics);
  return hash.take();
}

}  // namespace statecut::verify
