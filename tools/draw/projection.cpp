#include "draw/projection.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <numbers>

namespace statecut::draw {

namespace {

constexpr Inset kInsets[] = {
    {"Alaska", 6, 468, 190, 176},
    {"Hawaii", 204, 560, 104, 84},
    {"Pacific islands", 560, 570, 150, 74},
    {"Caribbean", 872, 584, 122, 60},
};
constexpr double kInsetMargin = 7;
constexpr double kInsetTop = 17;  // room for the label

// Equal areas between two parallels (Albers); with `flat`, degrees as they are, for islands on both
// sides of the equator.
struct Projection {
  double south, north;  // the parallels
  double latitude, longitude;
  bool flat;

  MapPoint operator()(GlobePoint at) const;
};

constexpr Projection kProjections[] = {{29.5, 45.5, 37.5, -96, false},
                                       {55, 65, 60, -152, false},
                                       {8, 18, 20.5, -157.5, false},
                                       {17, 19, 18.2, -66, false},
                                       {0, 0, 5, 165, true}};

double radians(double degrees) { return degrees * std::numbers::pi / 180; }

// Between half a turn west and half a turn east.
double turned(double degrees) {
  if (degrees > 180) return degrees - 360;
  return degrees < -180 ? degrees + 360 : degrees;
}

MapPoint Projection::operator()(GlobePoint at) const {
  const double east = turned(at.longitude - longitude);
  if (flat) return {radians(east), -radians(at.latitude - latitude)};
  const double n = (std::sin(radians(south)) + std::sin(radians(north))) / 2;
  const double c =
      std::cos(radians(south)) * std::cos(radians(south)) + 2 * n * std::sin(radians(south));
  const auto radius = [&](double degrees) {
    return std::sqrt(std::max(0.0, c - 2 * n * std::sin(radians(degrees)))) / n;
  };
  const double angle = n * radians(east);
  return {radius(at.latitude) * std::sin(angle),
          radius(at.latitude) * std::cos(angle) - radius(latitude)};
}

// Places at the rim of an area: with them it is fitted into its frame.
constexpr GlobePoint kMainlandRim[] = {
    {49.1, -123.2}, {48.4, -124.8}, {40.4, -124.5}, {32.5, -117.2}, {25.8, -97.2}, {24.5, -81.8},
    {25.7, -80.1},  {35.2, -75.4},  {44.8, -66.9},  {47.4, -68.3},  {49.4, -95.2}, {49.0, -110.0}};
constexpr GlobePoint kAlaskaRim[] = {
    {71.5, -156.5}, {51.7, -177.2}, {54.8, -130.0}, {65.6, -168.2}};
constexpr GlobePoint kHawaiiRim[] = {{22.3, -160.3}, {18.9, -155.6}, {19.5, -154.7}};
constexpr GlobePoint kCaribbeanRim[] = {{18.6, -67.4}, {17.6, -64.5}, {18.5, -64.5}};
constexpr GlobePoint kPacificRim[] = {{20.5, 131.5}, {-16.0, -168.0}};

constexpr double kTolerance = 3;  // units of the map that a place may lie outside of its frame

struct Fitted {
  Projection projection;
  Inset frame;
  double scale, left, top;

  MapPoint operator()(GlobePoint at) const {
    const MapPoint raw = projection(at);
    return {left + scale * raw.x, top + scale * raw.y};
  }
};

template <std::size_t N>
Fitted fit(const Projection& projection, const GlobePoint (&rim)[N], const Inset& frame) {
  MapPoint low = projection(rim[0]), high = low;
  for (const GlobePoint& place : rim) {
    const MapPoint at = projection(place);
    low = {std::min(low.x, at.x), std::min(low.y, at.y)};
    high = {std::max(high.x, at.x), std::max(high.y, at.y)};
  }
  const double scale = std::min(frame.width / (high.x - low.x), frame.height / (high.y - low.y));
  return {projection, frame, scale, frame.x + frame.width / 2 - scale * (low.x + high.x) / 2,
          frame.y + frame.height / 2 - scale * (low.y + high.y) / 2};
}

Inset inside(const Inset& inset) {
  return {inset.label, inset.x + kInsetMargin, inset.y + kInsetTop, inset.width - 2 * kInsetMargin,
          inset.height - kInsetTop - kInsetMargin};
}

const Fitted& fitted(Area area) {
  static const std::array<Fitted, 5> kFitted = {
      fit(kProjections[0], kMainlandRim, {"", 6, 6, kMapWidth - 12, 612}),
      fit(kProjections[1], kAlaskaRim, inside(kInsets[0])),
      fit(kProjections[2], kHawaiiRim, inside(kInsets[1])),
      fit(kProjections[3], kCaribbeanRim, inside(kInsets[3])),
      fit(kProjections[4], kPacificRim, inside(kInsets[2])),
  };
  return kFitted[static_cast<std::size_t>(area)];
}

bool isOneOf(const std::string& state, std::initializer_list<const char*> states) {
  return std::find(states.begin(), states.end(), state) != states.end();
}

}  // namespace

std::span<const Inset> insets() { return kInsets; }

std::optional<Area> areaOf(const std::string& state, const GlobePoint& at) {
  if (isOneOf(state, {"AA", "AE", "AP"})) return {};
  if (isOneOf(state, {"AS", "FM", "GU", "MH", "MP", "PW", "UM"})) return Area::Pacific;
  // Wake Island is on the other side of the date line.
  if (state == "HI") return at.longitude > 0 ? Area::Pacific : Area::Hawaii;
  if (state == "AK") return Area::Alaska;
  if (isOneOf(state, {"PR", "VI"})) return Area::Caribbean;
  return Area::Mainland;
}

GlobePoint mended(Area area, GlobePoint at) {
  if ((area == Area::Mainland || area == Area::Caribbean) && at.longitude > 0)
    at.longitude = -at.longitude;
  return at;
}

std::optional<MapPoint> project(Area area, GlobePoint at) {
  const Fitted& on = fitted(area);
  const MapPoint point = on(at);
  const Inset& frame = on.frame;
  if (point.x < frame.x - kTolerance || point.x > frame.x + frame.width + kTolerance ||
      point.y < frame.y - kTolerance || point.y > frame.y + frame.height + kTolerance)
    return {};
  return point;
}

}  // namespace statecut::draw
