#pragma once
// The report as one page that needs nothing else: no other file, no address, no font.

#include <string>

#include "draw/atlas.h"
#include "draw/figures.h"

namespace statecut::draw {

// `credit` names who the coordinates are from; empty: nobody, and without the notice of the data.
std::string pageHtml(const Figures& figures, const Atlas& atlas, const std::string& credit);

}  // namespace statecut::draw
