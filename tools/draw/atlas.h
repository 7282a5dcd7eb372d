#pragma once
// Where ZIP codes lie on the map of a report: the lower 48 states, and four insets.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "dbbuilder/places.h"

namespace statecut::draw {

// The map in its own units.
inline constexpr double kMapWidth = 1000;
inline constexpr double kMapHeight = 650;

struct MapPoint {
  double x = 0, y = 0;
};

// A part of the map with a frame of its own.
struct Inset {
  const char* label;
  double x, y, width, height;
};
std::span<const Inset> insets();

// Why a ZIP code is on the map, or not.
enum class Placing : std::uint8_t {
  OnMap,
  Military,       // a post office of the forces lies where they are
  NoCoordinates,  // the list of places has none
  NotListed,      // it does not have the ZIP code
  OffMap          // its coordinates lie outside of its part of the map
};

class Atlas {
 public:
  explicit Atlas(const std::vector<builder::Place>& places);

  // `at` is set for one on the map.
  Placing find(std::uint32_t zip, MapPoint& at) const;

 private:
  struct Entry {
    Placing placing = Placing::NotListed;
    MapPoint at;
  };
  std::vector<Entry> entries_;  // by ZIP code
};

}  // namespace statecut::draw
