// The edge database and its damaged copies.

#include <algorithm>

#include "base/le.h"
#include "databases.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "dbfiles/controlrec.h"

namespace statecut::test {

namespace {

using namespace builder;
using Ref = RefControlRec;

// A last city name that begins another one, which stands behind the names table.
void addRivalBehind(Model& model) {
  model.cityNames.push_back({1, 0, "ZZ", "EDGE", std::nullopt});
  model.byState.reset();
  Bytes behind(34 * model.cityNames.size() - 34);
  const std::string rival = std::string("\0\0\0\6", 4) + "ZZEDGERS";
  std::copy(rival.begin(), rival.end(), behind.begin());
  model.raw[Table::CityNamesByState] = behind;
}

// With one that begins behind the end of the lists, or without.
void addVariations(Model& model, bool withOneBehind) {
  Variation many{"MANY", {}, std::nullopt, std::nullopt};
  for (std::uint16_t i = 0; i < 520; ++i) many.candidates.push_back({0, {i}, 7000U + i});
  Variation few{"FEW", {{0, {750, 751}, 61U}, {0, {}, 62U}, {0, {752}, 63U}}, {}, {}};
  Variation behind{"BEHIND", {}, 0x00FFFFF0U, true};
  Variation last{"LAST", {{0, {1}, 64U}, {0, {2, 3}, 65U}}, {}, {}};
  Variation single{"SINGLE", {{0, {}, 66U}}, {}, {}};
  for (std::vector<Variation>* set : {&model.streetPhonetics, &model.streetStandards})
    for (const Variation& one : {many, few, behind, single, last})
      if (withOneBehind || one.name != behind.name) set->push_back(one);
}

// Lists of more than 65535 entries only where they are asked for.
Model edgeModel(bool longLists, bool withListBehind) {
  Model model = makeModel(tinyPlaces(), tinyOptions());
  addRivalBehind(model);
  addVariations(model, withListBehind);
  if (longLists) {
    model.cityZipLists.resize(65540, {7, 12345});
    model.cityFinanceLists.resize(65540, 9);
  }
  model.cityNames[2].cityKey = static_cast<std::uint16_t>(model.cityData.size() + 1);
  model.cityPhonetics[1].count = 12;
  model.firmNames.emplace_back(40, 'F');
  return model;
}

// A number of the file with a bound: 0, the bound, one more and the largest are put in its place.
struct Spot {
  const char* name;
  std::size_t at;
  std::size_t width;
  std::uint32_t bound;
};

std::uint32_t wordOf(const Bytes& file, std::size_t at) { return le::get<4>(file.data() + at); }

std::vector<Spot> wordSpots(const Bytes& file) {
  std::vector<Spot> spots;
  forEachField<Ref>([&](const auto& field) {
    using Field = std::remove_cvref_t<decltype(field)>;
    if constexpr (Field::isNumber && Field::width == 4) {
      const std::string_view name = field.name;
      const bool rba = name.ends_with("Rba");
      if (!rba && !name.ends_with("Count") && !name.ends_with("Bytes")) return;
      spots.push_back({field.name, Field::at, 4,
                       rba ? static_cast<std::uint32_t>(file.size()) : wordOf(file, Field::at)});
    }
  });
  return spots;
}

// Where a name's slot is, and its first overflow entry.
std::size_t slotOf(const Bytes& file, bool overflowed) {
  const std::size_t slots = wordOf(file, Ref::hashTableCount.at);
  for (std::size_t i = 0; i < slots; ++i) {
    const std::size_t at = wordOf(file, Ref::hashTableRba.at) + 7 * i;
    if (overflowed ? file[at] > 1 : file[at] == 1) return at;
  }
  return wordOf(file, Ref::hashTableRba.at);
}

std::vector<Spot> tableSpots(const Bytes& file) {
  const auto word = [&](std::size_t at) { return wordOf(file, at); };
  const std::size_t zip = word(Ref::zipDataRba.at) + 52;
  const std::size_t name = word(Ref::cityNamesRba.at);
  const std::size_t city = word(Ref::cityDataRba.at);
  const std::size_t ph = word(Ref::cityPhoneticsRba.at);
  const std::size_t variation = word(Ref::streetPhoneticsRba.at);
  const std::size_t list = word(Ref::streetPhoneticAmbDataRba.at);
  const std::size_t slot = slotOf(file, false);
  const std::size_t chain = slotOf(file, true);
  const std::size_t over = word(Ref::hashOverflowRba.at) + 6U * wordOf(file, chain + 3);
  const std::uint32_t zips = word(Ref::zipDataCount.at);
  return {
      {"ZIP index entry", word(Ref::zipIndexRba.at) + 2U * wordOf(file, zip), 2, zips},
      {"city key of a ZIP", zip + 30, 2, word(Ref::cityDataCount.at)},
      {"city keys index", zip + 32, 4, word(Ref::zipMultiCityListsCount.at)},
      {"city keys count", zip + 36, 1, 2},
      {"finance key of a ZIP", zip + 38, 2, word(Ref::finMultiZipRbasCount.at)},
      {"city key of a name", name + 34, 2, word(Ref::cityDataCount.at)},
      {"name length", name + 37, 1, 28},
      {"length of a middle name", name + 34 * (word(Ref::cityNamesCount.at) / 2) + 3, 1, 28},
      {"length of the last name", name + 34 * (word(Ref::cityNamesCount.at) - 1) + 3, 1, 28},
      {"multi-ZIP key of a city", city + 36 + 30, 2, word(Ref::cityMultiZipRbasCount.at)},
      {"phonetic count", ph + 26 + 24, 1, 9},
      {"phonetic length", ph + 26 + 25, 1, 19},
      {"street name length", word(Ref::streetNamesRba.at), 1, 28},
      {"firm name length", word(Ref::firmsRba.at), 1, 40},
      {"variation value", variation, 4, word(Ref::streetPhoneticAmbDataBytes.at)},
      {"variation flag and length", variation + 4, 1, 0x80},
      {"list count", list, 2, 3},
      {"SCF count", list + 6, 1, 1},
      {"SCF key", list + 7, 2, 1},
      {"slot count", slot, 1, 2},
      {"slot check", slot + 1, 2, 5},
      {"slot number", slot + 3, 4, word(Ref::cityNamesCount.at)},
      {"chain count", chain, 1, 3},
      {"chain start", chain + 3, 4, word(Ref::hashOverflowCount.at)},
      {"overflow check", over, 2, 5},
      {"overflow number", over + 2, 4, word(Ref::cityNamesCount.at)},
  };
}

Database soundEdges(bool longLists) {
  return {"edges", referenceFile(edgeModel(longLists, false)).bytes};
}

Database edges(bool longLists) {
  Database made{"edges", referenceFile(edgeModel(longLists, true)).bytes};
  // An index entry above the count.
  const std::uint32_t zips = wordOf(made.file, Ref::zipDataCount.at);
  le::put<2>(made.file.data() + wordOf(made.file, Ref::zipIndexRba.at) + 2, zips + 2);
  return made;
}

std::vector<Database> damaged(const Database& whole) {
  std::vector<Spot> spots = tableSpots(whole.file);
  for (const Spot& spot : wordSpots(whole.file)) spots.push_back(spot);
  std::vector<Database> made;
  for (const Spot& spot : spots) {
    for (const std::uint32_t value : {0U, spot.bound, spot.bound + 1, 0xFFFFFFFFU}) {
      Database damaged{std::string(spot.name) + " = " + std::to_string(value), whole.file};
      le::putN(damaged.file.data() + spot.at, spot.width, value);
      if (damaged.file != whole.file) made.push_back(damaged);
    }
  }
  return made;
}

}  // namespace

Database edgeDatabase() { return edges(true); }
Database edgeReaderDatabase() { return soundEdges(true); }

std::vector<Database> damagedDatabases() { return damaged(edges(false)); }
std::vector<Database> damagedReaderDatabases() { return damaged(soundEdges(false)); }

}  // namespace statecut::test
