#pragma once
// The indexes of names behind the fixed interface: of the process-wide tables, a type each.

#include <cstdint>

#include "hash/nameindex.h"
#include "tables/tableview.h"

namespace statecut {

// Lookups of a type until an index of it is made: they have cost as much as making it by then.
inline constexpr std::uint32_t kLookupsToIndex = 16384;

// The index of a type, or null: when there is none, or none is wanted yet. Counts a lookup.
[[nodiscard]] const NameIndex* heldIndex(const TableView& view, std::uint32_t type);
// The same at once.
[[nodiscard]] const NameIndex* madeIndex(const TableView& view, std::uint32_t type);

}  // namespace statecut
