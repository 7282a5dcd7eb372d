// Pointer reads through the cache: a piece inside one entry is not copied.

#include <cstring>

#include "lookup/cacheblock.h"

namespace statecut {

namespace {

// One piece of a pointer read.
struct Piece {
  unsigned char* data;
  std::int32_t length;
  std::int32_t remaining;
  std::uint32_t nextRba;
  std::int32_t copied;
};

// Appends to the stage buffer; false when the `room` that the whole record needs is not there.
bool stageBytes(CacheControlBlock* block, const unsigned char* from, std::int32_t count,
                std::int32_t room) {
  if (block == nullptr || block->stage == nullptr || block->stageFill < 0) return false;
  if (std::int64_t{block->stageFill} + room > block->stageSize) return false;
  std::memcpy(block->stage + block->stageFill, from, static_cast<std::size_t>(count));
  block->stageFill += count;
  return true;
}

// One entry's share of a piece that starts at `offset` in it.
std::int32_t takePiece(const CacheEntry& entry, std::int32_t position, std::int32_t offset,
                       std::uint32_t rba, CacheControlBlock* block, Piece* piece) {
  if (block != nullptr) ++block->found;
  const std::int32_t held = entry.size - offset;
  if (piece->length == 0) piece->length = held > 0 ? entry.data[offset] : 0;
  piece->remaining = piece->length;
  if (piece->length <= held) {
    if (block != nullptr) ++block->wholeHits;
    *piece = {entry.data + offset, piece->length, 0, 0, piece->length};
    return position;
  }
  if (block != nullptr) ++block->partialHits;
  const bool staged = stageBytes(block, entry.data + offset, held, piece->length);
  *piece = {staged ? block->stage : nullptr, piece->length, piece->length - held,
            rba + static_cast<std::uint32_t>(held), held};
  return -2;
}

std::int32_t blockPiece(Cache* cache, std::uint32_t rba, CacheControlBlock* block, Piece* piece) {
  const std::int32_t position = piece->length < 0 ? -1 : chSearchCacheForRBA(cache, rba);
  if (position < 0) return -1;
  const CacheEntry& entry = cache->entries[position];
  return takePiece(entry, position, static_cast<std::int32_t>(rba - entry.start), rba, block,
                   piece);
}

std::int32_t largePiece(Cache* cache, std::uint32_t rba, CacheControlBlock* block, Piece* piece) {
  const std::int32_t position = chSearchLargeCacheForRBA(cache, piece->length, rba);
  if (position < 0) return -1;
  return takePiece(cache->entries[position], position, 0, rba, block, piece);
}

using PieceReader = std::int32_t(Cache*, std::uint32_t, CacheControlBlock*, Piece*);

std::int32_t readPiece(PieceReader* reader, Cache* cache, std::uint32_t rba, std::int32_t length,
                       unsigned char** out, std::int32_t* remaining, std::uint32_t* nextRba,
                       std::int32_t* copied) {
  if (cache == nullptr) {
    *out = nullptr;
    return -2;
  }
  Piece piece{nullptr, length, 0, 0, 0};
  const std::int32_t result =
      reader(cache, rba, pProcObj == nullptr ? nullptr : pProcObj->cache, &piece);
  if (result == -1) {
    if (length == 0) *remaining = -1;
    return -1;
  }
  *out = piece.data;
  *remaining = piece.remaining;
  *nextRba = piece.nextRba;
  *copied = piece.copied;
  return result;
}

// Reads pieces until the record is whole. `fill(rba, length)` brings in a missing one.
template <typename Fill>
std::int32_t readWhole(PieceReader* reader, Cache* cache, std::uint32_t rba, std::int32_t length,
                       unsigned char** out, CacheControlBlock* block, Fill fill) {
  *out = nullptr;
  if (cache == nullptr) return -2;
  if (length < 0) return -1;
  if (block != nullptr) block->stageFill = 0;
  bool staged = false;
  bool filled = false;  // a piece that misses again right after its fill ends the read
  for (;;) {
    Piece piece{nullptr, length, 0, 0, 0};
    const std::int32_t result = reader(cache, rba, block, &piece);
    if (result >= 0) {
      if (staged && !stageBytes(block, piece.data, piece.copied, piece.copied)) return -2;
      *out = staged ? block->stage : piece.data;
      return result;
    }
    if (result == -2) {
      if (piece.data == nullptr) return -2;
      staged = true;
      filled = false;
      length = piece.remaining;
      rba = piece.nextRba;
    } else if (filled) {
      return -2;
    } else if (fill(rba, length) == -1) {
      return staged ? -2 : -1;
    } else {
      filled = true;
    }
  }
}

CacheControlBlock* blockOf(const ProcObj* proc) { return proc == nullptr ? nullptr : proc->cache; }

}  // namespace

std::int32_t chGetBlkCacheDataPtr(Cache* cache, std::uint32_t rba, std::int32_t length,
                                  unsigned char** out, std::int32_t* remaining,
                                  std::uint32_t* nextRba, std::int32_t* copied) {
  return readPiece(blockPiece, cache, rba, length, out, remaining, nextRba, copied);
}

std::int32_t chGetBlkLargeCacheDataPtr(Cache* cache, std::uint32_t rba, std::int32_t length,
                                       unsigned char** out, std::int32_t* remaining,
                                       std::uint32_t* nextRba, std::int32_t* copied) {
  return readPiece(largePiece, cache, rba, length, out, remaining, nextRba, copied);
}

std::int32_t chGetBlockCacheDataPtr(Cache* cache, Stream* file, std::uint32_t rba,
                                    std::int32_t length, unsigned char** out, ProcObj* proc) {
  return readWhole(blockPiece, cache, rba, length, out, blockOf(proc),
                   [=](std::uint32_t next, std::int32_t) {
                     return fillBlock(cache, file, next, proc) ? 0 : -1;
                   });
}

std::int32_t chGetBlockLargeCacheDataPtr(Cache* cache, Stream* file, std::uint32_t rba,
                                         std::int32_t length, unsigned char** out, ProcObj* proc) {
  return readWhole(largePiece, cache, rba, length, out, blockOf(proc),
                   [=](std::uint32_t next, std::int32_t wanted) {
                     // A record whose length is still unknown cannot be read.
                     if (wanted == 0) return -1;
                     return chFillLargeCacheFromFile(cache, file, next, wanted, proc);
                   });
}

}  // namespace statecut
