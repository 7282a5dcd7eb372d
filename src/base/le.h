#pragma once
// Little-endian numbers of 1 to 4 bytes: the only place where file bytes become numbers.

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace statecut::le {

// The unsigned type that holds Width bytes (3 bytes widen to 32 bits).
template <std::size_t Width>
using Uint = std::conditional_t<Width == 1, std::uint8_t,
                                std::conditional_t<Width == 2, std::uint16_t, std::uint32_t>>;

// Reads Width bytes at `at`. The fold is unrolled to a single load by both compilers.
template <std::size_t Width>
constexpr Uint<Width> get(const unsigned char* at) {
  static_assert(Width >= 1 && Width <= 4);
  return [at]<std::size_t... I>(std::index_sequence<I...>) {
    return static_cast<Uint<Width>>(((std::uint32_t{at[I]} << (8 * I)) | ...));
  }
  (std::make_index_sequence<Width>{});
}

// Writes the low Width bytes of `value` at `at`.
template <std::size_t Width>
constexpr void put(unsigned char* at, std::uint32_t value) {
  static_assert(Width >= 1 && Width <= 4);
  [ at, value ]<std::size_t... I>(std::index_sequence<I...>) {
    ((at[I] = static_cast<unsigned char>(value >> (8 * I))), ...);
  }
  (std::make_index_sequence<Width>{});
}

// The same with a width known at run time; widths above 4 use 4 bytes, 0 gives 0.
constexpr std::uint32_t getN(const unsigned char* at, std::size_t width) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < width && i < 4; ++i) value |= std::uint32_t{at[i]} << (8 * i);
  return value;
}

constexpr void putN(unsigned char* at, std::size_t width, std::uint32_t value) {
  for (std::size_t i = 0; i < width && i < 4; ++i)
    at[i] = static_cast<unsigned char>(value >> (8 * i));
}

}  // namespace statecut::le
