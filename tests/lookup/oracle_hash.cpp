// The name index, and the scans that find names without it.

#include <algorithm>
#include <cstring>

#include "base/le.h"
#include "oracle.h"

namespace statecut::test {

namespace {

std::uint32_t hashOf(std::string_view name, std::uint32_t type) {
  std::uint32_t value = 2166136261U + type;
  for (std::size_t i = name.size(); i > 0; --i) {
    value *= 16777619U;
    value ^= static_cast<std::uint32_t>(static_cast<unsigned char>(name[i - 1])) - 32U;
  }
  return value;
}

std::string_view text(const Bytes& bytes, std::size_t from, std::size_t count) {
  return {reinterpret_cast<const char*>(bytes.data()) + from, count};
}

}  // namespace

std::int64_t Oracle::hash(std::string_view name, std::int64_t length, std::uint32_t type) {
  if (length < 0) return -1;
  name = name.substr(0, static_cast<std::size_t>(length));
  // Without both of its tables there is no index in memory.
  if (!views_[kSlots].loaded || !views_[kOverflow].loaded) {
    note(Difference::kTableTooLarge);
    if (kind_ == kMemory) return -1;
  }
  const std::uint32_t slots = word(312);
  const std::uint32_t mask = slots - 1;
  const std::uint32_t value = hashOf(name, type);
  const std::uint32_t slot = value & mask;
  if (slot >= slots) return -1;
  const std::uint32_t check = type | ((value & ~mask) >> 16);
  Bytes local(7);
  const Optional entry = row(kSlots, slot, 7, local, false);
  if (!entry) return -1;
  const std::uint32_t count = (*entry)[0];
  const std::uint32_t number = le::get<4>(entry->data() + 3);
  if (count == 0) return -1;
  if (count > 1) return hashOverflow(name, type, check, number, count);
  if (check != le::get<2>(entry->data() + 1) || !candidate(name, type, number)) return -1;
  return static_cast<std::int32_t>(number);
}

std::int64_t Oracle::hashOverflow(std::string_view name, std::uint32_t type, std::uint32_t check,
                                  std::uint32_t first, std::uint32_t count) {
  Bytes entries(7ULL * count);
  if (kind_ == kDisk) readDirect(word(316) + 6 * first, 7ULL * count, entries);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint64_t at = std::uint64_t{first} + i;
    Bytes entry(entries.begin() + 6 * i, entries.begin() + 6 * i + 6);
    if (at >= word(320)) {
      note(Difference::kOverflowBehindTheTable);
      if (kind_ == kMemory) return -1;
    }
    if (kind_ == kMemory) {
      const Optional seen = view(kOverflow, 6 * at, 6);
      if (!seen) return -1;
      entry = *seen;
    }
    const std::uint32_t number = le::get<4>(entry.data() + 2);
    if (check == le::get<2>(entry.data()) && candidate(name, type, number))
      return static_cast<std::int32_t>(number);
  }
  return -1;
}

