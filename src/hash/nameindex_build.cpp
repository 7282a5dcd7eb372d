// Making the index of names from the file's.

#include <algorithm>
#include <memory>

#include "base/system.h"
#include "hash/nameindex_bucket.h"
#include "hash/search.h"

namespace statecut {

namespace {

constexpr std::uint32_t kWanted = 6;  // names a bucket: half full, so that few overflow
// Buckets that a name is looked for in. Sound names need few; a file made so that its names all
// meet in one place is left to its own index.
constexpr std::uint32_t kMostSteps = 32;

// The name at a number of a type's table.
struct Candidate {
  const unsigned char* name;
  std::int32_t length;
};

Candidate candidateAt(const NameSource& source, const NameLayout& layout, std::uint32_t number) {
  constexpr Candidate kNone{nullptr, 0};
  if (std::uint64_t{number} + layout.boundAdded >= source.bound) return kNone;
  const std::uint64_t at = std::uint64_t{number} * layout.unit;
  if (at + layout.lengthAt >= source.names.size()) return kNone;
  const std::int32_t held = source.names[at + layout.lengthAt] & layout.lengthMask;
  if (held > layout.mostByte) return kNone;
  const std::int32_t length = held + layout.added;
  if (at + layout.nameAt + static_cast<std::uint32_t>(length) > source.names.size()) return kNone;
  return {source.names.data() + at + layout.nameAt, length};
}

}  // namespace

// A name leads to the entry of its own slot whose check value is its own and whose number is the
// place of the same name. So the numbers that are found are those of entries in the chain to which
// the name at the number leads. The names of a table are passed over one after the other; a number
// that leads into the middle of one (of a damaged index) is met among the entries.
class NameIndex::Builder {
 public:
  explicit Builder(const NameSource& source)
      : source_(source), layout_(kNameLayouts[source.type]) {}
  ~Builder() {
    sys::release(numbers_);
    sys::release(starts_);
  }
  Builder(const Builder&) = delete;
  Builder& operator=(const Builder&) = delete;

  [[nodiscard]] bool ranOutOfMemory() const { return noMemory_; }

  void build(NameIndex& index) {
    if (!prepare() || !passNames() || !makeRoom(index)) return;
    for (std::uint64_t i = 0; i < count_; ++i) {
      if (insert(index, numbers_[i])) continue;
      index = NameIndex();
      return;
    }
  }

 private:
  // The entries of a slot.
  struct Chain {
    const unsigned char* first;
    std::uint64_t count;
  };

  [[nodiscard]] Chain chainOf(std::uint64_t slot) const {
    const std::uint64_t end = source_.overflow.size() / HashOverflowRow::size;
    const unsigned char* at = source_.slots.data() + slot * HashSlotRow::size;
    const std::uint64_t count = at[HashSlotRow::count.at];
    if (count <= 1) return {at + HashSlotRow::check.at, count};
    const std::uint64_t first = le::get<4>(at + HashSlotRow::number.at);
    if (first >= end) return {nullptr, 0};
    return {source_.overflow.data() + first * HashOverflowRow::size, std::min(count, end - first)};
  }

  void* allocate(std::size_t bytes) {
    void* const block = sys::allocateZeroed(bytes);
    noMemory_ = noMemory_ || block == nullptr;
    return block;
  }

  [[nodiscard]] std::uint64_t slots() const { return source_.slots.size() / HashSlotRow::size; }

  // Whether an entry with the number is in the chain to which the name at the number leads.
  [[nodiscard]] bool isFound(const Candidate& name, std::uint32_t number) const {
    bool found = false;
    forEachEntryOf(name, [&](std::uint32_t held) { found = found || held == number; });
    return found;
  }

  // Calls visit(number) for the entries that have the slot and the check value of the name.
  template <typename Visit>
  void forEachEntryOf(const Candidate& name, Visit visit) const {
    const std::uint32_t hash =
        fnv_32_buf_backward(name.name, name.length, kFnvOffsetBasis + source_.type);
    const std::uint64_t slot = hash & source_.mask;
    if (slot >= slots()) return;
    const auto check = static_cast<std::uint16_t>(source_.type | ((hash & ~source_.mask) >> 16));
    const Chain chain = chainOf(slot);
    for (std::uint64_t i = 0; i < chain.count; ++i) {
      const unsigned char* entry = chain.first + i * HashOverflowRow::size;
      if (le::get<2>(entry + HashOverflowRow::check.at) == check)
        visit(le::get<4>(entry + HashOverflowRow::number.at));
    }
  }

  // Room for the numbers. False without memory, or when there are more entries than disjoint chains
  // can have.
  bool prepare() {
    for (std::uint64_t slot = 0; slot < slots(); ++slot) most_ += chainOf(slot).count;
    if (most_ > slots() + source_.overflow.size() / HashOverflowRow::size) return false;
    numbers_ = static_cast<std::uint32_t*>(allocate((most_ + 1) * sizeof *numbers_));
    return numbers_ != nullptr;
  }

