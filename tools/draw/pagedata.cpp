#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "draw/encode.h"
#include "draw/markup.h"
#include "draw/sections.h"

namespace statecut::draw {

namespace {

using nlohmann::ordered_json;

constexpr double kSteps = 64;  // of a unit of the map
constexpr std::uint32_t kNowhere = 0xFFFF;

// Two numbers of 16 bits a ZIP code.
std::string places(const Figures& figures, const Atlas& atlas) {
  std::string bytes;
  const auto put = [&](std::uint32_t number) {
    bytes += static_cast<char>(number & 0xFF);
    bytes += static_cast<char>(number >> 8);
  };
  const auto step = [](double value) {
    return static_cast<std::uint32_t>(std::clamp(std::lround(value * kSteps), 0L, 0xFFFEL));
  };
  for (const Zip& zip : figures.zips) {
    MapPoint at;
    const bool placed = atlas.find(zip.zip, at) == Placing::OnMap;
    put(placed ? step(at.x) : kNowhere);
    put(placed ? step(at.y) : kNowhere);
  }
  return base64(bytes);
}

enum Flag : std::uint32_t { kKept = 1, kAdded = 2, kDropped = 4, kMoved = 8, kChanged = 16 };

std::uint32_t flagsOf(const Zip& zip) {
  return (zip.kept ? kKept : 0U) | (zip.added ? kAdded : 0U) | (zip.dropped ? kDropped : 0U) |
         (zip.moved ? kMoved : 0U) | (zip.changed ? kChanged : 0U);
}

// Of each ZIP code: how far from the one before, state, flags, bytes of three kinds, names.
std::string rows(const Figures& figures) {
  std::string bytes;
  std::uint32_t before = 0;
  for (const Zip& zip : figures.zips) {
    putNumber(bytes, zip.zip - before);
    before = zip.zip;
    putNumber(bytes, zip.state);
    putNumber(bytes, flagsOf(zip));
    for (const std::uint64_t kind : zip.bytes) putNumber(bytes, kind);
    putNumber(bytes, zip.names.size());
    for (const std::uint32_t name : zip.names) putNumber(bytes, name);
  }
  return base64(bytes);
}

// Runs of names of one state, a name a line; and of each name, how far back the name stands that
// its city is known by, as a number that is even for those before it.
ordered_json namesOf(const Figures& figures) {
  ordered_json runs = ordered_json::array();
  std::string known;
  for (std::uint32_t i = 0; i < figures.names.size(); ++i) {
    const CityName& name = figures.names[i];
    const std::string state = shown(name.state);
    if (runs.empty() || runs.back()[0] != state)
      runs.push_back({state, shown(name.name)});
    else
      runs.back()[1].get_ref<std::string&>() += "\n" + shown(name.name);
    const bool before = name.known <= i;
    const std::uint64_t away = before ? i - name.known : name.known - i;
    putNumber(known, before ? 2 * away : 2 * away - 1);
  }
  return {{"runs", std::move(runs)}, {"known", base64(known)}};
}

ordered_json modesJson(const std::vector<Mode>& modes) {
  ordered_json list = ordered_json::array();
  for (const Mode& mode : modes) {
    ordered_json tones = ordered_json::array();
    for (const Tone& tone : mode.tones) tones.push_back(tone.id);
    list.push_back(
        {{"id", mode.id},
         {"tones", std::move(tones)},
         {"zips", base64({reinterpret_cast<const char*>(mode.ofZip.data()), mode.ofZip.size()})}});
  }
  return list;
}

}  // namespace

std::string pageData(const Figures& figures, const Atlas& atlas, const std::vector<Mode>& modes) {
  ordered_json states = ordered_json::array();
  for (const State& state : figures.states)
    states.push_back({shown(state.abbreviation), state.name});
  ordered_json frames = ordered_json::array();
  for (const Inset& inset : insets())
    frames.push_back({inset.label, inset.x, inset.y, inset.width, inset.height});
  const ordered_json data = {{"width", kMapWidth},
                             {"height", kMapHeight},
                             {"steps", kSteps},
                             {"bytesKnown", figures.bytesKnown},
                             {"hasCut", figures.hasCut},
                             {"states", std::move(states)},
                             {"insets", std::move(frames)},
                             {"names", namesOf(figures)},
                             {"count", figures.zips.size()},
                             {"rows", rows(figures)},
                             {"places", places(figures, atlas)},
                             {"modes", modesJson(modes)}};
  // In a script element nothing may look like its end.
  std::string text;
  for (const char c : data.dump(-1, ' ', false, ordered_json::error_handler_t::replace)) {
    if (c == '<')
      text += "\\u003c";
    else if (c == '>')
      text += "\\u003e";
    else if (c == '&')
      text += "\\u0026";
    else
      text += c;
  }
  return text;
}

}  // namespace statecut::draw
