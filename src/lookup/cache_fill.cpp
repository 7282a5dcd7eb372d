// Filling cache entries, from the file and from data of the caller.

#include <cstring>

#include "base/memory.h"
#include "dbfiles/reports.h"
#include "lookup/cacheblock.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr LogSource kCacheSource{"cache", 1000};

// The least recently used entry, moved to the front to be overwritten.
CacheEntry& replaced(Cache* cache) {
  chBumpCache(cache, cache->count - 1);
  return cache->entries[0];
}

bool usable(const Cache* cache) { return cache != nullptr && cache->count > 0; }

bool fits(const Cache* cache, std::int32_t length) {
  return length >= 0 && length <= cache->entries[cache->count - 1].capacity;
}

void hold(CacheEntry& entry, std::uint32_t rba, std::int32_t length) {
  entry.start = rba;
  entry.size = length;
  entry.end = rba + static_cast<std::uint32_t>(length);
}

void drop(CacheEntry& entry) {
  entry.start = kEmptyStart;
  entry.end = 0;
}

}  // namespace

bool fillBlock(Cache* cache, Stream* file, std::uint32_t rba, ProcObj* proc) {
  if (!usable(cache) || !readable(file)) return false;
  const bool filled = chFillCacheFromFile(cache, file, rba, proc) != -1 && !lost(file);
  if (!filled) drop(cache->entries[0]);
  return filled;
}

std::int32_t chFillCacheFromFile(Cache* cache, Stream* file, std::uint32_t rba, ProcObj* proc) {
  if (!usable(cache) || !readable(file)) return -1;
  const std::int32_t blockSize = cache->entries[0].size;
  if (blockSize <= 0 || !fits(cache, blockSize)) return -1;
  const std::uint32_t aligned = rba - rba % static_cast<std::uint32_t>(blockSize);
  CacheEntry& entry = replaced(cache);
  const std::int32_t got = readGuarded(file, aligned, blockSize, entry.data, proc);
  // Deliberate: the entry counts as filled even when the read failed.
  hold(entry, aligned, blockSize);
  return got == -1 ? -1 : 0;
}

std::int32_t chFillLargeCacheFromFile(Cache* cache, Stream* file, std::uint32_t rba,
                                      std::int32_t length, ProcObj* proc) {
  if (!usable(cache) || !fits(cache, length) || !readable(file)) return -1;
  CacheEntry& entry = replaced(cache);
  const auto bytes = static_cast<std::size_t>(length);
  // What a read brings before it ends early would stand under the RBA of the record in the entry.
  void* const record = allocTable(bytes);
  const bool filled =
      record != nullptr && dbReadBlock(file, rba, length, record, proc).got == bytes && !lost(file);
  if (filled) {
    std::memcpy(entry.data, record, bytes);
    hold(entry, rba, length);
  }
  freeTable(record);
  return filled ? 0 : -1;
}

std::int32_t chFillCacheFromData(ProcObj* proc, Cache* cache, std::uint32_t rba, const void* data) {
  if (cache == nullptr) {
    utlWriteLogMsg(proc, kCacheSource.name, kCacheSource.line(__LINE__), kError, "Error",
                   kReasonNone, kMsgText, "Cache not initialized.");
    return -1;
  }
  if (!usable(cache) || data == nullptr) return -1;
  CacheEntry& entry = replaced(cache);
  std::memcpy(entry.data, data, static_cast<std::size_t>(entry.size));
  hold(entry, rba, entry.size);
  return 0;
}

std::int32_t chFillRS02CacheFromData(Cache* cache, std::uint32_t rba, std::int32_t length,
                                     const void* data, unsigned char** out) {
  *out = nullptr;
  if (!usable(cache) || data == nullptr || !fits(cache, length)) return -1;
  CacheEntry& entry = replaced(cache);
  std::memcpy(entry.data, data, static_cast<std::size_t>(length));
  hold(entry, rba, length);
  *out = entry.data;
  return 0;
}

}  // namespace statecut
