#pragma once
// The single-ZIP range partitions: copied in ZIP code order, one pass a kind.

#include <cstdint>

#include "cut/rangeplan.h"

namespace statecut {

// Kinds of partition.
inline constexpr std::int32_t kPob = 0;
inline constexpr std::int32_t kSfh = 1;
inline constexpr std::int32_t kRr = 2;

// Copies the partitions of every ZIP code in the cut and points the ZIP records at the copies. 0,
// or -1 at a bad ZIP key (logged) or a read error of the source.
std::int32_t buildZipEntryPoints();

// The path of the open range databases.
[[nodiscard]] CopyPath rangePath();

// Copies a partition by its plan and counts it in totalRngBytes, its RBA until then. 0, or -1 when
// the source is in error. Deliberate: any other failed copy is counted as if it were whole, and the
// cut goes on to the end of the step, for the sake of what a failing run leaves.
std::int32_t appendRangePartition(RangePlan& plan, std::uint32_t rba, std::uint32_t bytes);

// Bytes of a partition of ZIP key `key`; 0 with a warning when that is its size, the key is not
// below the ZIP count or the kind is unknown.
std::int32_t getEntryPointSize(std::uint32_t key, std::int32_t kind);

}  // namespace statecut
