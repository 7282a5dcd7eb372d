#pragma once
// Lookups of city names, city data and city phonetic keys. States are 2 bytes, names are counted
// unless said otherwise. In variants point into the loaded table; Off variants read the reference
// file into a static buffer that the next call of the same function overwrites; First variants
// decide between the two on the first call. Not found is null or -1, without a message.

#include <cstdint>

#include "../base/procobj.h"
#include "../tables/rows.h"

namespace statecut {

// A city name record by its key (1 to the count). The wc form reads through the block cache.
CityNameRow* dbGetCityUSPS(std::int32_t key);
CityNameRow* dbGetCityUSPSOff(std::int32_t key);
CityNameRow* dbGetCityUSPSOffwc(std::int32_t key);
CityNameRow* dbGetCityUSPSFirst(std::int32_t key);
CityNameRow* dbGetCityName(const std::uint32_t* key);

// The index of a hash key (state and name, at most 30 bytes).
std::int32_t dbFindCityNameIdx(const char* key, std::int32_t length, ProcObj* proc);
std::int32_t dbFindCityNameIdxOff(const char* key, std::int32_t length, ProcObj* proc);
std::int32_t dbFindCityNameIdxFirst(const char* key, std::int32_t length, ProcObj* proc);

// The index of an exact name of at most 28 bytes.
std::int32_t dbFindCityHashIn(const char* state, const char* name, std::int32_t length);
std::int32_t dbFindCityHashOff(const char* state, const char* name, std::int32_t length);
std::int32_t dbFindCityIndexFirst(const char* state, const char* name, std::int32_t length);

// The record of an exact name. The first call does not try to load the table.
CityNameRow* dbFindCityIn(const char* state, const char* name, std::int32_t length);
CityNameRow* dbFindCityOff(const char* state, const char* name, std::int32_t length);
CityNameRow* dbFindCityFirst(const char* state, const char* name, std::int32_t length);

// The index of a record whose name begins with the given one, by binary search.
std::int32_t dbFindTruncCityIndex(const char* state, const char* name, std::int32_t length);
std::int32_t dbFindTruncCityIdxOff(const char* state, const char* name, std::int32_t length);
std::int32_t dbFindTruncCityIndexFirst(const char* state, const char* name, std::int32_t length);

// The only record that a truncated name fits; null when a neighbour fits as well.
CityNameRow* dbFindTruncCityIn(const char* state, const char* name, std::int32_t length);
CityNameRow* dbFindTruncCityOff(const char* state, const char* name, std::int32_t length);
CityNameRow* dbFindTruncCityFirst(const char* state, const char* name, std::int32_t length);

// 0 when `name` fits `text`: startsWith, endsWith or containsString.
using NameMatcher = std::int32_t (*)(const char* name, const char* text);

// The position after the first record of the state at or behind `start` that the matcher accepts:
// the key of that name and the start that goes on behind it.
std::int32_t seqSearchCityIn(const char* state, const char* text, NameMatcher matcher,
                             std::int32_t start);
std::int32_t seqSearchCityOff(const char* state, const char* text, NameMatcher matcher,
                              std::int32_t start);
std::int32_t seqSearchCityFirst(const char* state, const char* text, NameMatcher matcher,
                                std::int32_t start);

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
std::int32_t findCityPhIdx(const char* key, std::int32_t length, ProcObj* proc);
std::int32_t findCityPhIdxOff(const char* key, std::int32_t length, ProcObj* proc);
std::int32_t findCityPhIdxFirst(const char* key, std::int32_t length, ProcObj* proc);

// The record of a phonetic code. *index is -1 after a miss; *count (at most 9) is set when found.
using FindCityPh = CityPhoneticRow*(const char* state, const char* code, std::int32_t length,
                                    std::int32_t* count, std::int32_t* index);
FindCityPh dbFindCityPhIn, dbFindCityPhOff, dbFindCityPhFirst;

CityPhoneticRow* dbGetCityPh(std::int32_t index);
CityPhoneticRow* dbGetCityPhOff(std::int32_t index);
CityPhoneticRow* dbGetCityPhFirst(std::int32_t index);

}  // namespace statecut
