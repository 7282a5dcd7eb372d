#include "dbfiles/memory.h"

#include <cstdlib>

namespace statecut {

void* allocTable(std::uint64_t bytes) {
  if (bytes > kTableMaxBytes) return nullptr;
  return std::calloc(static_cast<std::size_t>(bytes + kTableSlack), 1);
}

void freeTable(void* block) { std::free(block); }

}  // namespace statecut
