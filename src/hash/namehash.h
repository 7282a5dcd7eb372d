#pragma once
// The name hash index: one hashed index over six name tables, in memory or on disk.
// Hash: FNV-1, 32 bits (Fowler, Noll, Vo), with this system's own step per byte.

#include <cstddef>
#include <cstdint>
#include <span>

#include "../base/procobj.h"

namespace statecut {

enum NameType : std::uint32_t {
  kFirmNames = 0,
  kStreetNames = 1,
  kCityNames = 2,
  kStreetStandards = 3,
  kStreetPhonetics = 4,
  kCityPhonetics = 5
};

inline constexpr std::uint32_t kFnvOffsetBasis = 2166136261u;
inline constexpr std::uint32_t kFnvPrime = 16777619u;
inline constexpr std::uint32_t kNotFound = 0xFFFFFFFFu;

std::uint32_t fnv_32_buf(const unsigned char* buffer, std::int32_t length, std::uint32_t seed);

// From the last byte to the first.
inline std::uint32_t fnv_32_buf_backward(const unsigned char* buffer, std::int32_t length,
                                         std::uint32_t seed) {
  std::uint32_t hash = seed;
  // Deliberate, as every stored index is made so: a byte below 32 wraps and sets the upper bits.
  const auto step = [&hash](const unsigned char* at) { hash = (hash * kFnvPrime) ^ (*at - 32u); };
  if (length <= 0) return hash;
  const unsigned char* at = buffer + length;
  for (; at - buffer >= 4; at -= 4) {
    step(at - 1);
    step(at - 2);
    step(at - 3);
    step(at - 4);
  }
  for (; at != buffer; --at) step(at - 1);
  return hash;
}

// The name's number (record position for types 2 and 5, byte offset for the others), or kNotFound.
std::uint32_t dbHashFind(const unsigned char* name, std::int32_t length, std::uint32_t type,
                         ProcObj* context);
// Makes an index of the loaded names of a type, through which dbHashFind answers the same in less
// time; after many lookups it makes one itself. False when there is none: without memory, or of a
// damaged index. It goes with the loaded tables; who changes these in place drops it.
bool dbHashIndexNames(std::uint32_t type, ProcObj* context);
void dbHashDropIndexes();
std::uint32_t dbHashFindOff(const unsigned char* name, std::int32_t length, std::uint32_t type,
                            ProcObj* proc);

// Overwrites the number stored for a name (0 unlinks it). The number that was there, or -1.
std::int32_t zapHashedName(const unsigned char* name, std::int32_t length, std::uint32_t type,
                           std::uint32_t newNumber);

struct HashedName {
  const unsigned char* name;
  std::int32_t length;  // not negative
  std::uint32_t newNumber;
  std::int64_t own = -1;  // the number of the record in whose place in the table the name is read
};
inline constexpr std::size_t kZapBatch = 32;  // searches whose cache misses overlap

// zapHashedName for one after the other, several searches at once. An entry with the own number of
// a name is that of the name, and is not compared with it.
void zapHashedNames(std::span<const HashedName> names, std::uint32_t type);

}  // namespace statecut
