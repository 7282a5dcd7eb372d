#pragma once
// The files of a release as pieces.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "diff/partitions.h"
#include "draw/figures.h"

namespace statecut::draw {

// A multi-ZIP partition; each stands there once, with the state of the first who leads to it.
struct SharedPartition {
  diff::Kind kind = diff::Kind::Sfh;
  std::string_view state;
  std::uint64_t bytes = 0;
};
std::vector<SharedPartition> sharedPartitions(const diff::Release& release,
                                              const diff::Partitions& partitions);

// Bytes of the partitions of single ZIP codes by kind.
std::array<std::uint64_t, kKindCount> singleBytes(const diff::Release& release,
                                                  const diff::Partitions& partitions);

// `cut` may be null.
File referenceFile(const diff::Release& release, const diff::Release* cut);
File rangeFile(const diff::Release& release, const diff::Release* cut);

}  // namespace statecut::draw
