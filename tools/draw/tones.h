#pragma once
// How the dots of the map are coloured: by bytes, by the cut, by what changed.

#include <cstdint>
#include <string>
#include <vector>

#include "draw/figures.h"

namespace statecut::draw {

struct Tone {
  std::string id;     // of its colour, tone-ID
  std::string label;  // for the legend
  std::uint64_t zips = 0;
};

// One way to colour the dots.
struct Mode {
  std::string id;
  std::string title;
  std::vector<Tone> tones;          // in the order of drawing: the last on top
  std::vector<std::uint8_t> ofZip;  // beside Figures::zips; kNoTone: not drawn
};
inline constexpr std::uint8_t kNoTone = 255;

// The first is the one to begin with.
std::vector<Mode> modesOf(const Figures& figures);

}  // namespace statecut::draw
