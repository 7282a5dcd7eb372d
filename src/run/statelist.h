#pragma once
// The user's state list: read from the state file or standard input into cmdLine, sorted.

#include <cstdint>

namespace statecut {

// Reads, completes and sorts the list of cmdLine. 0, 1 when a line was no state (each is reported)
// or kNoStateFile.
[[nodiscard]] std::int32_t readStateList();
inline constexpr std::int32_t kNoStateFile = -8;

void sortStates();  // the list of cmdLine, ascending; duplicates stay

// True once the list was read from standard input, which is closed then and not touched again.
[[nodiscard]] bool stdinClosed();

}  // namespace statecut
