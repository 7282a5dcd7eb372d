#pragma once
// Sizes of multi-ZIP partitions, from the multi-ZIP bytes tables.

#include <cstdint>

namespace statecut {

// Bytes of multi-ZIP partition `key` of a kind, 0 with a warning when there is none. The first
// reads the table as 6-byte entries, the second as 8-byte ones.
std::int32_t getMltZpEntryPntSize(std::uint16_t key, std::int32_t kind);
std::int32_t getMltZpEntryPntSize4(std::uint32_t key, std::int32_t kind);

// The first 16 bits of `a` minus those of `b`.
std::int32_t compareMltZpBytes(const unsigned char* a, const unsigned char* b);

}  // namespace statecut
