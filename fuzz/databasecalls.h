#pragma once
// A Database of the damaged pair of an input, asked for what the input says.

#include "basepair.h"
#include "input.h"

namespace statecut::fuzz {

// Opens the mounted pair twice, from bytes that end where the file ends and in a way that the
// input chooses. A finding when one is refused and the other is not, when two answers differ, or
// when an error says nothing.
void askDatabase(const DamagedPair& pair, Input& input);

}  // namespace statecut::fuzz
