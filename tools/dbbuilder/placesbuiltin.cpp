#include <string_view>

#include "dbbuilder/places.h"

namespace statecut::builder {

namespace {

struct CityOfZips {
  std::string_view state, city, county;
  std::uint32_t firstZip, zips;
};

constexpr CityOfZips tinyCities[] = {
    {"AE", "APO", "", 9001, 3},
    {"AE", "FPO", "", 9501, 2},
    {"OK", "BIXBY", "TULSA", 74008, 1},
    {"OK", "FORT TOWSON", "CHOCTAW", 74735, 1},
    {"OK", "LAWTON", "COMANCHE", 73501, 2},
    {"OK", "MOUNT PARK", "KIOWA", 73559, 1},
    {"OK", "TULSA", "TULSA", 74101, 4},
    {"PR", "ADJUNTAS", "", 601, 1},
    {"PR", "PONCE", "", 716, 3},
    {"PR", "SAN JUAN", "", 901, 4},
    {"TX", "DALLAS", "DALLAS", 75201, 4},
    {"TX", "FORT WORTH", "TARRANT", 76101, 3},
    {"TX", "MOUNT ENTERPRISE", "RUSK", 75681, 1},
    {"TX", "SAINT HEDWIG", "BEXAR", 78152, 1},
    {"TX", "SPRING", "HARRIS", 77373, 2},
    {"TX", "SPRINGTOWN", "PARKER", 76082, 1},
    {"VT", "BURLINGTON", "CHITTENDEN", 5401, 2},
    {"VT", "MOUNT SNOW", "WINDHAM", 5356, 1},
    {"VT", "SAINT ALBANS", "FRANKLIN", 5478, 2},
};

struct SmallState {
  std::string_view state;
  std::uint32_t prefix;  // first three digits
};

constexpr SmallState smallStates[] = {{"AE", 90},  {"AP", 962}, {"CT", 60},  {"GA", 300},
                                      {"ID", 832}, {"KS", 660}, {"ME", 39},  {"NV", 889},
                                      {"OR", 970}, {"PR", 6},   {"SC", 290}, {"WY", 820}};
constexpr std::string_view firstWords[] = {"SAINT", "CEDAR", "FORT", "MILL",  "MOUNT", "NEW",
                                           "LAKE",  "PORT",  "SAND", "STONE", "WEST"};
constexpr std::string_view secondWords[] = {"ASH",   "BROOK",  "CREEK", "DALE", "FALLS",
                                            "GROVE", "HARBOR", "POINT", "RIDGE"};

}  // namespace

std::vector<Place> tinyPlaces() {
  std::vector<Place> places;
  for (const CityOfZips& city : tinyCities)
    for (std::uint32_t i = 0; i < city.zips; ++i)
      places.push_back({city.firstZip + i, std::string(city.state), std::string(city.city),
                        std::string(city.county)});
  return places;
}

std::vector<Place> smallPlaces() {
  constexpr std::uint32_t citiesAState = 14;
  std::vector<Place> places;
  std::uint32_t word = 0;
  for (const SmallState& state : smallStates) {
    std::uint32_t zip = state.prefix * 100 + 1;
    for (std::uint32_t i = 0; i < citiesAState; ++i, ++word) {
      const std::string city = std::string(firstWords[word % std::size(firstWords)]) + " " +
                               std::string(secondWords[word % std::size(secondWords)]);
      const std::string county = i % 5 == 4 ? "" : std::string(secondWords[i % 3]);
      for (std::uint32_t zips = 1 + (word * 7 + i) % 5; zips > 0; --zips, zip += 1 + i % 2)
        places.push_back({zip, std::string(state.state), city, county});
    }
  }
  return places;
}

}  // namespace statecut::builder
