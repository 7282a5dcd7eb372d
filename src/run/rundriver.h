#pragma once
// The run driver: one run of the utility from its arguments to its status.

#include <cstdint>

namespace statecut {

// 0, 1 (usage was shown) or a negative status; the process exits with its low eight bits.
[[nodiscard]] std::int32_t runMain(int argc, char** argv);

}  // namespace statecut
