#include "hash/heldindex.h"

#include <array>

#include "hash/search.h"

namespace statecut {

namespace {

// What an index was made of. Tables are known by their places: none of them was released since.
struct Origin {
  const unsigned char* slots = nullptr;
  const unsigned char* overflow = nullptr;
  const unsigned char* names = nullptr;
  std::uint32_t slotCount = 0;
  std::uint32_t overflowCount = 0;
  std::uint32_t bound = 0;
  std::uint64_t released = 0;

  [[nodiscard]] bool operator==(const Origin& other) const = default;
};

struct Held {
  NameIndex index;
  Origin origin;
  std::uint32_t lookups = 0;  // since the tables of the origin are there, while there is no index
  bool tried = false;
};

std::array<Held, kNameLayouts.size()> held;
bool anyHeld = false;  // something to drop

Origin originOf(const TableView& view, std::uint32_t type) {
  const NameLayout& layout = kNameLayouts[type];
  return {view.table(kSlotHashTable),
          view.table(kSlotHashOverflow),
          view.table(layout.slot),
          view.word(RefControlRec::hashTableCount),
          view.word(RefControlRec::hashOverflowCount),
          le::get<4>(view.record->bytes.data() + layout.boundAt),
          tablesReleased};
}

// None of tables that are not there. The bytes behind a table may be read as well as its own.
NameIndex indexOf(const Origin& origin, const TableView& view, std::uint32_t type) {
  if (origin.slots == nullptr || origin.names == nullptr) return {};
  const std::size_t entries = origin.overflow == nullptr ? 0 : origin.overflowCount;
  const NameSource source{
      {origin.slots, std::size_t{origin.slotCount} * HashSlotRow::size},
      {origin.overflow, entries * HashOverflowRow::size},
      origin.slotCount - 1,
      {origin.names, std::size_t{origin.bound} * kNameLayouts[type].unit + view.behind},
      origin.bound,
      type};
  return NameIndex::build(source);
}

const NameIndex* usable(const Held& of) { return of.index ? &of.index : nullptr; }

// Of the tables as they are now.
Held& heldOf(const TableView& view, std::uint32_t type) {
  Held& of = held[type];
  const Origin origin = originOf(view, type);
  if (of.origin == origin) [[likely]]
    return of;
  of = Held();
  of.origin = origin;
  anyHeld = true;
  return of;
}

const NameIndex* make(Held& of, const TableView& view, std::uint32_t type) {
  whenHashDropped = dbHashDropIndexes;
  of.tried = true;
  of.index = indexOf(of.origin, view, type);
  return usable(of);
}

}  // namespace

const NameIndex* heldIndex(const TableView& view, std::uint32_t type) {
  if (view.record == nullptr || type >= held.size()) return nullptr;
  Held& of = heldOf(view, type);
  // Not of tables from elsewhere, unless asked for: they may change and stay where they are.
  if (!of.tried && view.table(kSlotHashTable) != loadedHashTable) return nullptr;
  if (of.tried || ++of.lookups < kLookupsToIndex) return usable(of);
  return make(of, view, type);
}

const NameIndex* madeIndex(const TableView& view, std::uint32_t type) {
  if (view.record == nullptr || type >= held.size()) return nullptr;
  Held& of = heldOf(view, type);
  return of.tried ? usable(of) : make(of, view, type);
}

void dbHashDropIndexes() {
  if (!anyHeld) return;
  anyHeld = false;
  for (Held& of : held) of = Held();
}

}  // namespace statecut
