#pragma once
// The new ZIP code index: which ZIP codes are in the cut, and under which ZIP key.

#include <cstdint>

#include "cut/logsites.h"
#include "cut/workstate.h"
#include "lookup/zip.h"

namespace statecut {

std::int32_t createNewZipIndex();  // 0, or -1 without memory
std::int32_t buildZips();          // always 0; an empty selection is a warning

// Copies the 100 source entries of a three-digit ZIP prefix. The number of them that are not 0; 0
// outside 0 to 999 or without both tables. No step of a cut calls it.
std::int32_t copyZipIndex(std::int32_t prefix);

// Calls visit(key) for the ZIP codes in the cut, ascending, until it returns false.
template <typename Visit>
void visitSelectedZips(Visit&& visit) {
  if (scZipCodeIndex == nullptr) return;
  constexpr std::uint32_t kAtOnce = 4;  // a cut of few states has few ZIP codes: pass over the rest
  static_assert(kZipCodes % kAtOnce == 0);
  for (std::uint32_t from = 0; from < kZipCodes; from += kAtOnce) {
    const unsigned char* entries = scZipCodeIndex[from].bytes.data();
    if ((le::get<4>(entries) | le::get<4>(entries + 4)) == 0) continue;
    for (std::uint32_t zip = from; zip < from + kAtOnce; ++zip) {
      const std::uint16_t key = scZipCodeIndex[zip].get(ZipIndexRow::zipKey);
      if (key != 0 && !visit(key)) return;
    }
  }
}

// Calls visit(key, record) for the ZIP codes in the cut, ascending, until it returns non-zero.
// That status, 0, or -1 (logged at badKey) at a key without a ZIP record.
template <typename Visit>
std::int32_t forEachSelectedZip(LogSite badKey, const char* title, Visit&& visit) {
  std::int32_t status = 0;
  visitSelectedZips([&](std::uint16_t key) {
    ZipDataRow* record = dbGetZipDataFromKeyIn(key);
    if (record == nullptr) {
      logText(badKey, kError, title, "Bad Zip Key");
      status = -1;
      return false;
    }
    status = visit(key, *record);
    return status == 0;
  });
  return status;
}

}  // namespace statecut
