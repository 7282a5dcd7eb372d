#pragma once
// The work entries of the multi-ZIP keys, and which of them were touched: a cut of few states
// touches few, and the others are passed over.

#include <bit>
#include <cstdint>

#include "cut/workstate.h"

namespace statecut {

inline constexpr std::uint32_t kKeysAWord = 64;

constexpr std::uint64_t keyWords(std::uint64_t keys) {
  return (keys + kKeysAWord - 1) / kKeysAWord;
}

// Makes multiZipKeys, all zero; null without memory.
void allocMultiZipKeys(std::uint32_t keys);

// 0 without multiZipKeys.
inline std::uint32_t multiZipKeyCount() {
  return multiZipKeys == nullptr ? 0 : refWord(RefControlRec::multiZipListsCount);
}

// The work entry of a multi-ZIP key, null for a key that the database does not have.
inline MultiZipKey* multiZipKey(std::uint32_t key) {
  return key < multiZipKeyCount() ? &multiZipKeys[key] : nullptr;
}

// Of the entries that allocMultiZipKeys made.
struct TouchedMultiZipKeys {
  const MultiZipKey* entries = nullptr;
  std::uint32_t keys = 0;
  std::uint64_t* words = nullptr;  // behind the entries, in their block
};
extern TouchedMultiZipKeys touchedMultiZipKeys;

// A bit for each entry, set by touchMultiZipKey. Null for entries from elsewhere, and for so many
// that the bits would make their block too large: these are visited one by one.
inline std::uint64_t* multiZipKeyWords() {
  const TouchedMultiZipKeys& touched = touchedMultiZipKeys;
  const bool ours = touched.entries == multiZipKeys && touched.keys == multiZipKeyCount();
  return ours ? touched.words : nullptr;
}

inline void touchMultiZipKey(std::uint32_t key) {
  if (std::uint64_t* const words = multiZipKeyWords(); words != nullptr)
    words[key / kKeysAWord] |= std::uint64_t{1} << (key % kKeysAWord);
}

void clearMultiZipKeys();

// Calls visit(entry) for the entries that may have been touched, ascending, until it returns false.
template <typename Visit>
void visitMultiZipKeys(Visit&& visit) {
  const std::uint32_t keys = multiZipKeyCount();
  const std::uint64_t* const words = multiZipKeyWords();
  if (words == nullptr) {
    for (std::uint32_t key = 0; key < keys; ++key)
      if (!visit(multiZipKeys[key])) return;
    return;
  }
  for (std::uint64_t word = 0; word < keyWords(keys); ++word) {
    for (std::uint64_t bits = words[word]; bits != 0; bits &= bits - 1) {
      const auto bit = static_cast<std::uint64_t>(std::countr_zero(bits));
      if (!visit(multiZipKeys[word * kKeysAWord + bit])) return;
    }
  }
}

}  // namespace statecut
