#pragma once
// The lookups on tables in memory: one body each, for the process-wide tables and for those of a
// Database. They write nothing, not even a trace, and keep nothing. Not found is null or -1.

#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "base/le.h"
#include "tables/directory.h"
#include "tables/rows.h"
#include "tables/tableview.h"

namespace statecut::memory {

// ZIP codes, by code (1 to 99999) and by key (from 1).
inline constexpr std::int32_t kLastZip = kZipCodes - 1;

[[nodiscard]] inline bool validZip(std::int32_t zip) { return zip >= 1 && zip <= kLastZip; }

// The entry of the ZIP index, 0 for none; -1 for no ZIP code.
[[nodiscard]] inline std::int32_t zipIndex(const TableView& view, std::int32_t zip) {
  const unsigned char* index = view.table(kSlotZipIndex);
  if (index == nullptr || !validZip(zip)) return -1;
  return le::get<2>(index + static_cast<std::size_t>(zip) * KeyRow::size);
}

// *key is untouched for no ZIP code, else the entry of the index.
[[nodiscard]] inline ZipDataRow* zipData(const TableView& view, std::int32_t zip,
                                         std::uint32_t* key) {
  const std::int32_t found = view.record == nullptr ? -1 : zipIndex(view, zip);
  if (found == -1) return nullptr;
  *key = static_cast<std::uint32_t>(found);
  if (found == 0) return nullptr;
  return view.row<ZipDataRow>(kSlotZipData, *key, RefControlRec::zipDataCount);
}

[[nodiscard]] inline ZipDataRow* zipDataFromKey(const TableView& view, std::int32_t key) {
  if (key < 1) return nullptr;
  return view.row<ZipDataRow>(kSlotZipData, static_cast<std::uint32_t>(key),
                              RefControlRec::zipDataCount);
}

// The city keys of a ZIP record, as many as it counts; a single one stands in the record.
[[nodiscard]] inline const KeyRow* cityKeys(const TableView& view, const ZipDataRow& zip) {
  if (zip.get(ZipDataRow::cityKeysCount) == 1)
    return reinterpret_cast<const KeyRow*>(zip.bytes.data() + ZipDataRow::cityKey.at);
  const std::uint32_t index = zip.get(ZipDataRow::cityKeysIndex);
  if (index == 0) return nullptr;
  return view.row<KeyRow>(kSlotZipMultiCity, index, RefControlRec::zipMultiCityListsCount);
}

[[nodiscard]] inline FinMultiZipRow* finMultiZip(const TableView& view, std::int32_t index) {
  if (index < 1) return nullptr;
  return view.row<FinMultiZipRow>(kSlotFinMultiZip, static_cast<std::uint32_t>(index),
                                  RefControlRec::finMultiZipRbasCount);
}

// A list of ZIP keys from `start`.
[[nodiscard]] inline const KeyRow* multiZips(const TableView& view, std::uint32_t start) {
  return view.row<KeyRow>(kSlotMultiZip, start, RefControlRec::multiZipListsCount);
}

// Cities. A state is two bytes, a name is counted.

// A name record by its key. The count compares as a signed number, so a damaged one of 2^31 or more
// has no keys.
[[nodiscard]] inline CityNameRow* cityName(const TableView& view, std::int32_t key) {
  if (key < 1 || key > static_cast<std::int32_t>(view.word(RefControlRec::cityNamesCount)))
    return nullptr;
  return view.row<CityNameRow>(kSlotCityNames, static_cast<std::uint32_t>(key),
                               RefControlRec::cityNamesCount);
}

// The record at an index that a search gave.
[[nodiscard]] inline CityNameRow* cityNameAt(const TableView& view, std::int32_t index) {
  return view.row<CityNameRow>(kSlotCityNames, static_cast<std::uint32_t>(index),
                               RefControlRec::cityNamesCount);
}

// The length of a record's name; a damaged length byte counts as the longest name.
[[nodiscard]] inline std::size_t nameLength(const CityNameRow& record) {
  const std::size_t length = record.get(CityNameRow::nameLength);
  return length < CityNameRow::name.width ? length : CityNameRow::name.width;
}

// What is hashed for a city or a phonetic key: the state and up to 28 bytes.
struct StateKey {
  static constexpr std::int32_t kMost = 28;
  std::array<unsigned char, kMost + 2> text{};
  std::int32_t length = -1;  // -1: a length that nothing has

