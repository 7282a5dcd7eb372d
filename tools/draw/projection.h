#pragma once
// From places on the globe to places on the map.

#include <optional>
#include <string>

#include "draw/atlas.h"

namespace statecut::draw {

struct GlobePoint {
  double latitude = 0, longitude = 0;  // degrees, north and east
};

// The parts of the map, each with its projection.
enum class Area : std::uint8_t { Mainland, Alaska, Hawaii, Caribbean, Pacific };

// The area of a place by its state; none: of the forces. Islands of a state may lie in the area of
// others.
std::optional<Area> areaOf(const std::string& state, const GlobePoint& at);

// A place of the areas around America that lies in the east has lost the sign of its longitude.
GlobePoint mended(Area area, GlobePoint at);

// The point of the map; none when it lies outside of the area's part.
std::optional<MapPoint> project(Area area, GlobePoint at);

}  // namespace statecut::draw
