#include "cut/multizipkeys.h"

#include <algorithm>

#include "base/memory.h"

namespace statecut {

TouchedMultiZipKeys touchedMultiZipKeys;

void allocMultiZipKeys(std::uint32_t keys) {
  const std::uint64_t plain = std::uint64_t{keys} * sizeof(MultiZipKey);
  const std::uint64_t entries = keyWords(keys) * kKeysAWord * sizeof(MultiZipKey);
  const std::uint64_t all = entries + keyWords(keys) * sizeof(std::uint64_t);
  const bool withBits = all <= kTableMaxBytes;
  auto* const block = static_cast<unsigned char*>(allocTable(withBits ? all : plain));
  multiZipKeys = reinterpret_cast<MultiZipKey*>(block);
  touchedMultiZipKeys = {};
  if (block != nullptr && withBits)
    touchedMultiZipKeys = {multiZipKeys, keys, reinterpret_cast<std::uint64_t*>(block + entries)};
}

void clearMultiZipKeys() {
  visitMultiZipKeys([](MultiZipKey& entry) {
    entry = {};
    return true;
  });
  if (std::uint64_t* const words = multiZipKeyWords(); words != nullptr)
    std::fill_n(words, keyWords(multiZipKeyCount()), 0);
}

}  // namespace statecut
