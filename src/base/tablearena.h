#pragma once
// One block for the tables that are loaded together: in large pages they cost a fraction of the
// page faults. allocTable takes from the arena in use as long as there is room, freeTable leaves
// what is in one alone, and the block goes as a whole.

#include <cstddef>
#include <cstdint>

#include "../base/largeblock.h"

namespace statecut {

class TableArena {
 public:
  TableArena() = default;
  ~TableArena() { drop(); }
  TableArena(const TableArena&) = delete;
  TableArena& operator=(const TableArena&) = delete;

  // A new block, for so many tables of `bytes` bytes together; none without memory for it. What the
  // old one held is gone.
  void make(std::uint64_t bytes, std::size_t tables);
  void drop();

  // Puts an arena in use for its lifetime.
  class Use {
   public:
    explicit Use(TableArena& arena);
    ~Use();
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

   private:
    TableArena* before_;
  };

 private:
  friend void* takeFromArena(std::size_t bytes);
  friend bool releaseInArena(void* table);

  void* take(std::size_t bytes);
  [[nodiscard]] bool holds(const void* table) const;

  LargeBlock block_;
  std::size_t used_ = 0;
  TableArena* next_ = nullptr;  // of those with a block
};

// For allocTable and freeTable: zeros, or null when no arena in use has room; false when the table
// is in none.
[[nodiscard]] void* takeFromArena(std::size_t bytes);
[[nodiscard]] bool releaseInArena(void* table);

}  // namespace statecut
