#include "lookup/inmemory.h"

#include <algorithm>

#include "hash/findname.h"

namespace statecut::memory {

namespace {

int compareSigned(char search, unsigned char held) {
  return static_cast<signed char>(search) - static_cast<signed char>(held);
}

}  // namespace

bool isRival(const CityNameRow* record, const char* state, const char* name, std::int32_t length) {
  return record != nullptr && length >= 0 &&
         nameLength(*record) > static_cast<std::size_t>(length) &&
         std::memcmp(record->get(CityNameRow::state).data(), state, 2) == 0 &&
         std::memcmp(record->get(CityNameRow::name).data(), name,
                     static_cast<std::size_t>(length)) == 0;
}

std::int32_t findName(const TableView& view, std::uint32_t type, const void* name,
                      std::int32_t length, std::int32_t longest) {
  if (length > longest) return -1;
  return static_cast<std::int32_t>(
      findHashedName(view, static_cast<const unsigned char*>(name), length, type));
}

int compareTruncated(const char* state, const char* name, std::int32_t length,
                     const CityNameRow& record) {
  const auto heldState = record.get(CityNameRow::state);
  const auto heldName = record.get(CityNameRow::name);
  if (const int order = compareSigned(state[0], heldState[0]); order != 0) return order;
  if (const int order = compareSigned(state[1], heldState[1]); order != 0) return order;
  if (const int order = compareSigned(name[0], heldName[0]); order != 0) return order;
  const auto heldLength = static_cast<std::int32_t>(nameLength(record));
  const std::int32_t common = std::min(length, heldLength);
  const int order = std::memcmp(name, heldName.data(), static_cast<std::size_t>(common));
  // A search longer than the name never matches it.
  return order == 0 && length > heldLength ? 1 : order;
}

std::int32_t truncatedIndex(const TableView& view, const char* state, const char* name,
                            std::int32_t length) {
  const auto* table = reinterpret_cast<const CityNameRow*>(view.table(kSlotCityNames));
  if (view.record == nullptr || table == nullptr) return -1;
  return searchTruncated(state, name, length, view.word(RefControlRec::cityNamesCount),
                         [table](std::uint32_t at) { return table + at; });
}

CityNameRow* onlyMatch(const TableView& view, const char* state, const char* name,
                       std::int32_t length, std::int32_t index) {
  return onlyMatch(
      state, name, length, index, view.word(RefControlRec::cityNamesCount),
      [&view](std::uint32_t at) { return cityNameAt(view, static_cast<std::int32_t>(at)); });
}

StreetWalk::StreetWalk(std::span<const unsigned char> list, bool filtered, const std::uint16_t* scf)
    : rest_(list), filtered_(filtered), scf_(scf) {
  if (!read<2>(&left_)) left_ = 0;
}

bool StreetWalk::next(std::uint32_t* street) {
  while (left_ > 0) {
    --left_;
    std::uint32_t key = 0;
    std::uint32_t counted = 0;
    if (!read<4>(&key) || !read<1>(&counted)) break;
    // A negative count stands for none, but not for a street that is served everywhere.
    const std::uint32_t scfs = counted > 127 ? 0 : counted;
    *street = key;
    if (!filtered_ || counted == 0) {
      if (!skip(scfs * std::size_t{2})) left_ = 0;
      return true;
    }
    if (isServed(scfs)) return true;
  }
  left_ = 0;
  return false;
}

// Reads the SCF keys of one street up to the wanted one and skips the rest.
bool StreetWalk::isServed(std::uint32_t scfs) {
  for (std::uint32_t i = 0; i < scfs; ++i) {
    std::uint32_t scf = 0;
    if (!read<2>(&scf)) {
      left_ = 0;
      return false;
    }
    if (scf_ == nullptr || scf != *scf_) continue;
    if (!skip((scfs - i - 1) * std::size_t{2})) left_ = 0;
    return true;
  }
  return false;
}

}  // namespace statecut::memory