  StateKey(const char* state, const char* name, std::int32_t nameLength) {
    if (nameLength < 0 || nameLength > kMost) return;
    std::memcpy(text.data(), state, 2);
    if (nameLength > 0) std::memcpy(text.data() + 2, name, static_cast<std::size_t>(nameLength));
    length = nameLength + 2;
  }
  [[nodiscard]] const char* chars() const { return reinterpret_cast<const char*>(text.data()); }
};

// The longest keys that are looked up.
inline constexpr std::int32_t kLongestCityKey = 30;
inline constexpr std::int32_t kLongestPhoneticKey = 21;
inline constexpr std::int32_t kLongestStreet = 28;
inline constexpr std::int32_t kLongestFirm = 40;

// A number of the name index as the lookups give it, or -1 for a longer name.
[[nodiscard]] std::int32_t findName(const TableView& view, std::uint32_t type, const void* name,
                                    std::int32_t length, std::int32_t longest);

// Below 0, 0 or above 0: a truncated name stands before, in or behind the record. The name has a
// byte at least.
[[nodiscard]] int compareTruncated(const char* state, const char* name, std::int32_t length,
                                   const CityNameRow& record);
// True when a record with a longer name of the same state fits the truncated name as well.
[[nodiscard]] bool isRival(const CityNameRow* record, const char* state, const char* name,
                           std::int32_t length);

// Binary search for a record that begins with the name, or -1. Probes positions 0 to count - 1, one
// below the keys of the other lookups. Meant. A null record ends the search.
template <typename RecordAt>
[[nodiscard]] std::int32_t searchTruncated(const char* state, const char* name, std::int32_t length,
                                           std::uint32_t count, RecordAt recordAt) {
  if (length <= 0) return -1;
  std::int64_t low = 0;
  std::int64_t high = std::int64_t{count} - 1;
  while (low <= high) {
    const std::int64_t middle = (low + high) / 2;
    const CityNameRow* record = recordAt(static_cast<std::uint32_t>(middle));
    if (record == nullptr) return -1;
    const int order = compareTruncated(state, name, length, *record);
    if (order == 0) return static_cast<std::int32_t>(middle);
    if (order < 0)
      high = middle - 1;
    else
      low = middle + 1;
  }
  return -1;
}

// The record at `index`, null when a neighbour is a rival. `recordAt` may give null.
template <typename RecordAt>
[[nodiscard]] CityNameRow* onlyMatch(const char* state, const char* name, std::int32_t length,
                                     std::int32_t index, std::uint32_t count, RecordAt recordAt) {
  // Looks back from index 2 upward only: the record at position 0 is never a rival. Meant.
  const auto at = static_cast<std::uint32_t>(index);
  if (index > 1 && isRival(recordAt(at - 1), state, name, length)) return nullptr;
  if (std::int64_t{index} < std::int64_t{count} && isRival(recordAt(at + 1), state, name, length))
    return nullptr;
  return recordAt(at);
}

// The index of a record whose name begins with the given one.
[[nodiscard]] std::int32_t truncatedIndex(const TableView& view, const char* state,
                                          const char* name, std::int32_t length);
// The record at that index; null when a neighbour fits as well.
[[nodiscard]] CityNameRow* onlyMatch(const TableView& view, const char* state, const char* name,
                                     std::int32_t length, std::int32_t index);

// The position behind the first record of the state, from `start`, whose name `fits` accepts.
template <typename Fits>
[[nodiscard]] std::int32_t searchCities(const TableView& view, const char* state,
                                        std::int32_t start, Fits fits) {
  if (start < 0 || view.table(kSlotCityNames) == nullptr) return -1;
  const std::uint64_t count = view.word(RefControlRec::cityNamesCount);
  const auto* at = reinterpret_cast<const CityNameRow*>(view.table(kSlotCityNames));
  for (auto position = static_cast<std::uint64_t>(start); position < count; ++position)
    if (std::memcmp(at[position].get(CityNameRow::state).data(), state, 2) == 0 &&
        fits(at[position]))
      return static_cast<std::int32_t>(position + 1);
  return -1;
}

[[nodiscard]] inline CityDataRow* cityDataAt(const TableView& view, std::uint32_t key) {
  return view.row<CityDataRow>(kSlotCityData, key, RefControlRec::cityDataCount);
}
[[nodiscard]] inline CityDataRow* cityData(const TableView& view, std::int32_t key) {
  return key < 1 ? nullptr : cityDataAt(view, static_cast<std::uint32_t>(key));
}
[[nodiscard]] inline const CityZipKeyRow* cityZipKeys(const TableView& view, std::uint32_t start) {
  if (start == 0) return nullptr;
  return view.row<CityZipKeyRow>(kSlotCityMultiZip, start, RefControlRec::cityMultiZipListsCount);
}
[[nodiscard]] inline const KeyRow* cityFinKeys(const TableView& view, std::uint32_t start) {
  if (start == 0) return nullptr;
  return view.row<KeyRow>(kSlotCityMultiFinance, start, RefControlRec::cityMultiFinanceListsCount);
}
[[nodiscard]] inline CityMultiZipRow* cityMultiZip(const TableView& view, const CityDataRow& city) {
  const std::uint32_t index = city.get(CityDataRow::multiZipRbaKey);
  if (index == 0) return nullptr;
  return view.row<CityMultiZipRow>(kSlotCityMultiZipRbas, index,
                                   RefControlRec::cityMultiZipRbasCount);
}

[[nodiscard]] inline CityPhoneticRow* cityPhoneticAt(const TableView& view, std::int32_t index) {
  return view.row<CityPhoneticRow>(kSlotCityPhonetics, static_cast<std::uint32_t>(index),
                                   RefControlRec::cityPhoneticsCount);
}
inline constexpr std::int32_t kMostPhoneticCount = 9;
[[nodiscard]] inline std::int32_t phoneticCount(const CityPhoneticRow& record) {
  const std::int32_t count = record.get(CityPhoneticRow::count);
  return count < kMostPhoneticCount ? count : kMostPhoneticCount;
}

// Streets and firms.

// The length byte of the packed name at `offset` of a table of `bytes` bytes; null at or behind its
// end.
[[nodiscard]] inline const unsigned char* packedName(const TableView& view, SlotNumber slot,
                                                     std::uint32_t offset, std::uint32_t bytes) {
  const unsigned char* names = view.table(slot);
  return names == nullptr || view.record == nullptr || offset >= bytes ? nullptr : names + offset;
}

[[nodiscard]] inline GeneralDeliveryRow* generalDelivery(const TableView& view,
                                                         std::uint32_t index) {
  if (index == 0) return nullptr;
  return view.row<GeneralDeliveryRow>(kSlotGeneralDelivery, index,
                                      RefControlRec::generalDeliveryCount);
}

// Negative for a variation that stands for several streets.
[[nodiscard]] inline std::int8_t flagOf(const VariationRow& entry) {
  return static_cast<std::int8_t>(entry.get(VariationRow::flag));
}

// The entry at a position of the index data of a set that a search gave (-1: none), or null.
[[nodiscard]] inline const VariationRow* variationAt(std::span<const unsigned char> index,
                                                     std::int32_t found) {
  const auto position = static_cast<std::uint32_t>(found);
  if (found == -1 || std::uint64_t{position} + VariationRow::size > index.size()) return nullptr;
  return reinterpret_cast<const VariationRow*>(index.data() + position);
}

// The streets of an ambiguous list, one after the other. It ends with the field that its bytes do
// not hold wholly.
class StreetWalk {
 public:
  // Without a filter every street is given; with one, those that have no SCF keys and those that
  // have `*scf` (null: that have none).
  StreetWalk(std::span<const unsigned char> list, bool filtered, const std::uint16_t* scf);
  // Goes on behind a street.
  StreetWalk(std::span<const unsigned char> rest, std::uint32_t left, bool filtered,
             const std::uint16_t* scf)
      : rest_(rest), left_(left), filtered_(filtered), scf_(scf) {}
  [[nodiscard]] std::span<const unsigned char> rest() const { return rest_; }
  [[nodiscard]] std::uint32_t left() const { return left_; }

  // False at the end.
  bool next(std::uint32_t* street);

 private:
  template <std::size_t Width>
  bool read(std::uint32_t* value) {
    if (rest_.size() < Width) return false;
    *value = le::get<Width>(rest_.data());
    rest_ = rest_.subspan(Width);
    return true;
  }
  bool skip(std::size_t count) {
    if (rest_.size() < count) return false;
    rest_ = rest_.subspan(count);
    return true;
  }
  bool isServed(std::uint32_t scfs);

  std::span<const unsigned char> rest_;
  std::uint32_t left_ = 0;  // entries
  bool filtered_;
  const std::uint16_t* scf_;
};

}  // namespace statecut::memory
