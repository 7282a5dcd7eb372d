#include <algorithm>
#include <iterator>

#include "base/le.h"
#include "dbbuilder/draft.h"

namespace statecut::builder {

namespace {

std::vector<Pattern> makePatterns(Random& random) {
  std::vector<Pattern> patterns(random.between(12, 40));
  for (Pattern& pattern : patterns)
    for (std::uint16_t& word : pattern) word = static_cast<std::uint16_t>(random.below(65536));
  return patterns;
}

// Urbanizations belong to Puerto Rico; without a place there, the first ZIP code gets them.
void addUrbanizations(Draft& draft) {
  constexpr std::string_view names[] = {"ALTURAS",     "BRISAS DEL MAR", "CIUDAD JARDIN",
                                        "EL PARAISO",  "LAS FLORES",     "LOS ANGELES",
                                        "MONTE VERDE", "VILLA FONTANA"};
  Model& model = draft.model;
  model.urbanizations.push_back({});
  model.urbVariations.push_back({});
  model.urbMultiZips.push_back(0);
  std::vector<std::uint16_t> zips;
  for (std::size_t i = 1; i < draft.places.size(); ++i)
    if (draft.places[i].state == "PR") zips.push_back(static_cast<std::uint16_t>(i));
  if (zips.empty()) zips.push_back(1);
  Random random = draft.random(40);
  for (std::size_t i = 0; i < zips.size(); ++i) {
    std::string name(names[i % std::size(names)]);
    if (i >= std::size(names)) name.append(" ").append(std::to_string(i / std::size(names) + 1));
    const auto key = static_cast<std::uint16_t>(model.urbanizations.size());
    const std::size_t count = std::min<std::size_t>(random.between(1, 3), zips.size() - i);
    model.urbVariations.push_back({key, 0, std::string("URB ").append(name)});
    model.urbanizations.push_back({static_cast<std::uint16_t>(model.urbMultiZips.size()),
                                   static_cast<Byte>(count), std::move(name)});
    for (std::size_t zip = i; zip < i + count; ++zip) model.urbMultiZips.push_back(zips[zip]);
  }
}

// Entry: add-on 9999 in the low half, ZIP key in the high half. ZIP records hold the entry's key.
void addGeneralDelivery(Draft& draft) {
  constexpr std::size_t every = 3;
  Model& model = draft.model;
  model.generalDelivery.push_back(0);
  for (std::uint32_t i = 1; i < model.zips.size(); i += every) {
    le::put<2>(model.zips[i].other20.data() + 2,
               static_cast<std::uint32_t>(model.generalDelivery.size()));
    model.generalDelivery.push_back(9999U | (i << 16));
  }
}

template <std::size_t Size>
std::array<Byte, Size> militaryRecord(std::string_view state, std::string_view alias,
                                      Random& random) {
  std::array<Byte, Size> record = {};
  std::copy(state.begin(), state.end(), record.begin());
  std::copy(alias.begin(), alias.end(), record.begin() + 2);
  for (std::size_t i = 32; i < Size; ++i) record[i] = static_cast<Byte>(random.below(256));
  return record;
}

MilitaryTable makeMilitary(Random random) {
  constexpr std::string_view states[] = {"AA", "AE", "AP"};
  constexpr std::string_view aliases[] = {
      "ARMY POST OFFICE", "FLEET POST OFFICE", "BASE", "CAMP", "DEPOT", "FIELD STATION", "SHIP"};
  MilitaryTable military;
  for (const std::string_view state : states)
    for (const std::string_view alias : aliases) {
      military.first.push_back(militaryRecord<38>(state, alias, random));
      if (random.percent(60)) military.second.push_back(militaryRecord<42>(state, alias, random));
    }
  return military;
}

}  // namespace

void addSmallTables(Draft& draft) {
  Model& model = draft.model;
  Random random = draft.random(41);
  model.sfhPatterns = makePatterns(random);
  model.pobPatterns = makePatterns(random);
  model.rrPatterns = makePatterns(random);
  addUrbanizations(draft);
  addGeneralDelivery(draft);
  if (draft.options.military) model.military = makeMilitary(draft.random(42));
  if (draft.options.poBoxZones) {
    constexpr std::size_t every = 7;
    constexpr std::size_t mostZones = 5000;
    model.poBoxZones.emplace();
    for (std::size_t i = 1; i < model.zips.size() && model.poBoxZones->size() < mostZones;
         i += every)
      model.poBoxZones->push_back(static_cast<std::uint16_t>(i));
  }
}

}  // namespace statecut::builder
