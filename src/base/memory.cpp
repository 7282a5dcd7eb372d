#include "base/memory.h"

#include "base/system.h"

namespace statecut {

void* allocTable(std::uint64_t bytes) {
  if (bytes > kTableMaxBytes) return nullptr;
  return sys::allocateZeroed(static_cast<std::size_t>(bytes + kTableSlack));
}

void freeTable(void* block) { sys::release(block); }

}  // namespace statecut
