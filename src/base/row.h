#pragma once
// Byte-backed rows: a row type holds exactly its bytes and describes them by a list of fields.
// Tables are arrays of rows, so a pointer into a loaded table is a row, at any address.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>

#include "../base/le.h"

namespace statecut {

// A little-endian unsigned number of Width bytes at offset At.
template <std::size_t At, std::size_t Width>
struct Num {
  static_assert(Width >= 1 && Width <= 4);
  static constexpr std::size_t at = At;
  static constexpr std::size_t width = Width;
  static constexpr bool isNumber = true;
  const char* name;
  const char* meaning;
};

// Width bytes at offset At that are carried as they stand (text, or not interpreted).
template <std::size_t At, std::size_t Width>
struct Text {
  static constexpr std::size_t at = At;
  static constexpr std::size_t width = Width;
  static constexpr bool isNumber = false;
  const char* name;
  const char* meaning;
};

template <std::size_t N>
struct Row {
  static constexpr std::size_t size = N;
  std::array<unsigned char, N> bytes;

  template <std::size_t At, std::size_t Width>
  constexpr le::Uint<Width> get(Num<At, Width>) const {
    static_assert(At + Width <= N, "field past the end of the row");
    return le::get<Width>(bytes.data() + At);
  }
  template <std::size_t At, std::size_t Width>
  constexpr void set(Num<At, Width>, std::uint32_t value) {
    static_assert(At + Width <= N, "field past the end of the row");
    le::put<Width>(bytes.data() + At, value);
  }
  template <std::size_t At, std::size_t Width>
  constexpr std::span<const unsigned char, Width> get(Text<At, Width>) const {
    static_assert(At + Width <= N, "field past the end of the row");
    return std::span<const unsigned char, Width>(bytes.data() + At, Width);
  }
  template <std::size_t At, std::size_t Width>
  constexpr std::span<unsigned char, Width> text(Text<At, Width>) {
    static_assert(At + Width <= N, "field past the end of the row");
    return std::span<unsigned char, Width>(bytes.data() + At, Width);
  }
};

// True when the fields, in their order, cover bytes 0 to N-1 with no gap and no overlap.
template <std::size_t N, typename... Fields>
constexpr bool tiles(const std::tuple<Fields...>&) {
  std::size_t next = 0;
  bool ok = true;
  ((ok = ok && Fields::at == next, next += Fields::width), ...);
  return ok && next == N;
}

// Calls visit(field) for each field of the row type, in offset order.
template <typename RowType, typename Visit>
constexpr void forEachField(Visit&& visit) {
  std::apply([&visit](const auto&... field) { (visit(field), ...); }, RowType::fields);
}

// The checks that every row type passes: `STATECUT_ROW(CityDataRow, 36)` below its definition.
#define STATECUT_ROW(type, length)                                                         \
  static_assert(sizeof(type) == (length) && alignof(type) == 1 && type::size == (length)); \
  static_assert(::statecut::tiles<(length)>(type::fields))

}  // namespace statecut
