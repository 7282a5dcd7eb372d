#pragma once
// What the searches in memory and on disk share: where a name can be, and how the tables hold
// names.

#include <array>
#include <cstddef>
#include <cstdint>

#include "../dbfiles/controlrec.h"
#include "../hash/namehash.h"
#include "../tables/refpointers.h"
#include "../tables/rows.h"

namespace statecut {

// Where a name can be: its slot and the check value that its entry must hold.
struct Probe {
  std::uint32_t slot;
  std::uint32_t check;
};

// In an index of `slotCount` slots.
[[gnu::always_inline]] inline Probe probeOf(const unsigned char* name, std::int32_t length,
                                            std::uint32_t type, std::uint32_t slotCount) {
  const std::uint32_t mask = slotCount - 1;
  const std::uint32_t hash = fnv_32_buf_backward(name, length, kFnvOffsetBasis + type);
  return {hash & mask, type | ((hash & ~mask) >> 16)};
}

// The mask that is kept with the process-wide tables becomes that of an index of `slotCount` slots,
// when it was made from the count of another record, or not at all.
[[gnu::always_inline]] inline void keepMaskOf(std::uint32_t slotCount) {
  const std::uint32_t mask = slotCount - 1;
  const unsigned char* kept = refPointers[kSlotHashMask].bytes;
  if (le::get<4>(kept) != mask || le::get<4>(kept + 4) != ~mask) [[unlikely]]
    keepHashMask(slotCount);
}

// How the name table of a type holds its names: the entry of a number starts at `unit` times it.
struct NameLayout {
  SlotNumber slot;
  std::uint32_t unit;
  std::uint32_t lengthAt;
  std::uint32_t nameAt;
  unsigned char lengthMask;
  std::int32_t added;     // to the length byte
  std::int32_t mostByte;  // of a length byte that stands for a length
  std::size_t rbaAt;      // of the table, in the control record
  std::size_t boundAt;    // there: a number plus `boundAdded` at or above it names nothing
  std::uint32_t boundAdded;
  std::int32_t readBytes;  // of a name on disk, from `readAt` of its entry
  std::uint32_t readAt;
};

// What a search on disk reads of a name, its length byte included.
inline constexpr std::int32_t kMostOfFirm = 41;
inline constexpr std::int32_t kMostOfStreet = 29;

// The name's bytes behind a signed length byte.
constexpr NameLayout packedNames(SlotNumber slot, std::size_t rbaAt, std::size_t boundAt,
                                 std::int32_t readBytes) {
  return {slot, 1, 0, 1, 0xFF, 0, 127, rbaAt, boundAt, 0, readBytes, 0};
}

// The same behind 4 more bytes, with a flag in the length byte.
constexpr NameLayout flaggedNames(SlotNumber slot, std::size_t rbaAt, std::size_t boundAt) {
  constexpr std::uint32_t kLengthAt = VariationRow::flag.at;
  return {slot, 1,     kLengthAt, VariationRow::size, 0x7F,          0,
          127,  rbaAt, boundAt,   kLengthAt,          kMostOfStreet, kLengthAt};
}

// Records with a state before the name. The length byte is unsigned, so a name may run on past its
// own record.
constexpr NameLayout recordNames(SlotNumber slot, std::size_t rbaAt, std::size_t boundAt,
                                 std::uint32_t unit, std::uint32_t lengthAt, std::uint32_t nameAt) {
  return {slot,
          unit,
          lengthAt,
          nameAt,
          0xFF,
          2,
          255,
          rbaAt,
          boundAt,
          0,
          static_cast<std::int32_t>(unit),
          0};
}

// By type.
inline constexpr std::array<NameLayout, 6> kNameLayouts = {
    packedNames(kSlotFirms, RefControlRec::firmsRba.at, RefControlRec::firmsBytes.at, kMostOfFirm),
    packedNames(kSlotStreetNames, RefControlRec::streetNamesRba.at,
                RefControlRec::streetNamesBytes.at, kMostOfStreet),
    recordNames(kSlotCityNames, RefControlRec::cityNamesRba.at, RefControlRec::cityNamesCount.at,
                CityNameRow::size, CityNameRow::nameLength.at, CityNameRow::state.at),
    flaggedNames(kSlotStreetStandards, RefControlRec::streetStandardsRba.at,
                 RefControlRec::streetStandardsBytes.at),
    flaggedNames(kSlotStreetPhonetics, RefControlRec::streetPhoneticsRba.at,
                 RefControlRec::streetPhoneticsBytes.at),
    recordNames(kSlotCityPhonetics, RefControlRec::cityPhoneticsRba.at,
                RefControlRec::cityPhoneticsCount.at, CityPhoneticRow::size,
                CityPhoneticRow::keyLength.at, CityPhoneticRow::state.at)};

// True when `number` names an entry of the table.
inline bool inTable(const NameLayout& layout, std::uint32_t number, const RefControlRec& record) {
  return std::uint64_t{number} + layout.boundAdded <
         le::get<4>(record.bytes.data() + layout.boundAt);
}

}  // namespace statecut
