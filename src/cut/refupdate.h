#pragma once
// The city tables of the cut reference database and the renumbering of the name hash index.

#include <cstdint>

#include "tables/rows.h"

namespace statecut {

// Allocates the three new city tables, zeroed. 0, or -1 (logged).
std::int32_t createNewRefDb();

// Fills them with the records of the selected states, renumbers or unlinks the names in the index
// and stores the new counts in the control record. 0, or -1 (logged).
std::int32_t updateRefDb();

// Orders by name, then state: the first difference of two bytes, or 0.
std::int32_t compareCities(const CityByStateRow* a, const CityByStateRow* b);

}  // namespace statecut
