#pragma once
// The block cache: recently read pieces of a database file, most recently used first. A block cache
// holds aligned blocks of one size, a large cache records by their exact start. Lengths are signed;
// a null cache or a negative length is a miss (-1; -2 for pointer reads from a null cache).
// Pointers into an entry stay good until its buffer is refilled.

#include <cstdint>

#include "../base/procobj.h"
#include "../base/stream.h"

namespace statecut {

struct CacheEntry {
  std::uint32_t start;  // RBA of the first byte; all ones (with end 0) when empty
  std::uint32_t end;    // start + size
  unsigned char* data;  // owned
  std::int32_t size;    // of the block; in a large cache, length of the held record
  std::int32_t capacity;
};

struct Cache {
  CacheEntry* entries;
  std::int32_t count;
};

// Reached through ProcObj. Its caller owns it; the buffers belong to chCreateStageBuffer.
struct CacheControlBlock {
  Cache* refCache;  // null when none is built
  unsigned char* alternate;
  unsigned char* stage;
  unsigned char* rangeOverhead;
  std::int32_t stageFill;
  std::uint32_t found;
  std::uint32_t partialHits;
  std::uint32_t wholeHits;
  std::int32_t stageSize;  // allocated bytes of the stage buffer
};

// A new cache, null without memory, entries or a usable block size. Released by chFreeCache.
Cache* chConstructCache(std::uint32_t blockSize, std::int32_t entries);
std::int32_t chConstructBufferData(CacheEntry* entry, std::int32_t size);  // 0 or -1
void chFreeCache(Cache** cache);
void chBumpCache(Cache* cache, std::int32_t position);

// The stage buffer (13 range overheads, or minimumSize + 2048), or null.
unsigned char* chCreateStageBuffer(ProcObj* proc, std::int32_t minimumSize);
void chFreeStageBuffer();

// The position of the entry after promotion, or -1.
std::int32_t chSearchCacheForRBA(Cache* cache, std::uint32_t rba);
std::int32_t chSearchCacheForSpecificRBA(Cache* cache, std::uint32_t rba);
std::int32_t chSearchLargeCacheForRBA(Cache* cache, std::int32_t length, std::uint32_t rba);

// Copying reads of one piece: the position (whole), -2 (partial: the outs tell how to go on) or -1.
std::int32_t chGetCacheData(Cache* cache, std::uint32_t rba, void* to);
std::int32_t chFillDataFromCache(Cache* cache, std::uint32_t rba, std::int32_t length, void* to,
                                 std::int32_t* remaining, std::uint32_t* nextRba,
                                 std::int32_t* copied, ProcObj* proc);
std::int32_t chFillDataFromLargeCache(Cache* cache, std::uint32_t rba, std::int32_t length,
                                      void* to);

// Copies `length` bytes, reading the blocks that are missing. The length, or -2.
std::int32_t chGetBlockCacheData(Cache* cache, Stream* file, std::uint32_t rba, std::int32_t length,
                                 void* to, ProcObj* proc);

// Pointer reads. Length 0: the byte at the RBA gives the length, itself not counted in.
// A whole hit points into the cache; partial pieces are put together in the stage buffer (-2; null
// when they would not fit).
std::int32_t chGetBlkCacheDataPtr(Cache* cache, std::uint32_t rba, std::int32_t length,
                                  unsigned char** out, std::int32_t* remaining,
                                  std::uint32_t* nextRba, std::int32_t* copied);
std::int32_t chGetBlkLargeCacheDataPtr(Cache* cache, std::uint32_t rba, std::int32_t length,
                                       unsigned char** out, std::int32_t* remaining,
                                       std::uint32_t* nextRba, std::int32_t* copied);
// The same over all pieces, reading what is missing: a position, or -1 or -2 with *out null.
std::int32_t chGetBlockCacheDataPtr(Cache* cache, Stream* file, std::uint32_t rba,
                                    std::int32_t length, unsigned char** out, ProcObj* proc);
std::int32_t chGetBlockLargeCacheDataPtr(Cache* cache, Stream* file, std::uint32_t rba,
                                         std::int32_t length, unsigned char** out, ProcObj* proc);

// Fill the least recently used entry, which becomes the first. 0 or -1.
std::int32_t chFillCacheFromFile(Cache* cache, Stream* file, std::uint32_t rba, ProcObj* proc);
std::int32_t chFillLargeCacheFromFile(Cache* cache, Stream* file, std::uint32_t rba,
                                      std::int32_t length, ProcObj* proc);
std::int32_t chFillCacheFromData(ProcObj* proc, Cache* cache, std::uint32_t rba, const void* data);
std::int32_t chFillRS02CacheFromData(Cache* cache, std::uint32_t rba, std::int32_t length,
                                     const void* data, unsigned char** out);

}  // namespace statecut
