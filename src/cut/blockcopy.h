#pragma once
// The two block copiers, and what moves bytes without them. A block copier reads kBlockBytes at a
// time, past the end of what is wanted too, and appends exactly the bytes wanted; where the source
// ends early, bytes of an earlier block of the same call fill the rest.

#include <cstdint>

#include "base/procobj.h"
#include "base/stream.h"

namespace statecut {

// Where a copy reads and where it appends; `proc` counts its reads and logs its failures.
struct CopyPath {
  Stream* from;
  Stream* to;
  ProcObj* proc;
};

// True when a source of `sourceBytes` has the bytes in one piece: none past its end, and none past
// 2^32, where RBAs begin at 0 again. Only such a piece moves without being read.
[[nodiscard]] constexpr bool inOnePiece(std::uint32_t rba, std::uint32_t bytes,
                                        std::uint64_t sourceBytes) {
  const std::uint64_t end = std::uint64_t{rba} + bytes;
  return end <= sourceBytes && end <= std::uint64_t{UINT32_MAX} + 1;
}

// Moves what it can at once of bytes that the source has in one piece. The bytes moved; 0 also of
// a null stream and of one in error.
std::uint64_t moveAtOnce(const CopyPath& path, std::uint64_t offset, std::uint64_t bytes,
                         Pages pages);

// Copies a partition of which the first `moved` bytes are moved already, and counts the reads that
// these save. 0, or -1 (said on standard output) when a read or write fails.
std::int32_t copyRest(const CopyPath& path, std::uint32_t rba, std::uint32_t bytes,
                      std::uint32_t moved);

// Copies `bytes` bytes (as a signed number: nothing from 2^31 on) at `rba` of the source range
// database to the end of newRangeDb. As copyRest. Counts no bytes: appendRangePartition does.
std::int32_t copyEntryPoint(std::uint32_t rba, std::uint32_t bytes);

// The same from the source reference database to newRefDb, added to totalBytes. Always 0.
std::int32_t copyPartition(std::uint32_t rba, std::uint32_t bytes);

}  // namespace statecut
