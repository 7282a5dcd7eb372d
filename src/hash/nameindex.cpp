#include "hash/nameindex.h"

#include <bit>

#include "base/system.h"
#include "hash/nameindex_bucket.h"
#include "hash/search.h"

namespace statecut {

// Only of a name that is there.
void NameIndex::renumber(const unsigned char* name, std::int32_t length, std::uint32_t from,
                         std::uint32_t to) noexcept {
  std::uint32_t at = bucketOf(spreadHash(name, static_cast<std::size_t>(length)), count_);
  for (;; at = at + 1 == count_ ? 0 : at + 1) {
    Bucket& bucket = buckets_[at];
    for (std::uint32_t i = 0; i < bucket.count; ++i) {
      if (bucket.numbers[i] != from) continue;
      bucket.numbers[i] = to;
      return;
    }
    if (bucket.overflowed == 0) return;
  }
}

NameIndex::~NameIndex() { sys::release(block_); }

template <std::uint32_t kType>
std::uint32_t NameIndex::findOf(const unsigned char* name, std::int32_t length) const noexcept {
  constexpr const NameLayout& layout = kNameLayouts[kType];
  const std::int32_t wanted = length - layout.added;
  if (wanted < 0) return kNotFound;
  const auto bytes = static_cast<std::size_t>(length);
  const std::uint64_t hash = spreadHash(name, bytes);
  for (std::uint32_t at = bucketOf(hash, count_);;) {
    const Bucket& bucket = buckets_[at];
    for (std::uint32_t left = bucket.places(tagOf(hash)); left != 0; left &= left - 1) {
      const std::uint32_t number = bucket.numbers[std::countr_zero(left)];
      const unsigned char* entry = names_ + std::size_t{number} * layout.unit;
      if ((entry[layout.lengthAt] & layout.lengthMask) == wanted &&
          sameBytes(entry + layout.nameAt, name, bytes))
        return number;
    }
    if (bucket.overflowed == 0) return kNotFound;
    if (++at == count_) at = 0;
  }
}

std::uint32_t NameIndex::find(const unsigned char* name, std::int32_t length) const noexcept {
  if (length < 0 || (name == nullptr && length > 0)) return kNotFound;
  switch (type_) {
    case kFirmNames:
      return findOf<kFirmNames>(name, length);
    case kStreetNames:
      return findOf<kStreetNames>(name, length);
    case kCityNames:
      return findOf<kCityNames>(name, length);
    case kStreetStandards:
      return findOf<kStreetStandards>(name, length);
    case kStreetPhonetics:
      return findOf<kStreetPhonetics>(name, length);
    default:
      return findOf<kCityPhonetics>(name, length);
  }
}

void NameIndex::prefetch(const unsigned char* name, std::int32_t length) const noexcept {
  if (length < 0 || name == nullptr) return;
  const std::uint64_t hash = spreadHash(name, static_cast<std::size_t>(length));
  __builtin_prefetch(&buckets_[bucketOf(hash, count_)]);
}

std::size_t NameIndex::bytes() const noexcept { return count_ * sizeof(Bucket); }

}  // namespace statecut
