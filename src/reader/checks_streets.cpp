// The check at opening of the lists of streets that ambiguous variations stand for.

#include <algorithm>
#include <vector>

#include "lookup/inmemory.h"
#include "reader/placing.h"

namespace statecut {

namespace {

using Ref = RefControlRec;
using Bytes = std::span<const unsigned char>;

// A negative count stands for none.
std::uint64_t scfBytes(const unsigned char* entry) {
  const std::uint32_t count = entry[StreetListEntryRow::scfCount.at];
  return count > 127 ? 0 : std::uint64_t{count} * KeyRow::size;
}
constexpr std::uint64_t kLongestEntry = StreetListEntryRow::size + 127 * KeyRow::size;

// Calls visit(row, offset) for the ambiguous variations of a table, one name behind the other.
template <typename Visit>
void forEachList(Bytes variations, Visit visit) {
  for (std::uint64_t at = 0; at + VariationRow::size <= variations.size();) {
    const auto* row = reinterpret_cast<const VariationRow*>(variations.data() + at);
    if (memory::flagOf(*row) < 0) visit(*row, std::uint64_t{row->get(VariationRow::value)});
    at += VariationRow::size + (row->get(VariationRow::flag) & 0x7FU);
  }
}

// Which lists end inside of their table. Most are so far from its end that they must. For the
// others it is known how many entries there are from each byte on to the end of the table, so that
// lists that lie in each other take no longer.
class ListTable {
 public:
  explicit ListTable(Bytes lists) : lists_(lists), from_(lists.size()) {}

  // A list that will be asked for.
  void note(std::uint64_t offset) {
    if (hasCount(offset) && !mustFit(offset)) from_ = std::min(from_, offset);
  }
  void count() {
    entries_.assign(lists_.size() - from_ + 1, 0);
    for (std::uint64_t at = lists_.size(); at-- > from_;) {
      if (at + StreetListEntryRow::size > lists_.size()) continue;
      const std::uint64_t end = at + StreetListEntryRow::size + scfBytes(lists_.data() + at);
      if (end <= lists_.size()) entries_[at - from_] = 1 + entries_[end - from_];
    }
  }
  [[nodiscard]] bool holds(std::uint64_t offset) const {
    if (!hasCount(offset)) return false;
    return mustFit(offset) || entries_[offset + StreetListRow::size - from_] >= entriesAt(offset);
  }

 private:
  [[nodiscard]] bool hasCount(std::uint64_t offset) const {
    return offset + StreetListRow::size <= lists_.size();
  }
  [[nodiscard]] std::uint64_t entriesAt(std::uint64_t offset) const {
    return le::get<2>(lists_.data() + offset + StreetListRow::entries.at);
  }
  [[nodiscard]] bool mustFit(std::uint64_t offset) const {
    return offset + StreetListRow::size + entriesAt(offset) * kLongestEntry <= lists_.size();
  }

  Bytes lists_;
  std::uint64_t from_;  // of the counts
  std::vector<std::uint32_t> entries_;
};

}  // namespace

bool checkStreetLists(const Database::Loaded& loaded, Error& error) {
  const TableView& view = loaded.view;
  const auto check = [&](TableId id, Bytes variations, Bytes lists) {
    ListTable table(lists);
    forEachList(variations, [&](const VariationRow&, std::uint64_t at) { table.note(at); });
    table.count();
    const VariationRow* wrong = nullptr;
    forEachList(variations, [&](const VariationRow& row, std::uint64_t at) {
      if (wrong == nullptr && !table.holds(at)) wrong = &row;
    });
    if (wrong == nullptr) return true;
    const auto offset = static_cast<std::uint64_t>(wrong->bytes.data() - loaded.bytes.data());
    return failedTable(error, ErrorCode::kDamaged, loaded.file, tableLine(id).name, offset,
                       "has a list of streets that ends behind its table");
  };
  const auto bytes = [&](SlotNumber slot, std::uint32_t count) {
    return Bytes(view.table(slot), count);
  };
  return check(TableId::kStreetPhonetics,
               bytes(kSlotStreetPhonetics, view.word(Ref::streetPhoneticsBytes)),
               bytes(kSlotStreetPhoneticAmb, view.word(Ref::streetPhoneticAmbDataBytes))) &&
         check(TableId::kStreetStandards,
               bytes(kSlotStreetStandards, view.word(Ref::streetStandardsBytes)),
               bytes(kSlotStreetStandardAmb, view.word(Ref::streetStandardAmbDataBytes)));
}

}  // namespace statecut
