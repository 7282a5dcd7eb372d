#include "draw/dots.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "draw/names.h"

namespace statecut::draw {

namespace {

constexpr double kCell = 2.5;  // units of the map

struct Cell {
  int y = 0, x = 0;
  auto operator<=>(const Cell&) const = default;
};

// Strokes of no length are dots by their round caps; cells side by side are one stroke.
std::string pathOf(const std::set<Cell>& cells) {
  std::string path;
  int atX = 0, atY = 0;
  for (auto cell = cells.begin(); cell != cells.end();) {
    auto last = cell, next = std::next(cell);
    while (next != cells.end() && next->y == cell->y && next->x == last->x + 1) last = next++;
    path += 'm' + std::to_string(cell->x - atX) + (cell->y >= atY ? " " : "") +
            std::to_string(cell->y - atY) + 'h' + std::to_string(last->x - cell->x);
    atX = last->x;
    atY = cell->y;
    cell = next;
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
