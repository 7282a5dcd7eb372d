#include "hash/findname.h"

#include <array>

#include "hash/entries.h"

namespace statecut {

namespace {

// One function a type, in which all that depends on the type is constant.
template <std::uint32_t kType>
[[gnu::noinline]] std::uint32_t findNumber(const TableView& view, const unsigned char* name,
                                           std::int32_t length) {
  const Probe probe = probeOf(name, length, kType, view.word(RefControlRec::hashTableCount));
  unsigned char* slot = slotOf(probe, view);
  if (slot == nullptr) return kNotFound;
  const unsigned char* number = findOf<kType>(name, length, slot, probe.check, view);
  return number == nullptr ? kNotFound : le::get<4>(number);
}

}  // namespace

unsigned char* findHashedEntry(const TableView& view, const unsigned char* name,
                               std::int32_t length, std::uint32_t type) {
  if (view.record == nullptr || length < 0 || (name == nullptr && length > 0)) return nullptr;
  const Probe probe = probeOf(name, length, type, view.word(RefControlRec::hashTableCount));
  unsigned char* slot = slotOf(probe, view);
  return slot == nullptr ? nullptr : findFrom(slot, probe.check, name, length, type, view);
}

std::uint32_t findHashedName(const TableView& view, const unsigned char* name, std::int32_t length,
                             std::uint32_t type) {
  if (view.record == nullptr || length < 0 || (name == nullptr && length > 0)) return kNotFound;
  switch (type) {
    case kFirmNames:
      return findNumber<kFirmNames>(view, name, length);
    case kStreetNames:
      return findNumber<kStreetNames>(view, name, length);
    case kCityNames:
      return findNumber<kCityNames>(view, name, length);
    case kStreetStandards:
      return findNumber<kStreetStandards>(view, name, length);
    case kStreetPhonetics:
      return findNumber<kStreetPhonetics>(view, name, length);
    case kCityPhonetics:
      return findNumber<kCityPhonetics>(view, name, length);
    default: {
      const unsigned char* number = findHashedEntry(view, name, length, type);
      return number == nullptr ? kNotFound : le::get<4>(number);
    }
  }
}

void findHashedNames(const TableView& view, std::span<const CountedName> names, std::uint32_t type,
                     std::uint32_t* numbers) {
  std::array<Probe, kNamesAtOnce> probes;
  std::array<unsigned char*, kNamesAtOnce> slots;
  for (std::size_t from = 0; from < names.size(); from += kNamesAtOnce) {
    const auto batch = names.subspan(from, std::min(kNamesAtOnce, names.size() - from));
    for (std::size_t i = 0; i < batch.size(); ++i) {
      numbers[from + i] = kNotFound;
      slots[i] = nullptr;
      if (view.record == nullptr || batch[i].length < 0) continue;
      probes[i] =
          probeOf(batch[i].name, batch[i].length, type, view.word(RefControlRec::hashTableCount));
      slots[i] = slotOf(probes[i], view);
      if (slots[i] != nullptr) __builtin_prefetch(slots[i]);
    }
    for (std::size_t i = 0; i < batch.size(); ++i)
      if (slots[i] != nullptr) __builtin_prefetch(entriesOf(slots[i], view).first);
    for (std::size_t i = 0; i < batch.size(); ++i) {
      if (slots[i] == nullptr) continue;
      const unsigned char* number =
          findFrom(slots[i], probes[i].check, batch[i].name, batch[i].length, type, view);
      if (number != nullptr) numbers[from + i] = le::get<4>(number);
    }
  }
}

}  // namespace statecut
