#include "tables/refpointers.h"

namespace statecut {

std::array<RefSlot, kSlotCount> refPointers{};

}  // namespace statecut
