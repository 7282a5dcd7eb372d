#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "dbfiles/apiutil.h"

namespace statecut {

namespace {

template <std::size_t Digits, std::size_t Count>
constexpr std::array<std::array<char, Digits + 1>, Count> digitTable() {
  std::array<std::array<char, Digits + 1>, Count> table{};
  for (std::size_t number = 0; number < Count; ++number) {
    std::size_t rest = number;
    for (std::size_t i = Digits; i-- > 0; rest /= 10)
      table[number][i] = static_cast<char>('0' + rest % 10);
  }
  return table;
}

constexpr std::int32_t kBinary = 2;
constexpr std::int32_t kByteDigits = 8;
constexpr std::size_t kMaxDigits = 32;  // of a 32-bit value, in base 2

}  // namespace

const std::array<std::array<char, 2>, 10> OneDigitNumbers = digitTable<1, 10>();
const std::array<std::array<char, 3>, 100> TwoDigitNumbers = digitTable<2, 100>();
const std::array<std::array<char, 4>, 1000> ThreeDigitNumbers = digitTable<3, 1000>();

void baseDisp(std::int32_t value, char* text, std::int32_t base, std::int32_t minimumDigits) {
  if (text == nullptr) return;
  if (base < 2 || base > 16) {
    std::strcpy(text, "Number base range error.");
    return;
  }
  char digits[kMaxDigits];  // least significant first
  std::size_t count = 0;
  do {
    // A negative value shows the digits of its absolute value, without a sign.
    digits[count++] = "0123456789abcdef"[std::abs(value % base)];
    value /= base;
  } while (value != 0);

  const auto minimum = static_cast<std::size_t>(std::clamp(minimumDigits, 0, 255));
  const std::size_t zeros = minimum > count ? minimum - count : 0;
  char* const end = std::reverse_copy(digits, digits + count, std::fill_n(text, zeros, '0'));
  *end = '\0';
}

void displayBuffer(std::FILE* to, const unsigned char* bytes, std::int32_t count) {
  if (to == nullptr || bytes == nullptr) return;
  std::fprintf(to, "-------- display buffer of size %d-------\n", count);
  for (std::int32_t i = 0; i < count; ++i) {
    char digits[kMaxDigits + 1];
    baseDisp(bytes[i], digits, kBinary, kByteDigits);
    std::fprintf(to, "   [%2d]    %s\n", i, digits);
  }
}

void displayBitInd(std::FILE* to, std::int32_t value) {
  if (to == nullptr) return;
  char digits[kMaxDigits + 1];
  baseDisp(value, digits, kBinary, kByteDigits);
  std::fprintf(to, "   %s\n", digits);
}

const char* uncompressCRT(std::uint16_t code) {
  static char route[5];
  constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::size_t letter = code >> 11;
  const std::size_t number = code & 0x3FFU;  // bit 10 is not used
  if (letter >= sizeof kLetters - 1 || number >= ThreeDigitNumbers.size()) {
    route[0] = '\0';
    return route;
  }
  route[0] = kLetters[letter];
  std::strcpy(route + 1, ThreeDigitNumbers[number].data());
  return route;
}

}  // namespace statecut
