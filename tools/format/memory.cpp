#include "format/memory.h"

#include <malloc.h>

namespace statecut::format {

namespace {

constexpr int kKeptBytes = 32 << 20;

}  // namespace

void keepFreedMemory() {
  (void)::mallopt(M_MMAP_THRESHOLD, kKeptBytes);
  (void)::mallopt(M_TRIM_THRESHOLD, kKeptBytes);
}

}  // namespace statecut::format
