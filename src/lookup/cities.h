#pragma once
// Lookups of city names, city data and city phonetic keys. States are 2 bytes, names are counted
// unless said otherwise. In variants point into the loaded table; Off variants read the reference
// file into a static buffer that the next call of the same function overwrites; First variants
// decide between the two on the first call. Not found is null or -1, without a message; so is an
// Off variant whose read fails, or whose file could not be read before (lookupsFailed tells).

#include <cstdint>

#include "../base/procobj.h"
#include "../tables/rows.h"

namespace statecut {

// A city name record by its key (1 to the count). The wc form reads through the block cache.
GetCityName dbGetCityUSPS, dbGetCityUSPSOff, dbGetCityUSPSOffwc, dbGetCityUSPSFirst;
CityNameRow* dbGetCityName(const std::uint32_t* key);

// The key of the name with a hash key (state and name, at most 30 bytes).
FindKey dbFindCityNameIdx, dbFindCityNameIdxOff, dbFindCityNameIdxFirst;

// The key of an exact name of at most 28 bytes.
FindCityIndex dbFindCityHashIn, dbFindCityHashOff, dbFindCityIndexFirst;

// The record of an exact name. The first call does not try to load the table.
CityNameRow* dbFindCityIn(const char* state, const char* name, std::int32_t length);
CityNameRow* dbFindCityOff(const char* state, const char* name, std::int32_t length);
CityNameRow* dbFindCityFirst(const char* state, const char* name, std::int32_t length);

// The key of a name that begins with the given one, by binary search. Positions 0 to count - 1 are
// searched, so it can be 0, which dbGetCityUSPS does not take.
FindCityIndex dbFindTruncCityIndex, dbFindTruncCityIdxOff, dbFindTruncCityIndexFirst;

// The only record that a truncated name fits; null when a neighbour fits as well.
CityNameRow* dbFindTruncCityIn(const char* state, const char* name, std::int32_t length);
CityNameRow* dbFindTruncCityOff(const char* state, const char* name, std::int32_t length);
CityNameRow* dbFindTruncCityFirst(const char* state, const char* name, std::int32_t length);

// The position behind the first record of the state at or behind `start` that the matcher accepts
// (0 when `name` fits `text`: startsWith, endsWith or containsString). The search goes on from
// there; the key of the record that was found is one less.
SeqSearchCity seqSearchCityIn, seqSearchCityOff, seqSearchCityFirst;

// The same for a terminated pattern: "A" and "A*" begin with A, "*A" ends with, "*A*" contains.
std::int32_t findNearestCity(const char* state, const char* pattern, std::int32_t start);
std::int32_t dbFindNearestCity(const char* state, const char* pattern);
std::int32_t dbFindNextCity(const char* state, const char* pattern, std::int32_t start);

// City data by exact or truncated name: *name, *value (byte 2 of the name record) and *key are
// set as soon as the name is found.
using FindCityData = CityDataRow*(CityNameRow** name, const char* state, const char* city,
                                  std::uint32_t* value, std::uint32_t* key, std::int32_t length);
FindCityData dbFindCityDataIn, dbFindCityDataOff, dbFindTruncCityDataIn, dbFindTruncCityDataOff;

// City data by its key (1 to the count).
CityDataRow* dbGetCityDataIn(std::int32_t key);
CityDataRow* dbGetCityDataOff(std::int32_t key);

// A run of city ZIP key entries or finance keys from `start` (1-based). Off gives at most
// kCityZipKeysMax entries and kCityFinKeysMax keys.
inline constexpr std::uint32_t kCityZipKeysMax = 300;
inline constexpr std::uint32_t kCityFinKeysMax = 16;
const CityZipKeyRow* dbGetCityZipKeyPtrIn(std::uint32_t count, std::uint32_t start);
const CityZipKeyRow* dbGetCityZipKeyPtrOff(std::uint32_t count, std::uint32_t start);
const KeyRow* dbGetCityFinKeyPtrIn(std::uint32_t count, std::uint32_t start);
const KeyRow* dbGetCityFinKeyPtrOff(std::uint32_t count, std::uint32_t start);

// The multi-ZIP record named by the city data record; null for key 0 or above the count.
CityMultiZipRow* dbGetCityMultiZipRBADataIn(const CityDataRow* city);
CityMultiZipRow* dbGetCityMultiZipRBADataOff(const CityDataRow* city);

// The index of a phonetic hash key (state and code, at most 21 bytes).
FindKey findCityPhIdx, findCityPhIdxOff, findCityPhIdxFirst;

// The record of a phonetic code. *index is -1 after a miss; *count (at most 9) is set when found.
using FindCityPh = CityPhoneticRow*(const char* state, const char* code, std::int32_t length,
                                    std::int32_t* count, std::int32_t* index);
FindCityPh dbFindCityPhIn, dbFindCityPhOff, dbFindCityPhFirst;

// A phonetic record by its index (1 to the count).
GetCityPhonetic dbGetCityPh, dbGetCityPhOff, dbGetCityPhFirst;

}  // namespace statecut
