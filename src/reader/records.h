#pragma once
// What the lookups of a Database give back: pointers into its tables, ranges over them, keys.

#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

#include "../tables/rows.h"

namespace statecut {
inline namespace v1 {

// A record and its key; empty when there is none. Good as long as its database.
template <typename RowType>
struct Found {
  std::uint32_t key = 0;
  const RowType* row = nullptr;

  [[nodiscard]] explicit operator bool() const noexcept { return row != nullptr; }
  const RowType* operator->() const noexcept { return row; }
  const RowType& operator*() const noexcept { return *row; }
};

using Zip = Found<ZipDataRow>;
using City = Found<CityDataRow>;
using CityName = Found<CityNameRow>;
using CityPhonetic = Found<CityPhoneticRow>;

// A street or a firm: its key, which is the offset of its name, and the name.
struct NamedKey {
  std::uint32_t key = 0;
  std::string_view name;
  bool found = false;

  [[nodiscard]] explicit operator bool() const noexcept { return found; }
};

// A truncated city name that fits one name, several or none.
struct TruncatedCity {
  CityName city;  // empty when none fits, and when several do
  bool ambiguous = false;

  [[nodiscard]] explicit operator bool() const noexcept { return static_cast<bool>(city); }
};

struct CityQuery {
  std::string_view state;  // two characters
  std::string_view name;
};

// The name of a record, without state.
[[nodiscard]] inline std::string_view nameOf(const CityNameRow& city) noexcept {
  const auto held = city.get(CityNameRow::name);
  const std::size_t length = city.get(CityNameRow::nameLength);
  return {reinterpret_cast<const char*>(held.data()), length < held.size() ? length : held.size()};
}
[[nodiscard]] inline std::string_view stateOf(const CityNameRow& city) noexcept {
  return {reinterpret_cast<const char*>(city.get(CityNameRow::state).data()), 2};
}
[[nodiscard]] inline std::string_view keyOf(const CityPhoneticRow& phonetic) noexcept {
  const auto held = phonetic.get(CityPhoneticRow::key);
  const std::size_t length = phonetic.get(CityPhoneticRow::keyLength);
  return {reinterpret_cast<const char*>(held.data()), length < held.size() ? length : held.size()};
}

// The count of a phonetic key, at most 9.
[[nodiscard]] inline std::uint32_t countOf(const CityPhoneticRow& phonetic) noexcept {
  const std::uint32_t count = phonetic.get(CityPhoneticRow::count);
  return count < 9 ? count : 9;
}

enum class PartitionKind : std::int32_t { kPoBox = 0, kStreet = 1, kRuralRoute = 2 };
enum class VariationKind : std::int32_t { kPhonetic = 0, kStandard = 1 };

// A phonetic key or a standardized name of streets; its key is the offset of its entry.
struct Variation {
  VariationKind kind = VariationKind::kPhonetic;
  std::uint32_t key = 0;
  std::string_view name;
  const VariationRow* row = nullptr;

  [[nodiscard]] explicit operator bool() const noexcept { return row != nullptr; }
};

// A street that a variation stands for, and the SCFs that it is served in.
struct ServedStreet {
  std::uint32_t street = 0;
  std::span<const KeyRow> scfs;
  bool everywhere = true;  // false with no SCF: the count in the file is negative
};

// A range that a cursor walks: `Cursor::next` gives the next item, or false at the end. Cursors are
// values; each begin starts from the beginning.
template <typename Cursor>
class Walk {
 public:
  using Item = typename Cursor::Item;

  class Iterator {
   public:
    using iterator_concept = std::input_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = Item;

    Iterator() = default;
    explicit Iterator(const Cursor& cursor) noexcept : cursor_(cursor) { ++*this; }
    const Item& operator*() const noexcept { return item_; }
    const Item* operator->() const noexcept { return &item_; }
    Iterator& operator++() noexcept {
      more_ = cursor_.next(item_);
      return *this;
    }
    void operator++(int) noexcept { ++*this; }
    bool operator==(std::default_sentinel_t) const noexcept { return !more_; }

   private:
    Cursor cursor_{};
    Item item_{};
    bool more_ = false;
  };

  Walk() = default;
  explicit Walk(const Cursor& cursor) noexcept : cursor_(cursor) {}
  [[nodiscard]] Iterator begin() const noexcept { return Iterator(cursor_); }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

 private:
  Cursor cursor_{};
};

}  // namespace v1
}  // namespace statecut
