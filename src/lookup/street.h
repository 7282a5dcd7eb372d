#pragma once
// Lookups of street names and of the streets that a name variation stands for.

#include <array>
#include <cstdint>
#include <span>

#include "../base/procobj.h"

namespace statecut {

// The offset of an exact street name, or -1 (29 bytes or more: -1).
FindKey dbFindStreetKey, dbFindStreetKeyOff, dbFindStreetFirst;

// The name at an offset, without terminator; *length is its signed length byte. On disk at most 99
// bytes are there. Null at or behind the end of the names, and when it cannot be read; *length is
// then untouched.
GetName dbGetStreetNameUSPS, dbGetStreetNameUSPSCacheOff, dbGetStreetNameUSPSCacheOffwc,
    dbGetStreetNameUSPSFirst;

// The position of a variation in the index data of its set, or -1. The type is that of the name
// hash: standardized 3, phonetic 4.
FindStreetVarIdx dbFindStreetVarIdx, dbFindStreetVarIdxOff, dbFindStreetVarIdxFirst;

// Where a variation set is: the loaded tables and their lengths, or (on disk, lengths 0) the
// addresses of the RBA fields of the control record.
struct StreetVariation {
  const unsigned char* third;  // the set's third table, which no reader loads
  const unsigned char* index;
  const unsigned char* list;
  std::uint32_t count;
  std::uint32_t indexBytes;
  std::uint32_t listBytes;
};

extern StreetVariation streetPhnVariation;
extern StreetVariation streetStdVariation;

// The street keys that the variation lookups collect.
inline constexpr std::int32_t kKeyListMax = 504;
extern std::array<std::uint32_t, kKeyListMax> keyList;

inline constexpr std::int32_t kPhoneticVariation = 0;
inline constexpr std::int32_t kStandardVariation = 1;

// The street keys of a variation, in keyList; null when there is none. `count` counts on from its
// value. `scfCount` is at most 5; not 0 narrows to the streets of the first SCF key. *flag is
// negative when the variation is ambiguous, untouched after a miss.
FindStreetVar dbFindStreetVar, dbFindStreetVarFirst;

using FindStreetVartn = const std::uint32_t*(const StreetVariation* set, const char* key,
                                             std::int32_t length, const std::uint16_t* scfKey,
                                             std::int32_t filter, std::int8_t* flag,
                                             std::int32_t* count, std::uint32_t type);
FindStreetVartn findStreetVartnIn, findStreetVartnOff;

// Fills both sets from the loaded tables, or with the control record's RBA fields.
void fillStreetVariations(const ProcObj* proc, bool onDisk);

// Append the streets of an ambiguous list (its bytes to the end of the table, or its RBA) to
// keyList, which they return; null, *count as it was, when the list cannot be read.
const std::uint32_t* ambgsStreetMatch(std::span<const unsigned char> list,
                                      const std::uint16_t* scfKey, std::int32_t filter,
                                      std::int32_t* count);
const std::uint32_t* ambgsStreetMatchOff(std::uint32_t rba, const std::uint16_t* scfKey,
                                         std::int32_t filter, std::int32_t* count);

// Removes the blanks of a terminated string; they stand behind its new terminator.
void removeSpace(char* text);

}  // namespace statecut
