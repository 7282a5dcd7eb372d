#include "base/memory.h"

#include "base/system.h"
#include "base/tablearena.h"

namespace statecut {

void* allocTable(std::uint64_t bytes) {
  if (bytes > kTableMaxBytes) return nullptr;
  const auto room = static_cast<std::size_t>(bytes + kTableSlack);
  void* const block = takeFromArena(room);
  return block != nullptr ? block : sys::allocateZeroed(room);
}

void freeTable(void* block) {
  ++tablesReleased;
  if (!releaseInArena(block)) sys::release(block);
}

}  // namespace statecut
