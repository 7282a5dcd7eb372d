#pragma once
// The parts of the page, as markup.

#include <string>
#include <vector>

#include "draw/atlas.h"
#include "draw/figures.h"
#include "draw/tones.h"

namespace statecut::draw {

// What the database is and how much is in it.
std::string summarySection(const Figures& figures);

// The files as bars, with a table of their pieces.
std::string filesSection(const Figures& figures);

// The map without its dots, which a script draws; legends, and what is not on it.
std::string mapSection(const Figures& figures, const Atlas& atlas, const std::vector<Mode>& modes);

std::string statesSection(const Figures& figures);

// What changed since the older release; empty without one.
std::string changesSection(const Figures& figures);

// What the scripts need: names, ZIP codes, places and tones, as JSON for a script element.
std::string pageData(const Figures& figures, const Atlas& atlas, const std::vector<Mode>& modes);

}  // namespace statecut::draw
