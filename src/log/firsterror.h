#pragma once
// The run's first error: kept in the processing object for whoever asks after a failed call.

#include <cstdint>

#include "base/procobj.h"

namespace statecut {

// Remembers the message when its severity is 2 or less and no message number is held yet, and
// copies it into the caller's error record if there is one. Texts may not be null.
void rememberFirstError(ProcObj* proc, const char* source, std::int32_t severity,
                        std::uint32_t reason, std::int32_t number, const char* text);

}  // namespace statecut
