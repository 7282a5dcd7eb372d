#include "query/lists.h"

#include <algorithm>
#include <cstring>

namespace statecut::query {

namespace {

constexpr std::int32_t kLongestName = 99;

}  // namespace

std::vector<unsigned char> listBytes(const unsigned char* from, std::size_t count,
                                     const LoadedTable& table) {
  std::vector<unsigned char> bytes(count);
  std::uint64_t held = count;
  const auto start = reinterpret_cast<std::uintptr_t>(refPointers[table.slot].table);
  const auto at = reinterpret_cast<std::uintptr_t>(from);
  if (start != 0 && at >= start && at - start <= table.bytes)
    held = std::min<std::uint64_t>(count, table.bytes - (at - start));
  if (held != 0) std::memcpy(bytes.data(), from, static_cast<std::size_t>(held));
  return bytes;
}

void writeKeys(Answer& answer, const KeyRow* keys, std::size_t count, const LoadedTable& table) {
  if (keys == nullptr) return answer.null("keys");
  const std::vector<unsigned char> bytes =
      listBytes(keys->bytes.data(), count * KeyRow::size, table);
  std::vector<std::uint16_t> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = le::get<2>(bytes.data() + i * KeyRow::size);
  answer.numbers<std::uint16_t>("keys", values);
}

void writeName(Answer& answer, const char* name, std::int32_t length) {
  if (name == nullptr)
    answer.null("name");
  else
    answer.text("name", {name, static_cast<std::size_t>(std::clamp(length, 0, kLongestName))});
  if (length == kNoLength)
    answer.null("length");
  else
    answer.number("length", length);
}

}  // namespace statecut::query
