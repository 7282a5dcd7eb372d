#include "dbbuilder/nameindex.h"

#include <algorithm>

#include "dbbuilder/bytes.h"

namespace statecut::builder {

namespace {

struct Placed {
  std::uint32_t slot;
  std::uint32_t check;
  std::uint32_t number;
};

constexpr std::size_t maxNamesInSlot = 255;

std::vector<std::vector<Placed>> place(const std::vector<HashName>& names,
                                       std::uint32_t slotCount) {
  const std::uint32_t mask = slotCount - 1;
  std::vector<std::vector<Placed>> slots(slotCount);
  for (const HashName& name : names) {
    const std::uint32_t hash = nameHash(name.name, name.type);
    const std::uint32_t slot = hash & mask;
    if (slot >= slotCount) continue;
    slots[slot].push_back({slot, name.type | ((hash & ~mask) >> 16), name.number});
  }
  return slots;
}

bool fits(const std::vector<std::vector<Placed>>& slots) {
  return std::all_of(slots.begin(), slots.end(),
                     [](const auto& slot) { return slot.size() <= maxNamesInSlot; });
}

}  // namespace

std::uint32_t nameHash(std::string_view name, unsigned type) {
  std::uint32_t hash = 2166136261U + type;
  for (std::size_t i = name.size(); i-- > 0;) {
    hash *= 16777619U;
    hash ^= static_cast<std::uint32_t>(static_cast<Byte>(name[i])) - 32U;
  }
  return hash;
}

NameIndex buildNameIndex(const std::vector<HashName>& names, std::uint32_t slotCount) {
  const bool chosen = slotCount != 0;
  if (!chosen)
    for (slotCount = 16; std::size_t{slotCount} * 2 < names.size();) slotCount *= 2;
  std::vector<std::vector<Placed>> placed = place(names, slotCount);
  while (!chosen && !fits(placed)) placed = place(names, slotCount *= 2);

  ByteWriter slots;
  ByteWriter overflow;
  NameIndex index;
  for (auto& slot : placed) {
    if (slot.size() > maxNamesInSlot) slot.resize(maxNamesInSlot);
    slots.u8(static_cast<std::uint32_t>(slot.size()));
    if (slot.empty()) {
      slots.zeros(6);
    } else if (slot.size() == 1) {
      slots.u16(slot[0].check);
      slots.u32(slot[0].number);
    } else {
      slots.u16(0);
      slots.u32(index.overflowCount);
      for (const Placed& entry : slot) {
        overflow.u16(entry.check);
        overflow.u32(entry.number);
        ++index.overflowCount;
      }
    }
  }
  index.slotCount = slotCount;
  index.slots = slots.take();
  index.overflow = overflow.take();
  return index;
}

}  // namespace statecut::builder
