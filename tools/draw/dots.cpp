#include "draw/dots.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "draw/names.h"

namespace statecut::draw {

namespace {

constexpr double kCell = 2.5;  // units of the map

struct Cell {
  int y = 0, x = 0;

  bool operator<(const Cell& other) const { return std::tie(y, x) < std::tie(other.y, other.x); }
};

// Strokes of no length are dots by their round caps.
std::string pathOf(const std::set<Cell>& cells) {
  std::string path;
  Cell at;
  for (const Cell& cell : cells) {
    path += 'm' + std::to_string(cell.x - at.x) + (cell.y >= at.y ? " " : "") +
            std::to_string(cell.y - at.y) + "h0";
    at = cell;
  }
  return path;
}

struct Dots {
  std::set<Cell> cells;
  std::uint64_t zips = 0;
};

}  // namespace

std::string dotsSvg(const Figures& figures, const Atlas& atlas, const Mode& mode) {
  std::map<std::pair<std::uint8_t, std::uint32_t>, Dots> paths;  // by tone and state
  for (std::size_t i = 0; i < figures.zips.size(); ++i) {
    MapPoint at;
    if (mode.ofZip[i] == kNoTone) continue;
    if (atlas.find(figures.zips[i].zip, at) != Placing::OnMap) continue;
    Dots& dots = paths[{mode.ofZip[i], figures.zips[i].state}];
    dots.cells.insert(
        {static_cast<int>(std::lround(at.y / kCell)), static_cast<int>(std::lround(at.x / kCell))});
    ++dots.zips;
  }
  std::string svg = "<g class=\"dots\" transform=\"scale(" + decimal(kCell, 2) + ")\">\n";
  for (const auto& [key, dots] : paths) {
    const Tone& tone = mode.tones[key.first];
    svg += "<path class=\"tone-" + tone.id + "\" d=\"" + pathOf(dots.cells) + "\"><title>" +
           escaped(figures.states[key.second].name) + ", " + escaped(tone.label) + ": " +
           grouped(dots.zips) + "</title></path>\n";
  }
  return svg + "</g>\n";
}

}  // namespace statecut::draw
