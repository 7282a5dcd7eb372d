#include "base/tablearena.h"

#include <cstring>
#include <functional>
#include <utility>

#include "base/memory.h"
#include "base/sanitizer.h"

namespace statecut {

namespace {

TableArena* arenas = nullptr;  // that have a block
TableArena* inUse = nullptr;

constexpr std::size_t kLine = 64;  // a table begins with a cache line

// The sanitizer is told which bytes of an arena are those of a table; the size stands in front of
// each, in a gap.
constexpr std::size_t kGap = kAddressSanitizer ? kLine : 0;

void noteTaken(unsigned char* table, std::size_t bytes) {
  if (!kAddressSanitizer) return;
  permitBytes(table - sizeof bytes, sizeof bytes + bytes);
  std::memcpy(table - sizeof bytes, &bytes, sizeof bytes);
  forbidBytes(table - sizeof bytes, sizeof bytes);
}

void noteReleased(unsigned char* table) {
  if (!kAddressSanitizer) return;
  std::size_t bytes = 0;
  permitBytes(table - sizeof bytes, sizeof bytes);
  std::memcpy(&bytes, table - sizeof bytes, sizeof bytes);
  forbidBytes(table - sizeof bytes, sizeof bytes + bytes);
}

constexpr std::uint64_t inLines(std::uint64_t bytes) { return (bytes + kLine - 1) / kLine * kLine; }

}  // namespace

void TableArena::make(std::uint64_t bytes, std::size_t tables) {
  drop();
  if (bytes == 0) return;
  block_ = LargeBlock(
      static_cast<std::size_t>(inLines(bytes) + tables * (inLines(kTableSlack) + kLine + kGap)));
  if (block_.data() == nullptr) return;
  forbidBytes(block_.data(), block_.size());
  next_ = arenas;
  arenas = this;
}

void TableArena::drop() {
  if (block_.data() == nullptr) return;
  TableArena** at = &arenas;
  while (*at != this) at = &(*at)->next_;
  *at = next_;
  permitBytes(block_.data(), block_.size());
  block_ = LargeBlock();
  used_ = 0;
}

void* TableArena::take(std::size_t bytes) {
  const std::uint64_t place = kGap + inLines(bytes);
  if (place > block_.size() - used_) return nullptr;
  unsigned char* const table = block_.data() + used_ + kGap;
  used_ += static_cast<std::size_t>(place);
  noteTaken(table, bytes);
  return table;
}

bool TableArena::holds(const void* table) const {
  const std::less<const void*> before;
  return !before(table, block_.data()) && before(table, block_.data() + block_.size());
}

TableArena::Use::Use(TableArena& arena) : before_(std::exchange(inUse, &arena)) {}

TableArena::Use::~Use() { inUse = before_; }

void* takeFromArena(std::size_t bytes) { return inUse == nullptr ? nullptr : inUse->take(bytes); }

bool releaseInArena(void* table) {
  for (const TableArena* arena = arenas; arena != nullptr; arena = arena->next_) {
    if (!arena->holds(table)) continue;
    noteReleased(static_cast<unsigned char*>(table));
    return true;
  }
  return false;
}

}  // namespace statecut
