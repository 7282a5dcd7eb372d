#include "cut/zipselect.h"

#include <cstring>

#include "base/cmdline.h"
#include "base/memory.h"
#include "tables/refpointers.h"

namespace statecut {

namespace {

constexpr std::uint32_t kZipsPerPrefix = 100;
constexpr std::int32_t kPrefixes = 1000;

// Enters the ZIP codes of one state. The number of them.
std::uint32_t selectState(const char* state) {
  const auto* bytesTable = reinterpret_cast<const ZipBytesRow*>(refPointers[kSlotZipBytes].table);
  const auto* zips = reinterpret_cast<const ZipDataRow*>(refPointers[kSlotZipData].table);
  const std::uint32_t count = refWord(RefControlRec::zipDataCount);
  std::uint32_t selected = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (std::memcmp(bytesTable[i].bytes.data(), state, 2) != 0) continue;
    const std::uint32_t zip = zips[i].get(ZipDataRow::zip);
    if (zip >= kZipCodes) continue;
    // Deliberate: the key is stored in 16 bits, and 0 means not in the cut: record 0 is never
    // carried. The format of the index wants it so.
    scZipCodeIndex[zip].set(ZipIndexRow::zipKey, i);
    ++selected;
  }
  return selected;
}

}  // namespace

std::int32_t createNewZipIndex() {
  logRequired(logsite::kNewZipIndex, "Info Msg ", "New Zip Code Index", kZipIndexBytes);
  scZipCodeIndex = static_cast<ZipIndexRow*>(allocTable(kZipIndexBytes));
  if (scZipCodeIndex == nullptr) {
    logNoMemory(logsite::kNewZipIndexFailed, "New Zip Code Index");
    return -1;
  }
  return 0;
}

std::int32_t buildZips() {
  std::uint32_t selected = 0;
  const bool loaded = scZipCodeIndex != nullptr && refPointers[kSlotZipBytes].table != nullptr &&
                      refPointers[kSlotZipData].table != nullptr;
  for (std::int32_t s = 0; loaded && s < cmdLine.stateCount; ++s) {
    selected += selectState(cmdLine.states[s]);
  }
  if (selected == 0) {
    logText(logsite::kNoZips, kWarn, "State Selection",
            "No zip entries found for selected states.");
  }
  return 0;
}

std::int32_t copyZipIndex(std::int32_t prefix) {
  const auto* source = reinterpret_cast<const ZipIndexRow*>(refPointers[kSlotZipIndex].table);
  if (prefix < 0 || prefix >= kPrefixes || source == nullptr || scZipCodeIndex == nullptr) return 0;
  std::int32_t present = 0;
  const std::uint32_t first = static_cast<std::uint32_t>(prefix) * kZipsPerPrefix;
  for (std::uint32_t zip = first; zip < first + kZipsPerPrefix; ++zip) {
    scZipCodeIndex[zip] = source[zip];
    if (source[zip].get(ZipIndexRow::zipKey) != 0) ++present;
  }
  return present;
}

}  // namespace statecut
