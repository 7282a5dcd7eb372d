#include "lookups/names.h"

#include <algorithm>
#include <random>
#include <unordered_set>

#include "dbfiles/controlrec.h"
#include "hash/namehash.h"
#include "tables/refpointers.h"
#include "tables/rows.h"

namespace statecut::bench {

namespace {

using R = RefControlRec;

std::string text(const unsigned char* from, std::size_t length) {
  return {reinterpret_cast<const char*>(from), length};
}

Names cities(const R& ref) {
  Names names{"city", kCityNames, {}, {}, {}};
  const unsigned char* table = refPointers[kSlotCityNames].table;
  for (std::uint32_t i = 1; i < ref.get(R::cityNamesCount); ++i) {
    const unsigned char* record = table + std::size_t{i} * CityNameRow::size;
    const std::size_t length = record[CityNameRow::nameLength.at] + CityNameRow::state.width;
    names.all.emplace_back(text(record + CityNameRow::state.at, length), i);
  }
  return names;
}

Names packed(const char* kind, std::uint32_t type, SlotNumber slot, std::uint32_t bytes) {
  Names names{kind, type, {}, {}, {}};
  const unsigned char* table = refPointers[slot].table;
  for (std::uint32_t at = 0; at < bytes; at += 1 + std::uint32_t{table[at]})
    if (table[at] != 0) names.all.emplace_back(text(table + at + 1, table[at]), at);
  return names;
}

// Changes a letter until the name is a new one.
std::string missLike(std::string name, const std::unordered_set<std::string>& taken,
                     std::mt19937& random) {
  while (taken.count(name) != 0)
    name[random() % name.size()] = static_cast<char>('A' + random() % 26);
  return name;
}

void addQueries(Names& names) {
  std::mt19937 random(1);
  std::unordered_set<std::string> taken;
  // Of several equal names the index knows one.
  std::erase_if(names.all, [&](const auto& entry) { return !taken.insert(entry.first).second; });
  for (const auto& [name, number] : names.all) {
    names.hits.push_back(name);
    names.misses.push_back(missLike(name, taken, random));
  }
  std::shuffle(names.hits.begin(), names.hits.end(), random);
  std::shuffle(names.misses.begin(), names.misses.end(), random);
  // The copies lie in memory in the order in which they are asked for.
  names.hits = std::vector<std::string>(names.hits);
  names.misses = std::vector<std::string>(names.misses);
}

}  // namespace

std::vector<Names> collectNames() {
  const R& ref = *pProcObj->refControlRec;
  std::vector<Names> kinds = {
      cities(ref), packed("street", kStreetNames, kSlotStreetNames, ref.get(R::streetNamesBytes)),
      packed("firm", kFirmNames, kSlotFirms, ref.get(R::firmsBytes))};
  for (Names& names : kinds) addQueries(names);
  return kinds;
}

}  // namespace statecut::bench
