#include "draw/atlas.h"

#include <charconv>
#include <cmath>
#include <optional>

#include "draw/projection.h"
#include "format/directory.h"

namespace statecut::draw {

namespace {

std::optional<double> degrees(const std::string& text, double most) {
  double value = 0;
  const char* last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, value);
  if (error != std::errc{} || end != last || !(std::abs(value) <= most)) return {};
  return value;
}

}  // namespace

Atlas::Atlas(const std::vector<builder::Place>& places) : entries_(format::kZipIndexEntries) {
  for (const builder::Place& place : places) {
    if (place.zip >= entries_.size()) continue;
    Entry& entry = entries_[place.zip];
    const auto latitude = degrees(place.latitude, 90), longitude = degrees(place.longitude, 180);
    if (!latitude || !longitude) {
      entry.placing = Placing::NoCoordinates;
      continue;
    }
    const GlobePoint at{*latitude, *longitude};
    const auto area = areaOf(place.state, at);
    if (!area) {
      entry.placing = Placing::Military;
      continue;
    }
    const auto point = project(*area, mended(*area, at));
    entry.placing = point ? Placing::OnMap : Placing::OffMap;
    if (point) entry.at = *point;
  }
}

Placing Atlas::find(std::uint32_t zip, MapPoint& at) const {
  if (zip >= entries_.size()) return Placing::NotListed;
  at = entries_[zip].at;
  return entries_[zip].placing;
}

}  // namespace statecut::draw
