#pragma once
// The slot table of the loaded reference tables. A null slot means not loaded.

#include <array>
#include <cstddef>
#include <cstdint>

namespace statecut {

// A slot holds the pointer to a table, or (40, 43, 39) a few bytes in place.
union RefSlot {
  unsigned char* table;
  unsigned char bytes[8];
};

enum SlotNumber : std::size_t {
  kSlotSfhPatterns = 0,
  kSlotPobPatterns = 1,
  kSlotRrPatterns = 2,
  kSlotCityData = 3,
  kSlotCityMultiZip = 4,
  kSlotCityMultiFinance = 5,
  kSlotCityMultiZipRbas = 6,
  kSlotCityNames = 7,
  kSlotCityNamesByState = 8,
  kSlotCityPhonetics = 9,
  kSlotZipData = 10,
  kSlotZipIndex = 11,
  kSlotZipMultiCity = 12,
  kSlotFinMultiZip = 13,
  kSlotUniqueZips = 14,
  kSlotCounties = 15,
  kSlotUrbs = 16,
  kSlotUrbMultiZip = 17,
  kSlotUrbVariations = 18,
  kSlotStreetNames = 19,
  kSlotStreetPhoneticAmb = 21,
  kSlotStreetPhonetics = 22,
  kSlotStreetStandardAmb = 24,
  kSlotStreetStandards = 25,
  kSlotFirms = 27,
  kSlotGeneralDelivery = 29,
  kSlotScfs = 30,
  kSlotMultiZip = 31,
  kSlotZipBytes = 33,
  kSlotSfhMultiZipBytes = 34,
  kSlotPobMultiZipBytes = 35,
  kSlotRrMultiZipBytes = 36,
  kSlotHashTable = 37,
  kSlotHashOverflow = 38,
  kSlotHashMask = 39,        // in place: slot mask, complement of the mask
  kSlotMilitaryHeader = 40,  // in place: two 16-bit counts
  kSlotMilitary = 41,
  kSlotMilitarySecond = 42,  // points into slot 41's block
  kSlotPobZoneCount = 43,    // in place: one 16-bit count
  kSlotPobZones = 44,
  kSlotCount = 45
};
inline constexpr SlotNumber kNoSlot = kSlotCount;

extern std::array<RefSlot, kSlotCount> refPointers;

// Keeps the hash slot mask (slot count - 1) and its complement in their slot. The readers do so for
// the hash table that they load; a search does for the control record in force, when what is kept
// belongs to another slot count.
void keepHashMask(std::uint32_t slotCount);
void dropHashMask();  // for a hash table that is released
// The hash table that dbReadHashedNames loaded last and that was not released since; null for one
// from elsewhere, which its owner may change at any time.
extern const void* loadedHashTable;
extern void (*whenHashDropped)();  // called by it, for what was made of the hash table; may be null

// Record `index` of the table in `slot`, or null when the slot is empty or index > count. An
// index equal to the count gives the zero record in the slack behind the table.
template <typename RowType>
RowType* rowAt(SlotNumber slot, std::uint64_t index, std::uint64_t count) {
  unsigned char* table = refPointers[slot].table;
  if (table == nullptr || index > count) return nullptr;
  return reinterpret_cast<RowType*>(table + index * RowType::size);
}

}  // namespace statecut
