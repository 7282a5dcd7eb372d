#pragma once
// The new ZIP code index: which ZIP codes are in the cut, and under which ZIP key.

#include <cstdint>

#include "cut/cutlog.h"
#include "cut/workstate.h"
#include "lookup/zip.h"

namespace statecut {

std::int32_t createNewZipIndex();  // 0, or -1 without memory
std::int32_t buildZips();          // always 0; an empty selection is a warning

// Copies the 100 source entries of a three-digit ZIP prefix. The number of them that are not 0; 0
// outside 0 to 999 or without both tables. No step of a cut calls it.
std::int32_t copyZipIndex(std::int32_t prefix);

// Calls visit(key, record) for the ZIP codes in the cut, ascending, until it returns non-zero.
// That status, 0, or -1 (logged at badKey) at a key without a ZIP record.
template <typename Visit>
std::int32_t forEachSelectedZip(LogSite badKey, const char* title, Visit&& visit) {
  if (scZipCodeIndex == nullptr) return 0;
  for (std::uint32_t zip = 0; zip < kZipCodes; ++zip) {
    const std::uint16_t key = scZipCodeIndex[zip].get(ZipIndexRow::zipKey);
    if (key == 0) continue;
    ZipDataRow* record = dbGetZipDataFromKeyIn(key);
    if (record == nullptr) {
      logText(badKey, kError, title, "Bad Zip Key");
      return -1;
    }
    if (const std::int32_t status = visit(key, *record); status != 0) return status;
  }
  return 0;
}

}  // namespace statecut
