// The lookups on disk, read plainly and through the block cache, and the cache's own calls, on a
// damaged pair.

#include <algorithm>
#include <cstring>

#include "basepair.h"
#include "calls.h"
#include "lookup/cache.h"

using namespace statecut;
using namespace statecut::fuzz;

namespace {

// Settings, a byte of bits.
constexpr std::uint8_t kTrace = 1;
constexpr std::uint8_t kWithRange = 2;
constexpr std::uint8_t kCached = 4;
constexpr std::uint8_t kStage = 8;  // a stage buffer for pointer reads

constexpr std::uint32_t kBlocks[] = {1, 2, 7, 16, 34, 100, 512, 4096, 65536, 1048576};
constexpr std::uint32_t kEntries[] = {1, 2, 3, 5, 8, 64, 200};

// An RBA in or near a table, or any.
std::uint32_t rbaFrom(const DamagedPair& pair, Input& input) {
  if ((input.u8() & 1) != 0) return input.u32();
  return pair.ref().word(32 + 4 * input.below(75)) + input.u8();
}

// The bytes of the file that a read brought must be the file's.
void compare(const DamagedPair& pair, std::uint32_t rba, std::int32_t length,
             const unsigned char* bytes) {
  if (length <= 0 || std::uint64_t{rba} + static_cast<std::uint32_t>(length) > pair.ref().size())
    return;
  if (diskReadCalls() > DiskLimits{}.readCalls / 2) return;  // near the limit, reads fail
  if (std::memcmp(pair.ref().bytes().data() + rba, bytes, static_cast<std::size_t>(length)) != 0)
    finding("the cache holds other bytes than the file");
}

void cacheCall(Session& session, const DamagedPair& pair, Input& input) {
  Cache* const cache = session.proc()->cache->refCache;
  Stream* const file = session.proc()->files->reference;
  const std::uint8_t way = input.u8();
  const std::uint32_t rba = rbaFrom(pair, input);
  std::int32_t length = input.u8();
  if ((way & 8) != 0) length = static_cast<std::int16_t>(input.u16()) / 8;
  unsigned char* out = nullptr;
  std::int32_t remaining = 0;
  std::uint32_t next = 0;
  std::int32_t copied = 0;
  switch (way % 8) {
    case 0:
    case 1: {
      Bytes to(static_cast<std::size_t>(std::max(length, 0)));
      if (chGetBlockCacheData(cache, file, rba, length, to.data(), session.proc()) == length)
        compare(pair, rba, length, to.data());
      return;
    }
    case 2:
    case 3:
      chGetBlockCacheDataPtr(cache, file, rba, length, &out, session.proc());
      if (out != nullptr) compare(pair, rba, length, out);
      return;
    case 4:
      // A piece goes behind the pieces before it, and the pointer is to the first of them.
      session.proc()->cache->stageFill = 0;
      chGetBlkCacheDataPtr(cache, rba, length, &out, &remaining, &next, &copied);
      if (out != nullptr) compare(pair, rba, std::min(copied, length), out);
      return;
    case 5: {
      Bytes to(static_cast<std::size_t>(std::max(length, 0)));
      if (chFillDataFromCache(cache, rba, length, to.data(), &remaining, &next, &copied,
                              session.proc()) >= 0)
        compare(pair, rba, length, to.data());
      return;
    }
    case 6:
      chFillCacheFromFile(cache, file, rba, session.proc());
      return;
    default:
      chBumpCache(cache, length);
      chSearchCacheForSpecificRBA(cache, rba);
  }
}

// A large cache of the input's own, next to the session's.
void largeCacheCalls(Session& session, const DamagedPair& pair, Input& input) {
  Cache* cache = chConstructCache(kBlocks[input.below(7)], 1 + input.u8() % 8);
  Stream* const file = session.proc()->files->reference;
  unsigned char* out = nullptr;
  for (std::size_t left = input.below(16); left > 0; --left) {
    const std::uint8_t way = input.u8();
    const std::uint32_t rba = rbaFrom(pair, input);
    const std::int32_t length = static_cast<std::int32_t>(input.u16()) - 100;
    if ((way & 1) == 0) {
      chGetBlockLargeCacheDataPtr(cache, file, rba, length, &out, session.proc());
      if (out != nullptr) compare(pair, rba, length, out);
      continue;
    }
    Bytes to(static_cast<std::size_t>(std::max(length, 0)));
    if (chFillDataFromLargeCache(cache, rba, length, to.data()) >= 0)
      compare(pair, rba, length, to.data());
  }
  chFreeCache(&cache);
}

void calls(Session& session, const DamagedPair& pair, std::uint8_t bits, Input& input) {
  constexpr int kMostCalls = 64;
  if ((bits & kStage) != 0) chCreateStageBuffer(session.proc(), input.u16());
  for (int made = 0; made < kMostCalls && !input.empty(); ++made) {
    constexpr std::uint8_t kLarge = 255;
    constexpr std::uint8_t kBlock = 224;
    const std::uint8_t kind = input.u8();
    if (kind == kLarge)
      largeCacheCalls(session, pair, input);
    else if (kind >= kBlock && (bits & kCached) != 0)
      cacheCall(session, pair, input);
    else
      makeCall(session, input);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quietProcess();
  Input input(data, size);
  DamagedPair pair(input);
  const std::uint8_t bits = input.u8();
  diskStart();
  pair.mount();
  diskSink(kLogPath);

  SessionSettings settings;
  settings.ref = kRefPath;
  if ((bits & kWithRange) != 0) settings.rng = kRngPath;
  settings.log = kLogPath;
  settings.mode = LookupMode::kOff;
  settings.trace = (bits & kTrace) != 0;
  settings.cached = (bits & kCached) != 0;
  settings.cacheBlock = kBlocks[input.below(std::size(kBlocks))];
  settings.cacheEntries = kEntries[input.below(std::size(kEntries))];
  // No cache of gigabytes.
  if (settings.cacheBlock > 65536) settings.cacheEntries = std::min(settings.cacheEntries, 5U);
  if (settings.cacheBlock > 4096) settings.cacheEntries = std::min(settings.cacheEntries, 64U);
  {
    Session session;
    std::string error;
    if (session.open(settings, error)) calls(session, pair, bits, input);
  }
  if (diskReadCalls() > DiskLimits{}.readCalls) finding("a lookup reads without end");
  expectNothingLeft("a closed session");
  return 0;
}
