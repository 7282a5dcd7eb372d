#pragma once
// Inside of the searches of the name hash index in memory: a slot, its entries, the one of a name.

#include <algorithm>
#include <bit>
#include <cstdint>

#include "base/memory.h"
#include "hash/samebytes.h"
#include "hash/search.h"
#include "tables/tableview.h"

namespace statecut {

// The number from which on nothing is in the table of a type.
inline std::uint32_t boundOf(const NameLayout& layout, const RefControlRec& record) {
  return le::get<4>(record.bytes.data() + layout.boundAt);
}

// The slot of a probe in the loaded index, or null.
[[gnu::always_inline]] inline unsigned char* slotOf(const Probe& probe, const TableView& view) {
  unsigned char* slots = view.table(kSlotHashTable);
  if (slots == nullptr || probe.slot >= view.word(RefControlRec::hashTableCount)) return nullptr;
  return slots + std::size_t{probe.slot} * HashSlotRow::size;
}

// The entries of a slot: a check value and a number each.
struct Entries {
  unsigned char* first;  // there are bytes of kAtOnce entries, however few are counted
  std::uint32_t count;
};

inline constexpr std::uint32_t kAtOnce = 4;
static_assert(kAtOnce * HashOverflowRow::size <= kTableSlack);

// Those of a damaged slot, whose entries run past the overflow table.
inline Entries entriesWithin(unsigned char* slot, unsigned char* overflow, std::uint32_t end) {
  const std::uint32_t first = le::get<4>(slot + HashSlotRow::number.at);
  if (overflow == nullptr || first >= end) return {slot, 0};
  return {overflow + std::size_t{first} * HashOverflowRow::size, end - first};
}

// Whether a slot has one name or more is chance, which no branch prediction gets right: so nothing
// here branches on it.
[[gnu::always_inline]] inline Entries entriesOf(unsigned char* slot, const TableView& view) {
  unsigned char* overflow = view.table(kSlotHashOverflow);
  const std::uint32_t end = overflow == nullptr ? 0 : view.word(RefControlRec::hashOverflowCount);
  const std::uint32_t count = slot[HashSlotRow::count.at];
  const std::uint64_t first = le::get<4>(slot + HashSlotRow::number.at);
  const bool many = count > 1;
  if ((static_cast<unsigned>(many) & static_cast<unsigned>(first + count > end)) != 0) [[unlikely]]
    return entriesWithin(slot, overflow, end);
  // A slot with one name holds its entry itself, laid out like those of the overflow table.
  unsigned char* const starts[] = {slot + HashSlotRow::check.at,
                                   overflow + (many ? first : 0) * HashOverflowRow::size};
  return {starts[many ? 1 : 0], count};
}

// The number field of the first entry with the check value whose number `matches` accepts, or null.
template <typename Matches>
[[gnu::always_inline]] inline unsigned char* findEntry(const Entries& entries, std::uint32_t check,
                                                       Matches matches) {
  const auto wanted = static_cast<std::uint16_t>(check);
  const auto isCandidate = [&](std::uint32_t i) {
    const unsigned char* entry = entries.first + std::size_t{i} * HashOverflowRow::size;
    return le::get<2>(entry + HashOverflowRow::check.at) == wanted;
  };
  const auto numberAt = [&](std::uint32_t i) {
    return entries.first + std::size_t{i} * HashOverflowRow::size + HashOverflowRow::number.at;
  };
  const auto bit = [&](std::uint32_t i) { return static_cast<std::uint32_t>(isCandidate(i)) << i; };
  std::uint32_t candidates = bit(0) + bit(1) + bit(2) + bit(3);
  candidates &= (1U << std::min(entries.count, kAtOnce)) - 1;
  for (; candidates != 0; candidates &= candidates - 1) {
    unsigned char* number = numberAt(static_cast<std::uint32_t>(std::countr_zero(candidates)));
    if (matches(le::get<4>(number))) return number;
  }
  for (std::uint32_t i = kAtOnce; i < entries.count; ++i)
    if (isCandidate(i) && matches(le::get<4>(numberAt(i)))) return numberAt(i);
  return nullptr;
}

// The number field of the name's entry among those of its slot, or null. `own` is the number at
// which the table has the very bytes of the name, -1 for any other bytes.
template <std::uint32_t kType>
[[gnu::always_inline]] inline unsigned char* findOf(const unsigned char* name, std::int32_t length,
                                                    unsigned char* slot, std::uint32_t check,
                                                    const TableView& view, std::int64_t own = -1) {
  static constexpr NameLayout layout = kNameLayouts[kType];
  const unsigned char* table = view.table(layout.slot);
  const std::int32_t wanted = length - layout.added;  // in the length byte
  if (table == nullptr || wanted < 0 || wanted > layout.mostByte) return nullptr;
  const std::uint64_t bytes = std::uint64_t{boundOf(layout, *view.record)} * layout.unit;
  return findEntry(entriesOf(slot, view), check, [&](std::uint32_t number) {
    if (number == own) return true;
    if (!inTable(layout, number, *view.record)) return false;
    const std::uint64_t at = std::uint64_t{number} * layout.unit;
    const unsigned char* entry = table + at;
    return (entry[layout.lengthAt] & layout.lengthMask) == wanted &&
           view.holds(at + layout.nameAt, static_cast<std::uint32_t>(length), bytes) &&
           sameBytes(entry + layout.nameAt, name, static_cast<std::size_t>(length));
  });
}

// Of a type without names: any number has one of length 0.
inline unsigned char* findNameless(std::int32_t length, unsigned char* slot, std::uint32_t check,
                                   const TableView& view) {
  if (length != 0 || check > 0xFFFF) return nullptr;
  return findEntry(entriesOf(slot, view), check, [](std::uint32_t) { return true; });
}

inline unsigned char* findFrom(unsigned char* slot, std::uint32_t check, const unsigned char* name,
                               std::int32_t length, std::uint32_t type, const TableView& view,
                               std::int64_t own = -1) {
  switch (type) {
    case kFirmNames:
      return findOf<kFirmNames>(name, length, slot, check, view);
    case kStreetNames:
      return findOf<kStreetNames>(name, length, slot, check, view);
    case kCityNames:
      return findOf<kCityNames>(name, length, slot, check, view, own);
    case kStreetStandards:
      return findOf<kStreetStandards>(name, length, slot, check, view);
    case kStreetPhonetics:
      return findOf<kStreetPhonetics>(name, length, slot, check, view);
    case kCityPhonetics:
      return findOf<kCityPhonetics>(name, length, slot, check, view, own);
    default:
      return findNameless(length, slot, check, view);
  }
}

}  // namespace statecut
