#pragma once
// The tables of two releases as bytes, and the names that stand in them packed.

#include "diff/changes.h"
#include "diff/places.h"

namespace statecut::diff {

// Streets, firms, street variations and phonetic keys.
void compareNames(const Comparison& comparison, Changes& changes);

// Every table that both carry and both control records, without RBAs and time stamps.
void compareTables(const Comparison& comparison, Changes& changes);

}  // namespace statecut::diff
