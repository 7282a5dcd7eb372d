#pragma once
// Names of a run that lead to one file: no output may be an input, the state file or the other
// output, and the log none of them. Told before a file of theirs is touched.

#include <cstdint>

namespace statecut {

// 0, or -1 when an output is another file of the cut (logged).
std::int32_t checkOutputNames();

// True when the settings would open a log that is an input, the state file or an output.
[[nodiscard]] bool logIsOtherFile();

// Reports such a log as an open that failed; the log's own failure status.
[[nodiscard]] std::int32_t logRefused();

}  // namespace statecut