// Whether the name of that number is the one looked for.
bool Oracle::candidate(std::string_view name, std::uint32_t type, std::uint32_t number) {
  struct Kind {
    Slot slot;
    std::size_t bound;  // word of the count or of the byte length
    std::uint32_t width;
    std::uint32_t lengthAt;
    std::uint32_t textAt;
    std::uint32_t textRead;  // bytes of the text that one read of the file brings
  };
  static constexpr Kind kKinds[] = {
      {kFirms, 176, 1, 0, 1, 40},           {kStreets, 144, 1, 0, 1, 28},
      {kNames, 132, 34, 3, 4, 30},          {kStandardStreets, 164, 1, 4, 5, 28},
      {kPhoneticStreets, 152, 1, 4, 5, 28}, {kPhonetics, 136, 26, 25, 2, 24}};
  const Kind& kind = kKinds[type];
  const bool variation = type == 3 || type == 4;
  if (std::uint64_t{number} + (variation ? 4 : 0) >= word(kind.bound)) return false;
  const std::uint64_t at = std::uint64_t{number} * kind.width;
  const std::uint32_t most = std::max(kind.textAt, kind.lengthAt + 1) + 260;
  const std::uint32_t read = std::max(kind.textAt + kind.textRead, kind.lengthAt + 1);
  Bytes bytes(most);
  if (!views_[kind.slot].loaded) note(Difference::kTableTooLarge);
  if (kind_ == kMemory) {
    const Optional seen = view(kind.slot, at, most);
    if (!seen) return false;
    bytes = *seen;
  } else {
    static constexpr std::size_t kRbas[] = {112, 80, 44, 104, 92, 52};
    const std::uint32_t skipped = variation ? 4 : 0;
    Bytes local(read - skipped);
    readDirect(word(kRbas[type]) + static_cast<std::uint32_t>(at) + skipped, read - skipped, local);
    std::copy(local.begin(), local.end(), bytes.begin() + skipped);
  }
  std::int64_t length = static_cast<signed char>(bytes[kind.lengthAt]);
  if (variation) length = bytes[kind.lengthAt] & 0x7F;
  if (kind.width > 1) length = bytes[kind.lengthAt] + 2;
  if (length != static_cast<std::int64_t>(name.size())) return false;
  if (length > kind.textRead) return false;  // no lookup takes such a name
  if (at + kind.textAt + name.size() > views_[kind.slot].bytes)
    note(Difference::kListBehindTheTable);
  if (exact_ && at + kind.textAt + name.size() > views_[kind.slot].bytes) return false;
  return text(bytes, kind.textAt, name.size()) == name;
}

// The numbers of all names of a type that read like this one.
std::vector<std::int64_t> Oracle::scan(std::string_view name, std::uint32_t type) {
  std::vector<std::int64_t> found;
  const auto add = [&](std::uint32_t number) {
    if (candidate(name, type, number)) found.push_back(number);
  };
  if (type == 2 || type == 5) {
    const std::uint32_t count = word(type == 2 ? 132 : 136);
    for (std::uint32_t number = 1; number < count; ++number) add(number);
    return found;
  }
  static constexpr Slot kSlotsOf[] = {kFirms, kStreets, kNames, kStandardStreets, kPhoneticStreets};
  static constexpr std::size_t kBytes[] = {176, 144, 0, 164, 152};
  const std::uint32_t skipped = type == 3 || type == 4 ? 4 : 0;
  for (std::uint32_t offset = 0; offset + skipped < word(kBytes[type]);) {
    add(offset);
    const unsigned char length = file_[views_[kSlotsOf[type]].rba + std::size_t{offset} + skipped];
    offset += skipped + 1 + (skipped > 0 ? length & 0x7F : length);
  }
  return found;
}

std::string Oracle::contradiction(const Call& call, const std::string& answer) {
  const auto counted = static_cast<std::size_t>(std::max(0, call.nameLength()));
  std::string_view name = std::string_view(call.name).substr(0, counted);
  const std::string withState = call.state + std::string(name);
  std::uint32_t type = 0;
  std::int32_t longest = 40;
  switch (call.op) {
    case Op::kFirm:
      break;
    case Op::kStreetKey:
      type = 1;
      longest = 28;
      break;
    case Op::kVariationIndex:
      type = call.unsignedA();
      longest = 28;
      break;
    case Op::kCityNameIndex:
      type = 2;
      longest = 30;
      break;
    case Op::kPhoneticIndex:
      type = 5;
      longest = 21;
      break;
    case Op::kCityHash:
      type = 2;
      longest = 28;
      name = withState;
      break;
    default:
      return {};
  }
  std::vector<std::int64_t> fitting;
  if (call.nameLength() >= 0 && call.nameLength() <= longest) fitting = scan(name, type);
  if (fitting.empty()) return answer == "-1" ? "" : "a scan finds no such name";
  for (const std::int64_t number : fitting)
    if (answer == std::to_string(number)) return {};
  return "a scan finds it at " + std::to_string(fitting.front());
}

}  // namespace statecut::test
