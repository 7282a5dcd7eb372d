#pragma once
// Adding to the list of street keys.

#include <cstdint>

namespace statecut {

// Appends to keyList and raises *count; neither when the position is outside the list.
void addStreetKey(std::uint32_t key, std::int32_t* count);

}  // namespace statecut
