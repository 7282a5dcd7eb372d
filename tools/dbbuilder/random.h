#pragma once
// The builder's random numbers: the same on every machine and with every compiler.

#include <cstdint>

namespace statecut::builder {

// Finalizer of splitmix64: a well-mixed function of its argument.
constexpr std::uint64_t mix64(std::uint64_t x) {
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
  return x ^ (x >> 31);
}

inline constexpr std::uint64_t mixStep = 0x9E3779B97F4A7C15U;

// splitmix64.
class Random {
 public:
  explicit constexpr Random(std::uint64_t seed) : state_(seed) {}

  constexpr std::uint64_t next() { return mix64(state_ += mixStep); }
  // 0 to bound-1; 0 for bound 0. The bias of the multiplication is of no concern here.
  constexpr std::uint32_t below(std::uint32_t bound) {
    return static_cast<std::uint32_t>(((next() >> 32) * bound) >> 32);
  }
  // low to high, both included.
  constexpr std::uint32_t between(std::uint32_t low, std::uint32_t high) {
    return low + below(high - low + 1);
  }
  constexpr bool percent(std::uint32_t chance) { return below(100) < chance; }

 private:
  std::uint64_t state_;
};

}  // namespace statecut::builder
