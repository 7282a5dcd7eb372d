// Copying reads through the cache.

#include <cstring>

#include "lookup/cacheblock.h"

namespace statecut {

std::int32_t chGetCacheData(Cache* cache, std::uint32_t rba, void* to) {
  const std::int32_t position = chSearchCacheForSpecificRBA(cache, rba);
  if (position < 0) return -1;
  const CacheEntry& entry = cache->entries[position];
  std::memcpy(to, entry.data, static_cast<std::size_t>(entry.size));
  return position;
}

std::int32_t chFillDataFromCache(Cache* cache, std::uint32_t rba, std::int32_t length, void* to,
                                 std::int32_t* remaining, std::uint32_t* nextRba,
                                 std::int32_t* copied, ProcObj* proc) {
  if (length < 0) return -1;
  const std::int32_t position = chSearchCacheForRBA(cache, rba);
  if (position < 0) return -1;
  const CacheEntry& entry = cache->entries[position];
  CacheControlBlock* counters = proc == nullptr ? nullptr : proc->cache;
  if (counters != nullptr) ++counters->found;
  const auto offset = static_cast<std::int32_t>(rba - entry.start);
  const std::int32_t held = entry.size - offset;
  if (length <= held) {
    if (counters != nullptr) ++counters->wholeHits;
    *copied = length;
    *remaining = 0;
    *nextRba = 0;
  } else {
    if (counters != nullptr) ++counters->partialHits;
    *copied = held;
    *remaining = length - held;
    *nextRba = rba + static_cast<std::uint32_t>(held);
  }
  if (*copied > 0) std::memcpy(to, entry.data + offset, static_cast<std::size_t>(*copied));
  return length <= held ? position : -2;
}

std::int32_t chFillDataFromLargeCache(Cache* cache, std::uint32_t rba, std::int32_t length,
                                      void* to) {
  const std::int32_t position = chSearchLargeCacheForRBA(cache, length, rba);
  if (position < 0) return -1;
  if (length > 0) std::memcpy(to, cache->entries[position].data, static_cast<std::size_t>(length));
  return position;
}

std::int32_t chGetBlockCacheData(Cache* cache, Stream* file, std::uint32_t rba, std::int32_t length,
                                 void* to, ProcObj* proc) {
  if (cache == nullptr || length < 0) return -2;
  auto* next = static_cast<unsigned char*>(to);
  std::int32_t remaining = length;
  std::int32_t copied = 0;
  bool filled = false;  // a block that misses again right after its fill ends the read
  do {
    const std::int32_t position =
        chFillDataFromCache(cache, rba, remaining, next, &remaining, &rba, &copied, proc);
    if (position >= 0) return length;
    if (position == -2) {
      next += copied;
      filled = false;
    } else if (filled || !fillBlock(cache, file, rba, proc)) {
      return -2;
    } else {
      filled = true;
    }
  } while (remaining != 0);
  return length;
}

}  // namespace statecut
