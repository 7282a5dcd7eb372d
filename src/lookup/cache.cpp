// Building, search and promotion of the block and large caches.

#include "lookup/cache.h"

#include <algorithm>

#include "base/system.h"
#include "lookup/cacheblock.h"

namespace statecut {

namespace {

constexpr std::int64_t kMaxBlock = 2147483647;

// Hits in the first places of a block cache are left where they are: a saving of moves.
constexpr std::int32_t kBlockPromotion = 5;
constexpr std::int32_t kLargePromotion = 1;

bool empty(const CacheEntry& entry) { return entry.start == kEmptyStart && entry.end == 0; }

// The first filled entry that `holds` accepts; bumped when it stands at `threshold` or behind.
template <typename Holds>
std::int32_t search(Cache* cache, std::int32_t threshold, Holds holds) {
  if (cache == nullptr) return -1;
  for (std::int32_t i = 0; i < cache->count; ++i) {
    if (empty(cache->entries[i]) || !holds(cache->entries[i])) continue;
    if (i < threshold) return i;
    chBumpCache(cache, i);
    return 0;
  }
  return -1;
}

}  // namespace

Cache* chConstructCache(std::uint32_t blockSize, std::int32_t entries) {
  if (entries <= 0 || blockSize == 0 || blockSize > kMaxBlock) return nullptr;
  auto* cache = static_cast<Cache*>(sys::allocateZeroed(sizeof(Cache)));
  if (cache == nullptr) return nullptr;
  cache->entries = static_cast<CacheEntry*>(
      sys::allocateZeroed(static_cast<std::size_t>(entries) * sizeof(CacheEntry)));
  if (cache->entries == nullptr) {
    sys::release(cache);
    return nullptr;
  }
  for (cache->count = 0; cache->count < entries; ++cache->count) {
    CacheEntry* entry = &cache->entries[cache->count];
    if (chConstructBufferData(entry, static_cast<std::int32_t>(blockSize)) == 0) continue;
    chFreeCache(&cache);
    return nullptr;
  }
  return cache;
}

std::int32_t chConstructBufferData(CacheEntry* entry, std::int32_t size) {
  if (entry == nullptr || size <= 0) return -1;
  auto* data = static_cast<unsigned char*>(sys::allocateZeroed(static_cast<std::size_t>(size)));
  if (data == nullptr) return -1;
  *entry = {kEmptyStart, 0, data, size, size};
  return 0;
}

void chFreeCache(Cache** cache) {
  if (cache == nullptr || *cache == nullptr) return;
  for (std::int32_t i = 0; i < (*cache)->count; ++i) sys::release((*cache)->entries[i].data);
  sys::release((*cache)->entries);
  sys::release(*cache);
  *cache = nullptr;
}

void chBumpCache(Cache* cache, std::int32_t position) {
  if (cache == nullptr || position <= 0 || position >= cache->count) return;
  std::rotate(cache->entries, cache->entries + position, cache->entries + position + 1);
}

std::int32_t chSearchCacheForRBA(Cache* cache, std::uint32_t rba) {
  return search(cache, kBlockPromotion,
                [rba](const CacheEntry& entry) { return entry.start <= rba && rba < entry.end; });
}

std::int32_t chSearchCacheForSpecificRBA(Cache* cache, std::uint32_t rba) {
  return search(cache, kBlockPromotion,
                [rba](const CacheEntry& entry) { return entry.start == rba; });
}

std::int32_t chSearchLargeCacheForRBA(Cache* cache, std::int32_t length, std::uint32_t rba) {
  if (length < 0) return -1;
  return search(cache, kLargePromotion, [length, rba](const CacheEntry& entry) {
    return entry.start == rba && entry.size >= length;
  });
}

}  // namespace statecut
