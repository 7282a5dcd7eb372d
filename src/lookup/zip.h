#pragma once
// Lookups by ZIP code and ZIP key. In variants point into the loaded table; Off variants read the
// reference file into a static buffer that the next call of the same function overwrites, and find
// nothing when the file cannot be read, or could not be read before (lookupsFailed tells).
// A null table or control record counts as an empty table.

#include <cstdint>

#include "../tables/rows.h"

namespace statecut {

inline constexpr char kZipSource[] = "zip";  // source name in log records

// The ZIP key of a five-digit code, 0 when there is no such ZIP; -1 outside 1 to 99999.
std::int32_t dbGetZipIndexIn(std::int32_t zip);
std::int32_t dbGetZipIndexOff(std::int32_t zip);

// The record of a code, null when there is none. *key is untouched outside 1 to 99999, else the
// index entry.
ZipDataRow* dbGetZipDataIn(std::int32_t zip, std::uint32_t* key);
ZipDataRow* dbGetZipDataOff(std::int32_t zip, std::uint32_t* key);

// A record by its key; null for a key below 1 or above the count.
ZipDataRow* dbGetZipDataFromKeyIn(std::int32_t key);
ZipDataRow* dbGetZipDataFromKeyOff(std::int32_t key);

// The city keys of a ZIP, as many as its record's count. A single key stands in the record.
const KeyRow* dbGetCityKeysPtrIn(const ZipDataRow* zip);
const KeyRow* dbGetCityKeysPtrOff(const ZipDataRow* zip);

// A finance entry by its index (1-based), or the one that a ZIP's record names.
FinMultiZipRow* dbGetMultiZipFinRBAIn(std::int32_t index);
FinMultiZipRow* dbGetMultiZipFinRBAOff(std::int32_t index);
FinMultiZipRow* dbGetZipFinMltZpRBAIn(const ZipDataRow* zip);
FinMultiZipRow* dbGetZipFinMltZpRBAOff(const ZipDataRow* zip);

// A list of `count` ZIP keys from `start` (low 16 bits). Off gives at most kMultiZipsMax keys and
// keeps the list of the last start, whatever the count.
inline constexpr std::uint32_t kMultiZipsMax = 304;
const KeyRow* dbGetMultiZipsIn(std::uint32_t count, std::uint32_t start);
const KeyRow* dbGetMultiZipsOff(std::uint32_t count, std::uint32_t start);

}  // namespace statecut
