#pragma once
// A line on standard error that shows how far the copying of range partitions is. Nothing at all
// is written when standard error is not a terminal.

#include <cstdint>

namespace statecut {

[[nodiscard]] bool progressWanted();

// Starts a step of `total` bytes; only to be called when progressWanted().
void progressStep(const char* name, std::uint64_t total);
void progressAdd(std::uint64_t bytes);
void progressClear();  // removes the line

}  // namespace statecut
