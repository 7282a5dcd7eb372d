#pragma once
// The names of the six hash types as they stand in a pair's tables, and the search of the hash.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "base/le.h"
#include "format/directory.h"

namespace statecut::format {

// Firm names, street names, city names, standardized street names, street phonetic keys, city
// phonetic keys.
inline constexpr unsigned kNameTypes = 6;
inline constexpr unsigned kCityNameType = 2;
inline constexpr unsigned kCityPhoneticType = 5;

TableId tableOfType(unsigned type);
const char* labelOfType(unsigned type);  // "firm name" ...
inline bool isRecordType(unsigned type) {
  return type == kCityNameType || type == kCityPhoneticType;
}

// Name `number` of the type: a record position (types 2 and 5) or a byte offset. Empty when there
// is none or its length byte leads out of the table or record.
std::optional<std::string_view> nameAt(unsigned type, std::uint64_t number,
                                       std::span<const unsigned char> table);

// Bytes that the name takes in its packed table, its own header included.
inline std::uint64_t packedBytes(unsigned type, std::string_view name) {
  return name.size() + (type < kCityNameType ? 1 : 5);
}

// Calls visit(number, name) for the names of a table in order, from record 1 on in record tables.
// Returns the offset of a name that runs out of a packed table, or its size when there is none.
template <typename Visit>
std::uint64_t forEachName(unsigned type, std::span<const unsigned char> table, Visit&& visit) {
  if (isRecordType(type)) {
    const std::uint64_t count = table.size() / tableDef(tableOfType(type)).width;
    for (std::uint64_t i = 1; i < count; ++i)
      if (const auto name = nameAt(type, i, table)) visit(i, *name);
    return table.size();
  }
  std::uint64_t at = 0;
  while (at < table.size()) {
    const auto name = nameAt(type, at, table);
    if (!name) break;
    visit(at, *name);
    at += packedBytes(type, *name);
  }
  return at;
}

std::uint32_t nameHash(std::string_view name, unsigned type);

// A hash and its overflow entries, as bytes that the caller keeps.
struct HashView {
  std::span<const unsigned char> slots;
  std::span<const unsigned char> overflow;

  std::uint32_t slotCount() const;
  std::uint32_t slotOf(std::uint32_t hash) const { return hash & (slotCount() - 1); }
  std::uint32_t checkOf(std::uint32_t hash, unsigned type) const {
    return type | ((hash & ~(slotCount() - 1)) >> 16);
  }
};

struct HashEntry {
  std::uint32_t check = 0;
  std::uint32_t number = 0;
  bool inOverflow = false;
  std::uint64_t numberAt = 0;  // offset of the number in its table
};

// Calls visit(entry) for the entries of a slot until it returns true. False when an entry lies
// outside the overflow table; those before it are visited.
template <typename Visit>
bool forEachEntry(const HashView& hash, std::uint32_t slot, Visit&& visit) {
  const unsigned char* at = hash.slots.data() + std::uint64_t{slot} * 7;
  const std::uint32_t count = at[0];
  if (count == 0) return true;
  if (count == 1) {
    visit(HashEntry{le::get<2>(at + 1), le::get<4>(at + 3), false, std::uint64_t{slot} * 7 + 3});
    return true;
  }
  for (std::uint64_t i = le::get<4>(at + 3), end = i + count; i < end; ++i) {
    if ((i + 1) * 6 > hash.overflow.size()) return false;
    const unsigned char* entry = hash.overflow.data() + i * 6;
    if (visit(HashEntry{le::get<2>(entry), le::get<4>(entry + 2), true, i * 6 + 2})) break;
  }
  return true;
}

// The tables that the numbers of the hash refer to, by type.
using NameTables = std::array<std::span<const unsigned char>, kNameTypes>;

struct HashResult {
  std::optional<HashEntry> entry;
  bool chainOk = true;
};
HashResult findName(const HashView& hash, const NameTables& tables, std::string_view name,
                    unsigned type);

}  // namespace statecut::format
