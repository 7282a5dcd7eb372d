#pragma once
// Comparing the bytes of names.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace statecut {

template <typename Word>
[[nodiscard]] inline Word wordOf(const unsigned char* at) {
  Word word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// memcmp for names, without the call: their ends are compared by words that overlap.
[[nodiscard, gnu::always_inline]] inline bool sameBytes(const unsigned char* a,
                                                        const unsigned char* b, std::size_t count) {
  if (count >= 8) {
    for (std::size_t i = 0; i + 8 < count; i += 8)
      if (wordOf<std::uint64_t>(a + i) != wordOf<std::uint64_t>(b + i)) return false;
    return wordOf<std::uint64_t>(a + count - 8) == wordOf<std::uint64_t>(b + count - 8);
  }
  if (count >= 4)
    return wordOf<std::uint32_t>(a) == wordOf<std::uint32_t>(b) &&
           wordOf<std::uint32_t>(a + count - 4) == wordOf<std::uint32_t>(b + count - 4);
  for (std::size_t i = 0; i < count; ++i)
    if (a[i] != b[i]) return false;
  return true;
}

}  // namespace statecut
