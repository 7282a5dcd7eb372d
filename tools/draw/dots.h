#pragma once
// The dots of the map as paths.

#include <string>
#include <vector>

#include "draw/atlas.h"
#include "draw/figures.h"
#include "draw/tones.h"

namespace statecut::draw {

// What an SVG shows of a map: for each tone a group with a path a state, on a grid so coarse that
// dots which can't be told apart are one. In the units of the map.
std::string dotsSvg(const Figures& figures, const Atlas& atlas, const Mode& mode);

}  // namespace statecut::draw
