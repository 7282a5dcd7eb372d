#pragma once
// What bench_replay moves: its plan is a file of these, as they lie in memory.

#include <cstdint>

namespace statecut::bench {

struct PlannedMove {
  std::uint32_t file;   // which of the arguments behind the plan, 0-based
  std::uint32_t write;  // 1: written, 0: read
  std::uint64_t at;     // offset in the file
  std::uint64_t bytes;
};

}  // namespace statecut::bench
