#include "tables/refpointers.h"

#include "base/le.h"

namespace statecut {

std::array<RefSlot, kSlotCount> refPointers{};

void keepHashMask(std::uint32_t slotCount) {
  unsigned char* kept = refPointers[kSlotHashMask].bytes;
  le::put<4>(kept, slotCount - 1);
  le::put<4>(kept + 4, ~(slotCount - 1));
}

const void* loadedHashTable = nullptr;
void (*whenHashDropped)() = nullptr;

void dropHashMask() {
  refPointers[kSlotHashMask] = {};
  loadedHashTable = nullptr;
  if (whenHashDropped != nullptr) whenHashDropped();
}

}  // namespace statecut
