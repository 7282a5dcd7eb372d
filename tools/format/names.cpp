#include "format/names.h"

#include "tables/rows.h"

namespace statecut::format {

namespace {

std::string_view view(const unsigned char* at, std::size_t length) {
  return {reinterpret_cast<const char*>(at), length};
}

// State and name stand next to each other in the record.
std::optional<std::string_view> recordName(std::uint64_t number,
                                           std::span<const unsigned char> table,
                                           std::uint64_t width, std::size_t lengthAt,
                                           std::size_t stateAt, std::size_t room) {
  if (number >= table.size() / width) return {};
  const unsigned char* record = table.data() + number * width;
  if (record[lengthAt] > room) return {};
  return view(record + stateAt, record[lengthAt] + std::size_t{2});
}

}  // namespace

TableId tableOfType(unsigned type) {
  static constexpr TableId kTable[kNameTypes] = {TableId::Firms,           TableId::StreetNames,
                                                 TableId::CityNames,       TableId::StreetStandards,
                                                 TableId::StreetPhonetics, TableId::CityPhonetics};
  return kTable[type];
}

const char* labelOfType(unsigned type) {
  static constexpr const char* kLabel[kNameTypes] = {
      "firm name",           "street name",      "city name", "standardized street name",
      "street phonetic key", "city phonetic key"};
  return kLabel[type];
}

std::optional<std::string_view> nameAt(unsigned type, std::uint64_t number,
                                       std::span<const unsigned char> table) {
  if (type == kCityNameType)
    return recordName(number, table, CityNameRow::size, CityNameRow::nameLength.at,
                      CityNameRow::state.at, CityNameRow::name.width);
  if (type == kCityPhoneticType)
    return recordName(number, table, CityPhoneticRow::size, CityPhoneticRow::keyLength.at,
                      CityPhoneticRow::state.at, CityPhoneticRow::key.width - 1);
  // Firms and streets: a signed length byte. Variations: 4 bytes of value before the byte, whose
  // sign bit is the ambiguity flag.
  const std::uint64_t lengthAt = number + (type < kCityNameType ? 0 : 4);
  if (lengthAt >= table.size()) return {};
  std::uint64_t length = table[lengthAt];
  if (type < kCityNameType && length > 127) return {};
  length &= 127;
  if (lengthAt + 1 + length > table.size()) return {};
  return view(table.data() + lengthAt + 1, length);
}

std::uint32_t nameHash(std::string_view name, unsigned type) {
  std::uint32_t hash = 2166136261U + type;
  for (auto c = name.rbegin(); c != name.rend(); ++c)
    hash = (hash * 16777619U) ^ (std::uint32_t{static_cast<unsigned char>(*c)} - 32U);
  return hash;
}

std::uint32_t HashView::slotCount() const { return static_cast<std::uint32_t>(slots.size() / 7); }

HashResult findName(const HashView& hash, const NameTables& tables, std::string_view name,
                    unsigned type) {
  HashResult result;
  if (hash.slotCount() == 0) return result;
  const std::uint32_t h = nameHash(name, type);
  if (hash.slotOf(h) >= hash.slotCount()) return result;
  const std::uint32_t check = hash.checkOf(h, type);
  result.chainOk = forEachEntry(hash, hash.slotOf(h), [&](const HashEntry& entry) {
    if (entry.check != check || nameAt(type, entry.number, tables[type]) != name) return false;
    result.entry = entry;
    return true;
  });
  return result;
}

}  // namespace statecut::format
