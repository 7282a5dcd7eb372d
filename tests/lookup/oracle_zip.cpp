// ZIP codes, city keys, finance entries, multi-ZIP lists.

#include <algorithm>

#include "base/le.h"
#include "oracle.h"
#include "oracle_buffers.h"

namespace statecut::test {

DiskBuffers diskBuffers;

std::int64_t Oracle::zipIndex(std::int32_t zip) {
  if (zip < 1 || zip > 99999) return -1;
  Bytes local(2);
  const Optional entry = row(kZipIndexes, static_cast<std::uint64_t>(zip), 2, local, false);
  return entry ? le::get<2>(entry->data()) : -1;
}

std::string Oracle::zipData(std::int32_t zip) {
  const std::string untouched = kNull + named("key", kUntouched);
  if (zip < 1 || zip > 99999) return untouched;
  Bytes local(2);
  const Optional entry = row(kZipIndexes, static_cast<std::uint64_t>(zip), 2, local, true);
  if (!entry) return untouched;
  const std::uint32_t key = le::get<2>(entry->data());
  const std::string outs = named("key", key);
  if (key == 0) return kNull + outs;
  if (key > word(192)) {
    note(Difference::kIndexEntryAboveTheCount);
    if (kind_ == kMemory) return kNull + outs;
  }
  const Optional found = row(kZips, key, 52, diskBuffers.zipData, true);
  return (found ? record(found->data(), 52) : kNull) + outs;
}

Oracle::Optional Oracle::zipFromKey(std::int32_t key) {
  if (key < 1 || static_cast<std::uint32_t>(key) > word(192)) return std::nullopt;
  return row(kZips, static_cast<std::uint64_t>(key), 52, diskBuffers.zipFromKey, true);
}

std::string Oracle::cityKeys(std::int32_t zipKey) {
  const Optional zip = zipFromKey(zipKey);
  if (!zip) return kNull;
  const std::uint32_t count = (*zip)[36];
  if (count == 1) return record(zip->data() + 30, 2);
  const std::uint32_t index = le::get<4>(zip->data() + 32);
  if (index == 0 || index > word(196)) return kNull;
  if (kind_ == kMemory) {
    const Optional keys = view(kKeysOfZips, 2ULL * index, 2ULL * count);
    return keys ? record(keys->data(), 2ULL * count) : kNull;
  }
  if (!views_[kKeysOfZips].loaded) note(Difference::kTableTooLarge);
  if (2ULL * index + 2ULL * count > views_[kKeysOfZips].bytes)
    note(Difference::kListBehindTheTable);
  readDirect(word(60) + 2 * index, 2ULL * count, diskBuffers.cityKeys);
  return record(diskBuffers.cityKeys.data(), 2ULL * count);
}

Oracle::Optional Oracle::finance(std::int64_t index) {
  if (index < 1 || index > word(268)) return std::nullopt;
  return row(kFinances, static_cast<std::uint64_t>(index), 8, diskBuffers.finance, true);
}

std::string Oracle::financeOfZip(std::int32_t zipKey) {
  const Optional zip = zipFromKey(zipKey);
  if (!zip) return kNull;
  const std::uint32_t index = le::get<2>(zip->data() + 38);
  if (index == 0 || index > word(268)) return kNull;
  const Optional found = row(kFinances, index, 8, diskBuffers.financeOfZip, true);
  return found ? record(found->data(), 8) : kNull;
}

std::string Oracle::multiZips(std::uint32_t count, std::uint32_t start) {
  start &= 0xFFFF;
  if (start > word(252)) return kNull;
  const std::uint64_t shown = 2ULL * std::min(count, kMultiZipsShown);
  if (kind_ == kMemory) {
    const Optional keys = view(kLists, 2ULL * start, shown);
    return keys ? record(keys->data(), shown) : kNull;
  }
  if (!views_[kLists].loaded) note(Difference::kTableTooLarge);
  Bytes& list = diskBuffers.multiZips;
  const std::uint32_t rba = word(248) + 4 * start;
  if (start == diskBuffers.lastStart) {
    Bytes fresh = list;
    readDirect(rba, shown, fresh);
    if (fresh != list) note(Difference::kMultiZipMemo);
  } else {
    if (!readCached(rba, shown, list)) return kNull;
    diskBuffers.lastStart = static_cast<std::uint16_t>(start);
  }
  if (2ULL * start + shown > views_[kLists].bytes) note(Difference::kListBehindTheTable);
  if (start != 0) note(Difference::kMultiZipStep);
  return record(list.data(), shown);
}

}  // namespace statecut::test
