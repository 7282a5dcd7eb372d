#pragma once
// A second index of the names of one type, for memory: one cache line answers most lookups. It is
// made from the file's index and gives the same answer to every name, also where that index is
// damaged.

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <utility>

#include "hash/namehash.h"

namespace statecut {

// The bytes that an index is made from. They must outlive it and stay as they are.
struct NameSource {
  std::span<const unsigned char> slots;     // of the file's index
  std::span<const unsigned char> overflow;  // its overflow entries
  std::uint32_t mask;                       // of a hash, for its slot
  std::span<const unsigned char> names;     // the table, and what may be read behind it
  std::uint32_t bound;                      // count or byte length of the table
  std::uint32_t type;                       // a NameType
};

class NameIndex {
 public:
  NameIndex() = default;
  ~NameIndex();
  NameIndex(NameIndex&& other) noexcept { swap(other); }
  NameIndex& operator=(NameIndex&& other) noexcept {
    swap(other);
    return *this;
  }

  // The most bytes of a name of the type that are looked up.
  [[nodiscard]] static constexpr std::int32_t longest(std::uint32_t type) noexcept {
    constexpr std::int32_t kLongest[] = {40, 28, 30, 28, 28, 21};
    return type < std::size(kLongest) ? kLongest[type] : 0;
  }

  // An index that holds nothing when memory runs out (*noMemory becomes true), the type has no
  // names, or the file's index or the table is so damaged that it would take too long.
  [[nodiscard]] static NameIndex build(const NameSource& source, bool* noMemory = nullptr) noexcept;

  [[nodiscard]] explicit operator bool() const noexcept { return buckets_ != nullptr; }

  // What the file's index answers: the name's number or kNotFound. Only of one that holds
  // something.
  [[nodiscard]] std::uint32_t find(const unsigned char* name, std::int32_t length) const noexcept;
  // Asks for the cache line that find will need.
  void prefetch(const unsigned char* name, std::int32_t length) const noexcept;

  [[nodiscard]] std::size_t bytes() const noexcept;  // of memory

 private:
  struct Bucket;
  class Builder;

  void swap(NameIndex& other) noexcept {
    std::swap(names_, other.names_);
    std::swap(type_, other.type_);
    std::swap(block_, other.block_);
    std::swap(buckets_, other.buckets_);
    std::swap(count_, other.count_);
  }

  template <std::uint32_t kType>
  [[nodiscard]] std::uint32_t findOf(const unsigned char* name, std::int32_t length) const noexcept;
  void renumber(const unsigned char* name, std::int32_t length, std::uint32_t from,
                std::uint32_t to) noexcept;

  const unsigned char* names_ = nullptr;
  std::uint32_t type_ = 0;
  void* block_ = nullptr;      // of memory, that holds the buckets
  Bucket* buckets_ = nullptr;  // at the start of a cache line each
  std::uint32_t count_ = 0;    // of buckets
};

}  // namespace statecut
