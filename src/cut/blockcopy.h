#pragma once
// The two block copiers. Both read kBlockBytes at a time, past the end of what is wanted too, and
// append exactly the bytes wanted; where the source ends early, bytes of an earlier block of the
// same call fill the rest. Blocks that the source has may move without being read.

#include <cstdint>

namespace statecut {

// True when a source of `sourceBytes` has the bytes in one piece: none past its end, and none past
// 2^32, where RBAs begin at 0 again. Only such a piece moves without being read.
[[nodiscard]] constexpr bool inOnePiece(std::uint32_t rba, std::uint32_t bytes,
                                        std::uint64_t sourceBytes) {
  const std::uint64_t end = std::uint64_t{rba} + bytes;
  return end <= sourceBytes && end <= std::uint64_t{UINT32_MAX} + 1;
}

// Copies `bytes` bytes (as a signed number: nothing from 2^31 on) at `rba` of the source range
// database to the end of newRangeDb, of which the first `moved` are there already. 0, or -1 (said
// on standard output) when a read or write fails.
std::int32_t copyEntryPoint(std::uint32_t rba, std::uint32_t bytes, std::uint32_t moved = 0);

// The same from the source reference database to newRefDb, added to totalBytes. Always 0.
std::int32_t copyPartition(std::uint32_t rba, std::uint32_t bytes);

}  // namespace statecut
