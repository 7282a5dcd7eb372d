#pragma once
// The state cut: chooses the ZIP codes of the selected states and writes the cut pair.

#include <cstdint>

namespace statecut {

// The whole cut, with the settings in cmdLine. 0 or the run's status (negative).
std::int32_t cutStates();

}  // namespace statecut
