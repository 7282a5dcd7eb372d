#pragma once
// The new ZIP code index: which ZIP codes are in the cut, and under which ZIP key.

#include <cstdint>
#include <cstring>

#include "cut/logsites.h"
#include "cut/workstate.h"
#include "lookup/zip.h"

namespace statecut {

std::int32_t createNewZipIndex();  // 0, or -1 without memory
std::int32_t buildZips();          // always 0; an empty selection is a warning

// Copies the 100 source entries of a three-digit ZIP prefix. The number of them that are not 0; 0
// outside 0 to 999 or without both tables. No step of a cut calls it.
std::int32_t copyZipIndex(std::int32_t prefix);

// True when 64 bytes are 0.
[[nodiscard]] inline bool isZeroLine(const unsigned char* at) {
  std::uint64_t words[8];
  std::memcpy(words, at, sizeof words);
  return (words[0] | words[1] | words[2] | words[3] | words[4] | words[5] | words[6] | words[7]) ==
         0;
}

// Calls visit(key) for the ZIP codes in the cut, ascending, until it returns false. A cut of few
// states has few of them: a cache line without one is passed over as a whole.
template <typename Visit>
void visitSelectedZips(Visit&& visit) {
  if (scZipCodeIndex == nullptr) return;
  constexpr std::uint32_t kLine = 64 / ZipIndexRow::size;
  static_assert(kZipCodes % kLine == 0);
  for (std::uint32_t from = 0; from < kZipCodes; from += kLine) {
    if (isZeroLine(scZipCodeIndex[from].bytes.data())) continue;
    for (std::uint32_t zip = from; zip < from + kLine; ++zip) {
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
