#pragma once
// The name of a city by its key, as a value. A key that leads out of its table is a fault of the
// record that holds it.

#include "relations/relation.h"
#include "relations/source.h"

namespace statecut::relations {

// Null for key 0 and for a city without a name, as a cut has them.
[[nodiscard]] Value cityText(const Source& source, const char* table, const void* record,
                             std::uint32_t cityKey, Error& fault);
[[nodiscard]] Value cityPosition(const Source& source, const char* table, const void* record,
                                 std::uint32_t cityKey, Error& fault);

}  // namespace statecut::relations
