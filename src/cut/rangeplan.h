#pragma once
// The range partitions that a step is going to copy, in its order. Partitions that stand one behind
// the other in the source move together, ahead of their turn, and what comes next is read ahead.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "cut/blockcopy.h"

namespace statecut {

class RangePlan {
 public:
  explicit RangePlan(const CopyPath& path);

  // Both take the partitions in the same order: first all are added, then each is copied.
  void add(std::uint32_t rba, std::uint32_t bytes);
  void reserve() const;                                       // room on the disk for what was added
  std::int32_t copy(std::uint32_t rba, std::uint32_t bytes);  // as copyEntryPoint, by its path

 private:
  struct Run {
    std::uint64_t begin;
    std::uint64_t next;   // where the next partition to copy begins
    std::uint64_t moved;  // up to here the bytes are copied: next or behind it
    std::uint64_t end;
  };

  [[nodiscard]] bool inSource(std::uint32_t rba, std::uint32_t bytes) const;
  bool advance(Run& run);
  void announce(const Run& run);
  void lookAhead();

  CopyPath path_;
  std::uint64_t sourceBytes_;
  std::uint64_t planned_ = 0;  // bytes
  std::vector<Run> runs_;
  bool joinable_ = false;  // a neighbour of the last run's end joins it
  std::size_t current_ = 0;
  bool announces_ = false;
  std::size_t announced_ = 0;  // the run whose bytes are to be announced next
  std::uint64_t announcedInRun_ = 0;
  std::uint64_t moved_ = 0;  // bytes of the plan that are copied
  std::uint64_t announcedBytes_ = 0;
};

}  // namespace statecut
