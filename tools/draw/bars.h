#pragma once
// Files as bars: where each piece begins and ends.

#include <vector>

#include "draw/figures.h"

namespace statecut::draw {

// A piece in shares of the bar.
struct Slice {
  const Piece* piece = nullptr;
  double at = 0;
  double width = 0;
  double kept = 0;  // of the width, in the cut
};

// The pieces that have a width, one behind the other. The file must stay.
std::vector<Slice> slicesOf(const File& file);

// Of a family: the id of its colour, and its name for a legend.
const char* familyId(Family family);
const char* familyLabel(Family family);

// The families of the pieces, each once, in their order; without those that are too small to be
// seen.
std::vector<Family> familiesOf(const File& file);

// Units that a text of this many characters takes, at most, in letters of the size.
double textWidth(std::size_t characters, double size);

}  // namespace statecut::draw
