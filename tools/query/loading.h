#pragma once
// The tables behind an answer for people: all of them, or which one is missing.

#include <cstdint>
#include <string>

#include "lookup/session.h"

namespace statecut::query {

// Whether the reference file has the sizes of the partitions of each ZIP code; a cut has not.
[[nodiscard]] bool hasZipBytes(Session& session);

// Loads the sets into memory, but not ZIP bytes that the file does not have. Empty, or which table
// could not be loaded and why.
[[nodiscard]] std::string loadFailure(Session& session, std::uint32_t sets);

}  // namespace statecut::query
