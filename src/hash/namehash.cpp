#include "hash/namehash.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "base/memory.h"
#include "hash/search.h"

namespace statecut {

#define STATECUT_INLINE [[gnu::always_inline]] inline

namespace {

template <typename Word>
bool sameWord(const unsigned char* a, const unsigned char* b) {
  Word first;
  Word second;
  std::memcpy(&first, a, sizeof first);
  std::memcpy(&second, b, sizeof second);
  return first == second;
}

// memcmp for names, without the call: their ends are compared by words that overlap.
STATECUT_INLINE bool sameBytes(const unsigned char* a, const unsigned char* b, std::size_t count) {
  if (count >= 8) {
    for (std::size_t i = 0; i + 8 < count; i += 8)
      if (!sameWord<std::uint64_t>(a + i, b + i)) return false;
    return sameWord<std::uint64_t>(a + count - 8, b + count - 8);
  }
  if (count >= 4)
    return sameWord<std::uint32_t>(a, b) && sameWord<std::uint32_t>(a + count - 4, b + count - 4);
  for (std::size_t i = 0; i < count; ++i)
    if (a[i] != b[i]) return false;
  return true;
}

// The slot of a probe in the loaded index, or null.
STATECUT_INLINE unsigned char* slotOf(const Probe& probe, const RefControlRec& record) {
  unsigned char* slots = refPointers[kSlotHashTable].table;
  if (slots == nullptr || probe.slot >= record.get(RefControlRec::hashTableCount)) return nullptr;
  return slots + std::size_t{probe.slot} * HashSlotRow::size;
}

// The entries of a slot: a check value and a number each.
struct Entries {
  unsigned char* first;  // there are bytes of kAtOnce entries, however few are counted
  std::uint32_t count;
};

constexpr std::uint32_t kAtOnce = 4;
static_assert(kAtOnce * HashOverflowRow::size <= kTableSlack);

// Those of a damaged slot, whose entries run past the overflow table.
Entries entriesWithin(unsigned char* slot, unsigned char* overflow, std::uint32_t end) {
  const std::uint32_t first = le::get<4>(slot + HashSlotRow::number.at);
  if (overflow == nullptr || first >= end) return {slot, 0};
  return {overflow + std::size_t{first} * HashOverflowRow::size, end - first};
}

// Whether a slot has one name or more is chance, which no branch prediction gets right: so nothing
// here branches on it.
STATECUT_INLINE Entries entriesOf(unsigned char* slot, const RefControlRec& record) {
  unsigned char* overflow = refPointers[kSlotHashOverflow].table;
  const std::uint32_t end = overflow == nullptr ? 0 : record.get(RefControlRec::hashOverflowCount);
  const std::uint32_t count = slot[HashSlotRow::count.at];
  const std::uint64_t first = le::get<4>(slot + HashSlotRow::number.at);
  const bool many = count > 1;
  if ((static_cast<unsigned>(many) & static_cast<unsigned>(first + count > end)) != 0) [[unlikely]]
    return entriesWithin(slot, overflow, end);
  // A slot with one name holds its entry itself, laid out like those of the overflow table.
  const std::array starts = {slot + HashSlotRow::check.at,
                             overflow + (many ? first : 0) * HashOverflowRow::size};
  return {starts[many ? 1 : 0], count};
}

// The number field of the first entry with the check value whose number `matches` accepts, or null.
template <typename Matches>
STATECUT_INLINE unsigned char* findEntry(const Entries& entries, std::uint32_t check,
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

// The number field of the name's entry among those of its slot, or null.
template <std::uint32_t kType>
STATECUT_INLINE unsigned char* findOf(const unsigned char* name, std::int32_t length,
                                      unsigned char* slot, std::uint32_t check,
                                      const RefControlRec& record) {
  constexpr const NameLayout& layout = kNameLayouts[kType];
  const unsigned char* table = refPointers[layout.slot].table;
  const std::int32_t wanted = length - layout.added;  // in the length byte
  if (table == nullptr || wanted < 0 || wanted > layout.mostByte) return nullptr;
  return findEntry(entriesOf(slot, record), check, [&](std::uint32_t number) {
    if (!inTable(layout, number, record)) return false;
    const unsigned char* entry = table + std::size_t{number} * layout.unit;
    return (entry[layout.lengthAt] & layout.lengthMask) == wanted &&
           sameBytes(entry + layout.nameAt, name, static_cast<std::size_t>(length));
  });
}

// Of a type without names: any number has one of length 0.
unsigned char* findNameless(std::int32_t length, unsigned char* slot, std::uint32_t check,
                            const RefControlRec& record) {
  if (length != 0 || check > 0xFFFF) return nullptr;
  return findEntry(entriesOf(slot, record), check, [](std::uint32_t) { return true; });
}

unsigned char* findFrom(unsigned char* slot, std::uint32_t check, const unsigned char* name,
                        std::int32_t length, std::uint32_t type, const RefControlRec& record) {
  switch (type) {
    case kFirmNames:
      return findOf<kFirmNames>(name, length, slot, check, record);
    case kStreetNames:
      return findOf<kStreetNames>(name, length, slot, check, record);
    case kCityNames:
      return findOf<kCityNames>(name, length, slot, check, record);
    case kStreetStandards:
      return findOf<kStreetStandards>(name, length, slot, check, record);
    case kStreetPhonetics:
      return findOf<kStreetPhonetics>(name, length, slot, check, record);
    case kCityPhonetics:
      return findOf<kCityPhonetics>(name, length, slot, check, record);
    default:
      return findNameless(length, slot, check, record);
  }
}

// The number field of the name's entry in the loaded index, or null.
STATECUT_INLINE unsigned char* findIn(const unsigned char* name, std::int32_t length,
                                      std::uint32_t type) {
  const RefControlRec* record = pProcObj == nullptr ? nullptr : pProcObj->refControlRec;
  if (record == nullptr || length < 0 || (name == nullptr && length > 0)) return nullptr;
  const Probe probe = probeFor(name, length, type, *record);
  unsigned char* slot = slotOf(probe, *record);
  return slot == nullptr ? nullptr : findFrom(slot, probe.check, name, length, type, *record);
}

// One function a type, in which all that depends on the type is constant.
template <std::uint32_t kType>
[[gnu::noinline]] std::uint32_t findNumber(const unsigned char* name, std::int32_t length) {
  const RefControlRec* record = pProcObj == nullptr ? nullptr : pProcObj->refControlRec;
  if (record == nullptr || length < 0 || (name == nullptr && length > 0)) return kNotFound;
  const Probe probe = probeFor(name, length, kType, *record);
  unsigned char* slot = slotOf(probe, *record);
  if (slot == nullptr) return kNotFound;
  const unsigned char* number = findOf<kType>(name, length, slot, probe.check, *record);
  return number == nullptr ? kNotFound : le::get<4>(number);
}

}  // namespace

std::uint32_t dbHashFind(const unsigned char* name, std::int32_t length, std::uint32_t type,
                         ProcObj* /*context*/) {
  switch (type) {
    case kFirmNames:
      return findNumber<kFirmNames>(name, length);
    case kStreetNames:
      return findNumber<kStreetNames>(name, length);
    case kCityNames:
      return findNumber<kCityNames>(name, length);
    case kStreetStandards:
      return findNumber<kStreetStandards>(name, length);
    case kStreetPhonetics:
      return findNumber<kStreetPhonetics>(name, length);
    case kCityPhonetics:
      return findNumber<kCityPhonetics>(name, length);
    default: {
      const unsigned char* number = findIn(name, length, type);
      return number == nullptr ? kNotFound : le::get<4>(number);
    }
  }
}

std::int32_t zapHashedName(const unsigned char* name, std::int32_t length, std::uint32_t type,
                           std::uint32_t newNumber) {
  unsigned char* number = findIn(name, length, type);
  if (number == nullptr) return -1;
  const std::uint32_t old = le::get<4>(number);
  le::put<4>(number, newNumber);
  return static_cast<std::int32_t>(old);
}

void zapHashedNames(std::span<const HashedName> names, std::uint32_t type) {
  const RefControlRec* record = pProcObj == nullptr ? nullptr : pProcObj->refControlRec;
  if (record == nullptr) return;
  struct Search {
    unsigned char* slot;
    std::uint32_t check;
  };
  std::array<Search, kZapBatch> searches{};
  for (std::size_t from = 0; from < names.size(); from += kZapBatch) {
    const auto batch = names.subspan(from, std::min(kZapBatch, names.size() - from));
    for (std::size_t i = 0; i < batch.size(); ++i) {
      const Probe probe = probeFor(batch[i].name, batch[i].length, type, *record);
      searches[i] = {slotOf(probe, *record), probe.check};
      if (searches[i].slot != nullptr) __builtin_prefetch(searches[i].slot, 1);
    }
    for (std::size_t i = 0; i < batch.size(); ++i) {
      if (searches[i].slot != nullptr)
        __builtin_prefetch(entriesOf(searches[i].slot, *record).first, 1);
    }
    for (std::size_t i = 0; i < batch.size(); ++i) {
      if (searches[i].slot == nullptr) continue;
      unsigned char* number = findFrom(searches[i].slot, searches[i].check, batch[i].name,
                                       batch[i].length, type, *record);
      if (number != nullptr) le::put<4>(number, batch[i].newNumber);
    }
  }
}

std::uint32_t fnv_32_buf(const unsigned char* buffer, std::int32_t length, std::uint32_t seed) {
  std::uint32_t hash = seed;
  // Deliberate, as every stored index is made so: adds the byte less 192 where FNV-1 has an
  // exclusive-or.
  for (std::int32_t i = 0; i < length; ++i) hash = hash * kFnvPrime + buffer[i] - 192u;
  return hash;
}

}  // namespace statecut
