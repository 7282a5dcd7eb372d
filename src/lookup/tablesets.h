#pragma once
// Sets of tables that are loaded together, and their readers.

#include <cstdint>
#include <span>

#include "../tables/dbapi.h"
#include "../tables/refpointers.h"

namespace statecut {

// Bits.
enum TableSet : std::uint32_t {
  kZipSet = 1U << 0,
  kCitySet = 1U << 1,
  kMultiZipSet = 1U << 2,
  kGeneralDeliverySet = 1U << 3,
  kCityNameSet = 1U << 4,
  kCityPhoneticSet = 1U << 5,
  kStreetNameSet = 1U << 6,
  kStreetPhoneticSet = 1U << 7,
  kStreetStandardSet = 1U << 8,
  kFirmSet = 1U << 9,
  kHashSet = 1U << 10,
  kZipBytesSet = 1U << 11
};
inline constexpr std::uint32_t kLookupSets = kZipBytesSet - 1;  // all that lookups use

struct SetReader {
  std::uint32_t set;  // a TableSet
  TableReader* reader;
  std::span<const SlotNumber> slots;  // that the reader fills
};

[[nodiscard]] std::span<const SetReader> setReaders();

}  // namespace statecut