  // Records stand at every number; of packed names each one ends where the next begins.
  bool passNames() {
    if (layout_.unit > 1) {
      for (std::uint32_t number = 0; number < source_.bound; ++number)
        if (!passName(number, candidateAt(source_, layout_, number))) return false;
      return true;
    }
    starts_ = static_cast<unsigned char*>(allocate(source_.bound / 8 + 1));
    if (starts_ == nullptr) return false;
    for (std::uint64_t at = 0; at < source_.bound;) {
      const auto number = static_cast<std::uint32_t>(at);
      const Candidate name = candidateAt(source_, layout_, number);
      if (name.name == nullptr) break;
      starts_[at / 8] = static_cast<unsigned char>(starts_[at / 8] | 1U << (at % 8));
      if (!passName(number, name)) return false;
      at += layout_.nameAt + static_cast<std::uint32_t>(name.length);
    }
    passEntries();
    return true;
  }

  // False when there are far more names than the file's index has.
  bool passName(std::uint32_t number, const Candidate& name) {
    if (++passed_ > 2 * most_ + kFewNames) return false;
    if (name.name == nullptr || name.length > longest(source_.type)) return true;
    if (count_ < most_ && isFound(name, number)) numbers_[count_++] = number;
    return true;
  }

  void passEntries() {
    for (std::uint64_t slot = 0; slot < slots(); ++slot) {
      const Chain chain = chainOf(slot);
      for (std::uint64_t i = 0; i < chain.count; ++i)
        passEntry(le::get<4>(chain.first + i * HashOverflowRow::size + HashOverflowRow::number.at));
    }
  }

  void passEntry(std::uint32_t number) {
    if (number >= source_.bound || (starts_[number / 8] >> (number % 8) & 1) != 0) return;
    const Candidate name = candidateAt(source_, layout_, number);
    if (name.name == nullptr || name.length > longest(source_.type)) return;
    if (count_ < most_ && isFound(name, number)) numbers_[count_++] = number;
  }

  bool makeRoom(NameIndex& index) {
    if (count_ > UINT32_MAX) return false;
    const auto buckets = static_cast<std::uint32_t>(count_ / kWanted + 1);
    std::size_t room = (std::size_t{buckets} + 1) * sizeof(Bucket);
    void* block = allocate(room);
    if (block == nullptr) return false;
    void* at = block;
    std::align(sizeof(Bucket), std::size_t{buckets} * sizeof(Bucket), at, room);
    index.names_ = source_.names.data();
    index.type_ = source_.type;
    index.block_ = block;
    index.buckets_ = static_cast<Bucket*>(at);
    index.count_ = buckets;
    return true;
  }

  // Of entries that lead to equal names the file's index finds the first.
  [[nodiscard]] std::uint32_t firstOf(const Candidate& name) const {
    std::uint32_t first = kNotFound;
    forEachEntryOf(name, [&](std::uint32_t number) {
      const Candidate other = candidateAt(source_, layout_, number);
      if (first == kNotFound && other.name != nullptr && other.length == name.length &&
          sameBytes(other.name, name.name, static_cast<std::size_t>(name.length)))
        first = number;
    });
    return first;
  }

  // False when the name's place is too far.
  bool insert(NameIndex& index, std::uint32_t number) const {
    const Candidate name = candidateAt(source_, layout_, number);
    if (const std::uint32_t held = index.find(name.name, name.length); held != kNotFound) {
      if (held != number) index.renumber(name.name, name.length, held, firstOf(name));
      return true;
    }
    const std::uint64_t hash = spreadHash(name.name, static_cast<std::size_t>(name.length));
    std::uint32_t at = bucketOf(hash, index.count_);
    for (std::uint32_t step = 0; step < kMostSteps; ++step) {
      Bucket& bucket = index.buckets_[at];
      if (bucket.count < kNamePlaces) {
        bucket.tags[bucket.count] = tagOf(hash);
        bucket.numbers[bucket.count] = number;
        ++bucket.count;
        return true;
      }
      bucket.overflowed = 1;
      if (++at == index.count_) at = 0;
    }
    return false;
  }

  static constexpr std::uint64_t kFewNames = 64;

  const NameSource& source_;
  const NameLayout& layout_;
  std::uint64_t most_ = 0;            // entries of the file's index
  std::uint64_t passed_ = 0;          // names
  std::uint32_t* numbers_ = nullptr;  // that are found
  std::uint64_t count_ = 0;
  bool noMemory_ = false;
  unsigned char* starts_ = nullptr;  // a bit for each number at which a packed name begins
};

NameIndex NameIndex::build(const NameSource& source, bool* noMemory) noexcept {
  NameIndex index;
  if (source.type >= kNameLayouts.size()) return index;
  Builder builder(source);
  builder.build(index);
  if (noMemory != nullptr && builder.ranOutOfMemory()) *noMemory = true;
  return index;
}

}  // namespace statecut
