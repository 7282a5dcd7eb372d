#pragma once
// Builds the hash index over the six name types.

#include <cstdint>
#include <string_view>
#include <vector>

#include "dbbuilder/model.h"

namespace statecut::builder {

// Hash of a name of a type: FNV-style over the bytes from last to first.
std::uint32_t nameHash(std::string_view name, unsigned type);

struct NameIndex {
  Bytes slots;     // 7 bytes each
  Bytes overflow;  // 6 bytes each
  std::uint32_t slotCount = 0;
  std::uint32_t overflowCount = 0;
};

// Slot count 0: the power of two that gives one to two names a slot, so that some slots overflow,
// doubled while a slot would hold more than its count byte can say. A given count is kept; a slot
// then leaves out the names above 255.
NameIndex buildNameIndex(const std::vector<HashName>& names, std::uint32_t slotCount);

}  // namespace statecut::builder
