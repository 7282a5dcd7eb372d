#pragma once
// Keeps the log out of the files that the run reads and writes.

#include <cstdint>

namespace statecut {

// True when the settings would open a log that is an input, the state file or an output.
[[nodiscard]] bool logIsOtherFile();

// Reports such a log as an open that failed; the log's own failure status.
[[nodiscard]] std::int32_t logRefused();

}  // namespace statecut
