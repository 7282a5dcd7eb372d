#include "unit/tables/faultyalloc.h"

#include <cstdlib>

#include "base/memory.h"

namespace statecut {

namespace {

int successesLeft = -1;  // below 0: no allocation is to fail

}  // namespace

namespace test {

void failAllocationAfter(int successes) { successesLeft = successes; }

}  // namespace test

// Takes the place of the library's own at link time, and behaves as it does.
void* allocTable(std::uint64_t bytes) {
  if (successesLeft >= 0 && successesLeft-- == 0) return nullptr;
  if (bytes > kTableMaxBytes) return nullptr;
  return std::calloc(static_cast<std::size_t>(bytes + kTableSlack), 1);
}

void freeTable(void* block) { std::free(block); }

}  // namespace statecut
