#pragma once
// The first pass over the reference database: copies the tables that a cut does not change and
// loads those that it rewrites.

#include <cstdint>

namespace statecut {

std::int32_t copyRefDb();  // 0 or -1 (logged)

// Whether the last copyRefDb went on without a table because memory ran out: the cut is not right.
[[nodiscard]] bool refCopyOutOfMemory();

// Loaders of tables that a cut rewrites. 0, or a status (logged) after which the slot is null or
// holds what was read.
std::int32_t readCityData4SC1();  // -2
std::int32_t readCityData4SC2();  // -2, or -5 for its second table
std::int32_t readZipData4SC1();   // -5
std::int32_t readZipData4SC2();   // -5

}  // namespace statecut
