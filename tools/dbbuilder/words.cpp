#include "dbbuilder/words.h"

#include <array>
#include <set>
#include <utility>

#include "dbbuilder/random.h"

namespace statecut::builder {

namespace {

constexpr std::string_view kFirstWords[] = {
    "ALDER",   "AMBER",  "ASPEN",  "AUTUMN",  "BEECH",   "BIRCH",  "BRIAR", "BROOK",
    "CANYON",  "CEDAR",  "CHERRY", "CLOVER",  "COPPER",  "CORAL",  "CRANE", "CREEK",
    "DOGWOOD", "EAGLE",  "ELM",    "FALCON",  "FERN",    "FLINT",  "FORT",  "FOX",
    "FT",      "GARNET", "GOLDEN", "GRANITE", "HARBOR",  "HAWK",   "HAZEL", "HERON",
    "HICKORY", "HOLLY",  "IRON",   "IVY",     "JUNIPER", "LAUREL", "LILAC", "LINDEN",
    "MAPLE",   "MEADOW", "MOUNT",  "MT",      "NORTH",   "OAK",    "PINE",  "PRAIRIE",
    "QUAIL",   "RIVER",  "SAINT",  "SILVER",  "SOUTH",   "ST",     "STONE", "WALNUT"};
constexpr std::string_view kSecondWords[] = {
    "BANK",  "BARN",    "BAY",    "BEND",   "BLUFF",   "BRANCH", "BRIDGE", "CAMP",
    "CHASE", "CLIFF",   "COVE",   "CREST",  "CROSS",   "DALE",   "FALLS",  "FARM",
    "FIELD", "FORD",    "FOREST", "GARDEN", "GATE",    "GLEN",   "GROVE",  "HAVEN",
    "HILL",  "HOLLOW",  "HOUSE",  "ISLAND", "KNOLL",   "LAKE",   "LODGE",  "MARSH",
    "MILL",  "ORCHARD", "PARK",   "PASS",   "POINT",   "POND",   "RANCH",  "RIDGE",
    "ROCK",  "RUN",     "SHORE",  "SPRING", "TERRACE", "VALLEY", "VIEW",   "WOOD"};
constexpr std::string_view kThirdWords[] = {
    "",      "1ST",       "2ND",    "3RD",     "4TH",      "5TH",     "6TH",     "7TH",    "8TH",
    "9TH",   "10TH",      "11TH",   "12TH",    "13TH",     "14TH",    "15TH",    "16TH",   "17TH",
    "18TH",  "19TH",      "20TH",   "ANNEX",   "BEACH",    "CENTER",  "COMMONS", "CORNER", "DOWNS",
    "EAST",  "EXTENSION", "GREEN",  "HEIGHTS", "JUNCTION", "LANDING", "LOWER",   "NORTH",  "OLD",
    "PLAZA", "SOUTH",     "SQUARE", "UPPER",   "WEST"};
constexpr std::string_view firmKinds[] = {
    "BAKERY",    "BANK",     "BOOKS",     "BUILDERS",  "CLINIC",       "COLLEGE",
    "DAIRY",     "ELECTRIC", "FOUNDRY",   "FREIGHT",   "HARDWARE",     "HOSPITAL",
    "INSURANCE", "LAUNDRY",  "LUMBER CO", "MACHINERY", "NURSERY INC",  "PAPER MILLS",
    "PHARMACY",  "PRINTING", "SEED CO",   "SUPPLY",    "TOOL AND DIE", "TRUST COMPANY"};

constexpr std::array<std::string_view, minStreets> fixedStreets = {
    "BIRCH HILL", "BURCH HILL", "FORT HILL", "FT HILL",
    "MOUNT PINE", "MT PINE",    "SAINT OAK", "ST OAK"};

constexpr std::pair<std::string_view, std::string_view> shortForms[] = {
    {"FORT", "FT"},      {"MOUNT", "MT"},      {"SAINT", "ST"}, {"NORTH", "N"},
    {"SOUTH", "S"},      {"EAST", "E"},        {"WEST", "W"},   {"HEIGHTS", "HTS"},
    {"JUNCTION", "JCT"}, {"EXTENSION", "EXT"}, {"SQUARE", "SQ"}};

// Names by number: a step that shares no factor with `total` visits each number once.
template <typename MakeName>
std::vector<std::string> takeNames(std::set<std::string> names, std::uint32_t count,
                                   std::uint64_t seed, std::uint64_t total, MakeName makeName) {
  constexpr std::uint64_t step = 1000003;  // a prime above every factor
  const std::uint64_t start = mix64(seed) % total;
  for (std::uint64_t i = 0; names.size() < count && i < total; ++i)
    names.insert(makeName((start + i * step) % total));
  return {names.begin(), names.end()};
}

std::string twoWords(std::uint64_t number) {
  const std::uint64_t first = number % std::size(kFirstWords);
  const std::uint64_t second = number / std::size(kFirstWords) % std::size(kSecondWords);
  return std::string(kFirstWords[first]) + " " + std::string(kSecondWords[second]);
}

constexpr std::uint64_t wordPairs = std::size(kFirstWords) * std::size(kSecondWords);

char consonantClass(char c) {
  constexpr std::string_view letters = "BCDFGJKLMNPQRSTVXZ0123456789";
  constexpr std::string_view classes = "BKTFJJKLMMBKRSTFSS0123456789";
  const std::size_t at = letters.find(c);
  return at == std::string_view::npos ? '\0' : classes[at];
}

}  // namespace

std::vector<std::string> makeStreetNames(std::uint32_t count, std::uint64_t seed) {
  return takeNames({fixedStreets.begin(), fixedStreets.end()}, count, seed,
                   wordPairs * std::size(kThirdWords), [](std::uint64_t number) {
                     std::string name = twoWords(number);
                     const std::string_view third = kThirdWords[number / wordPairs];
                     if (!third.empty()) name.append(" ").append(third);
                     return name;
                   });
}

std::vector<std::string> makeFirmNames(std::uint32_t count, std::uint64_t seed) {
  return takeNames({}, count, seed, wordPairs * std::size(firmKinds), [](std::uint64_t number) {
    return twoWords(number) + " " + std::string(firmKinds[number / wordPairs]);
  });
}

std::optional<std::string> otherSpelling(std::string_view name) {
  constexpr std::size_t most = 28;
  for (std::size_t i = 0; i < 3; ++i) {
    const auto& [longForm, shortForm] = shortForms[i];
    for (const auto& [from, to] : {std::pair(longForm, shortForm), {shortForm, longForm}}) {
      if (name.size() <= from.size() || name.substr(0, from.size()) != from ||
          name[from.size()] != ' ')
        continue;
      std::string other = std::string(to) + std::string(name.substr(from.size()));
      if (other.size() <= most) return other;
    }
  }
  return std::nullopt;
}

std::string standardForm(std::string_view name) {
  std::string form;
  while (!name.empty()) {
    const std::size_t end = name.find(' ');
    std::string_view word = name.substr(0, end);
    for (const auto& [from, to] : shortForms)
      if (word == from) word = to;
    if (!form.empty()) form += ' ';
    form += word;
    name.remove_prefix(end == std::string_view::npos ? name.size() : end + 1);
  }
  return form;
}

std::string phoneticKey(std::string_view name, std::size_t most) {
  std::string key(name.substr(0, 1));
  char last = key.empty() ? '\0' : consonantClass(key[0]);
  for (const char c : name.substr(key.size())) {
    const char consonant = consonantClass(c);
    if (consonant != '\0' && consonant != last && key.size() < most) key += consonant;
    last = consonant;
  }
  return key;
}

}  // namespace statecut::builder
