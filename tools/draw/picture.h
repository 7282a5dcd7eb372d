#pragma once
// The bars and the map as one SVG.

#include <string>

#include "draw/atlas.h"
#include "draw/figures.h"

namespace statecut::draw {

// `credit` names who the coordinates are from; empty: nobody.
std::string pictureSvg(const Figures& figures, const Atlas& atlas, const std::string& credit);

}  // namespace statecut::draw
