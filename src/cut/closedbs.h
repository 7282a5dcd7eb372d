#pragma once

#include <cstdint>

namespace statecut {

// Releases what a finished cut holds: the loaded tables, both control records, the work tables,
// the output streams and the range input (the reference input is closed by then). Always 0.
std::int32_t closeDbs();

}  // namespace statecut
