#pragma once
// Inside of the block cache: reads that leave no block whose bytes are not those of the file.

#include <cstdint>

#include "lookup/cache.h"

namespace statecut {

inline constexpr std::uint32_t kEmptyStart =
    0xFFFFFFFFu;  // with end 0: an entry that holds nothing

// As chFillCacheFromFile; false when the read failed in any way, and then the block is empty.
[[nodiscard]] bool fillBlock(Cache* cache, Stream* file, std::uint32_t rba, ProcObj* proc);

}  // namespace statecut
