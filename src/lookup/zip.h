#pragma once
// Lookups by ZIP code and ZIP key.

#include <cstdint>

#include "tables/rows.h"

namespace statecut {

inline constexpr char kZipSource[] = "zip";  // source name in log records

// A pointer into the loaded table; null for a key below 1 or above the count.
ZipDataRow* dbGetZipDataFromKeyIn(std::int32_t key);
FinMultiZipRow* dbGetMultiZipFinRBAIn(std::int32_t index);

}  // namespace statecut
