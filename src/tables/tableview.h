#pragma once
// What a lookup in memory sees: the tables of one database, however they came there.

#include <cstdint>

#include "../base/memory.h"
#include "../base/procobj.h"
#include "../dbfiles/controlrec.h"
#include "../tables/refpointers.h"

namespace statecut {

struct TableView {
  const RefSlot* slots;         // kSlotCount of them; null: not there
  const RefControlRec* record;  // counts and byte lengths; null: no tables
  // Bytes behind each table that may be read: zeros, a record of its own at a key equal to the
  // count. 0 where the next table follows.
  std::uint32_t behind;

  [[nodiscard]] unsigned char* table(SlotNumber slot) const { return slots[slot].table; }

  template <std::size_t At>
  [[nodiscard]] std::uint32_t word(Num<At, 4> field) const {
    return record == nullptr ? 0 : record->get(field);
  }

  // Record `index` of a table of `count`, or null.
  template <typename RowType>
  [[nodiscard]] RowType* row(SlotNumber slot, std::uint64_t index, std::uint64_t count) const {
    unsigned char* at = table(slot);
    if (at == nullptr || record == nullptr || index > count || (index == count && behind == 0))
      return nullptr;
    return reinterpret_cast<RowType*>(at + index * RowType::size);
  }
  template <typename RowType, std::size_t At>
  [[nodiscard]] RowType* row(SlotNumber slot, std::uint64_t index, Num<At, 4> count) const {
    return row<RowType>(slot, index, std::uint64_t{word(count)});
  }

  // True when `count` bytes from offset `at` of a table of `bytes` bytes may be read.
  [[nodiscard]] bool holds(std::uint64_t at, std::uint64_t count, std::uint64_t bytes) const {
    return at + count <= bytes + behind;
  }
};

// The process-wide tables, with a control record; without one nothing is there.
[[nodiscard]] inline TableView processTables(const RefControlRec* record) {
  return {refPointers.data(), record, static_cast<std::uint32_t>(kTableSlack)};
}
[[nodiscard]] inline TableView processTables() {
  return processTables(pProcObj == nullptr ? nullptr : pProcObj->refControlRec);
}

}  // namespace statecut
