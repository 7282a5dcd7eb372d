#pragma once
// The bytes that a process moves, by its system calls under strace.

#include <string>
#include <vector>

#include "processes/setup.h"

namespace statecut::bench {

struct Move {
  std::string path;
  bool write = false;
  bool mapped = false;   // read by mapping the file, all of it
  std::uint64_t at = 0;  // offset in the file
  std::uint64_t bytes = 0;
};

// In their order, of one thread after the other. The command must end with status 0.
std::vector<Move> movesOf(const Setup& setup, const Command& command);

}  // namespace statecut::bench
