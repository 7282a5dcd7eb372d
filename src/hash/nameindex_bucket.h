#pragma once
// Inside of the index of names: how names are spread, and the buckets that hold them.

#include <cstddef>
#include <cstdint>

#include "hash/nameindex.h"
#include "hash/samebytes.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace statecut {

inline constexpr std::uint32_t kNamePlaces = 12;
inline constexpr std::uint64_t kNameSeeds[] = {0x9E3779B97F4A7C15U, 0xC2B2AE3D27D4EB4FU,
                                               0x165667B19E3779F9U};

[[gnu::always_inline]] inline std::uint64_t folded(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = Wide{a} * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// 16 bytes a step; the ends of a name are taken by words that overlap.
[[gnu::always_inline]] inline std::uint64_t spreadHash(const unsigned char* name,
                                                       std::size_t length) {
  std::uint64_t hash = kNameSeeds[0] ^ length;
  std::size_t left = length;
  for (; left > 16; left -= 16, name += 16)
    hash =
        folded(wordOf<std::uint64_t>(name) ^ kNameSeeds[1], wordOf<std::uint64_t>(name + 8) ^ hash);
  std::uint64_t first = 0;
  std::uint64_t last = 0;
  if (left >= 8) {
    first = wordOf<std::uint64_t>(name);
    last = wordOf<std::uint64_t>(name + left - 8);
  } else if (left >= 4) {
    first = wordOf<std::uint32_t>(name);
    last = wordOf<std::uint32_t>(name + left - 4);
  } else if (left > 0) {
    first = std::uint64_t{name[0]} | std::uint64_t{name[left / 2]} << 8;
    last = name[left - 1];
  }
  return folded(first ^ kNameSeeds[1], last ^ hash) ^ kNameSeeds[2];
}

// A cache line.
struct NameIndex::Bucket {
  std::uint8_t tags[kNamePlaces];  // a byte of a name's hash each
  std::uint8_t count;
  std::uint8_t overflowed;  // names that belong here stand in a bucket behind
  std::uint8_t spare[2];
  std::uint32_t numbers[kNamePlaces];

  // A bit for each place with the tag.
  [[gnu::always_inline]] [[nodiscard]] std::uint32_t places(std::uint8_t tag) const {
    const std::uint32_t used = (1U << count) - 1;
#ifdef __SSE2__
    const __m128i line = _mm_load_si128(reinterpret_cast<const __m128i*>(tags));
    const __m128i same = _mm_cmpeq_epi8(line, _mm_set1_epi8(static_cast<char>(tag)));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(same)) & used;
#else
    std::uint32_t bits = 0;
    for (std::uint32_t i = 0; i < kNamePlaces; ++i)
      bits |= static_cast<std::uint32_t>(tags[i] == tag) << i;
    return bits & used;
#endif
  }
};

[[nodiscard]] constexpr std::uint8_t tagOf(std::uint64_t hash) {
  return static_cast<std::uint8_t>(hash);
}

// The upper half of the hash chooses the bucket, its lowest byte is the tag.
[[nodiscard]] constexpr std::uint32_t bucketOf(std::uint64_t hash, std::uint32_t count) {
  return static_cast<std::uint32_t>(((hash >> 32) * count) >> 32);
}

}  // namespace statecut
