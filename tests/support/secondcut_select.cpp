// The selected ZIP codes, the new city tables and the renumbered name hash.

#include <algorithm>
#include <cstring>

#include "base/le.h"
#include "support/secondcut_state.h"

namespace statecut::secondcut {
namespace {

constexpr std::size_t kName = 34;
constexpr std::size_t kPhonetic = 26;
constexpr std::uint32_t kCityNames = 2;
constexpr std::uint32_t kCityPhonetics = 5;

int compareBytes(const unsigned char* a, const unsigned char* b, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  return 0;
}

int compareState(const unsigned char* at, const std::string& state) {
  const unsigned char wanted[2] = {static_cast<unsigned char>(state[0]),
                                   static_cast<unsigned char>(state[1])};
  return compareBytes(at, wanted, 2);
}

void appendRecord(Bytes& to, const unsigned char* record, std::size_t size) {
  to.insert(to.end(), record, record + size);
}

// From the last byte to the first: multiply, then mix in the byte less 32.
std::uint32_t hashBackward(const unsigned char* name, std::uint32_t length, std::uint32_t seed) {
  std::uint32_t hash = seed;
  for (std::uint32_t i = length; i > 0; --i) {
    hash *= 16777619U;
    hash ^= std::uint32_t{name[i - 1]} - 32U;
  }
  return hash;
}

}  // namespace

void Cut::selectZips() {
  std::uint64_t selected = 0;
  const std::uint32_t count = zips.loaded ? word(192) : 0;
  for (const std::string& state : states) {
    for (std::uint32_t i = 0; i < count; ++i) {
      if (compareState(&zipBytes.bytes[std::size_t{12} * i], state) != 0) continue;
      const std::uint32_t zip = zips.u32(std::size_t{52} * i);
      if (zip > 99999) continue;
      zipIndex[zip] = i & 0xFFFF;
      ++selected;
    }
  }
  if (selected == 0)
    log.record(kWarning, "cutstate", 1758, 0, "State Selection",
               "No zip entries found for selected states.");
}

void Cut::announceNewTables() {
  const std::uint64_t n = sourceNames;
  log.required("dbaccess", 100, "Info Msg ", "New City Names", n * 34);
  log.required("dbaccess", 115, "Info Msg ", "New City Names By State", n * 34 - 34);
  log.required("dbaccess", 130, "Info Msg ", "New City Phonetics",
               std::uint64_t{sourcePhonetics} * 26);
}

void Cut::updateReference() {
  newNames.assign(kName, 0);
  newPhonetics.assign(kPhonetic, 0);
  nameMap.assign(sourceNames, 0);
  phoneticMap.assign(sourcePhonetics, 0);
  std::uint32_t nameCursor = 0;
  std::uint32_t phoneticCursor = 0;
  for (const std::string& state : states) keepState(state, nameCursor, phoneticCursor);
  renumberHash();
  setWord(132, static_cast<std::uint32_t>(newNames.size() / kName));
  if (word(132) - 1 != newByState.size())
    log.record(kWarning, "cutstate", 1288, 0, "City Table", "Problem finding all cities.");
  setWord(136, static_cast<std::uint32_t>(newPhonetics.size() / kPhonetic));
  std::stable_sort(newByState.begin(), newByState.end(), [](const Bytes& a, const Bytes& b) {
    const int byName = compareBytes(&a[4], &b[4], 28);
    return byName != 0 ? byName < 0 : compareBytes(&a[32], &b[32], 2) < 0;
  });
}

void Cut::keepState(const std::string& state, std::uint32_t& nameCursor,
                    std::uint32_t& phoneticCursor) {
  for (; nameCursor < sourceNames; ++nameCursor) {
    const unsigned char* record = &names.bytes[kName * nameCursor];
    const int order = compareState(record + 4, state);
    if (order > 0) break;
    if (order < 0) continue;
    nameMap[nameCursor] = static_cast<std::uint32_t>(newNames.size() / kName);
    appendRecord(newNames, record, kName);
  }
  for (std::uint32_t i = 0; i + 1 < sourceNames; ++i) {
    const unsigned char* record = &namesByState.bytes[kName * i];
    if (compareState(record + 32, state) == 0) newByState.emplace_back(record, record + kName);
  }
  for (; phoneticCursor < sourcePhonetics; ++phoneticCursor) {
    const unsigned char* record = &phonetics.bytes[kPhonetic * phoneticCursor];
    const int order = compareState(record + 2, state);
    if (order > 0) break;
    if (order < 0) continue;
    phoneticMap[phoneticCursor] = static_cast<std::uint32_t>(newPhonetics.size() / kPhonetic);
    appendRecord(newPhonetics, record, kPhonetic);
  }
}

// Every dropped name is unlinked, every moved one renumbered, in the order of the source.
void Cut::renumberHash() {
  for (std::uint32_t i = 0; i < sourceNames; ++i) {
    const std::size_t record = kName * i;
    if (nameMap[i] == 0 || nameMap[i] != i)
      zapName(names, record + 4, names.u8(record + 3) + 2, kCityNames, nameMap[i]);
  }
  for (std::uint32_t i = 0; i < sourcePhonetics; ++i) {
    const std::size_t record = kPhonetic * i;
    if (phoneticMap[i] == 0 || phoneticMap[i] != i)
      zapName(phonetics, record + 2, phonetics.u8(record + 25) + 2, kCityPhonetics, phoneticMap[i]);
  }
}

void Cut::zapName(const Table& table, std::size_t nameAt, std::uint32_t length, std::uint32_t type,
                  std::uint32_t number) {
  const unsigned char* name = &table.bytes[nameAt];
  const std::uint32_t hash = hashBackward(name, length, 2166136261U + type);
  const std::uint32_t mask = word(312) - 1;
  const std::uint32_t slot = hash & mask;
  const std::uint32_t check = type | ((hash & ~mask) >> 16);
  if (slot >= word(312)) return;
  const std::size_t slotAt = std::size_t{7} * slot;
  const std::uint32_t entries = hashSlots.u8(slotAt);
  if (entries == 0) return;
  if (entries == 1) {
    if (hashSlots.u16(slotAt + 1) == check &&
        candidateIs(type, hashSlots.u32(slotAt + 3), name, length))
      hashSlots.setU32(slotAt + 3, number);
    return;
  }
  const std::uint64_t first = hashSlots.u32(slotAt + 3);
  for (std::uint64_t position = first; position < first + entries; ++position) {
    if (position >= word(320)) return;
    const std::size_t at = 6 * position;
    if (hashOverflow.u16(at) != check || !candidateIs(type, hashOverflow.u32(at + 2), name, length))
      continue;
    hashOverflow.setU32(at + 2, number);
    return;
  }
}

bool Cut::candidateIs(std::uint32_t type, std::uint32_t number, const unsigned char* name,
                      std::uint32_t length) const {
  const bool isName = type == kCityNames;
  if (number >= (isName ? sourceNames : sourcePhonetics)) return false;
  const std::size_t record = (isName ? kName : kPhonetic) * number;
  const Table& table = isName ? names : phonetics;
  const std::uint32_t candidateLength = table.u8(record + (isName ? 3 : 25)) + 2;
  return candidateLength == length &&
         compareBytes(&table.bytes[record + (isName ? 4 : 2)], name, length) == 0;
}

}  // namespace statecut::secondcut
