// City names by truncated name: binary search, and the check that one name alone fits.

#include <algorithm>
#include <cstring>

#include "lookup/cities.h"
#include "lookup/dispatch.h"
#include "lookup/refaccess.h"

namespace statecut {

namespace {

constexpr LogSource kCitiesSource{"cities", 5000};

constexpr std::int32_t kMaxName = CityNameRow::name.width;

// The length of a record's name; a damaged length byte counts as the longest name.
std::int32_t nameLength(const CityNameRow& record) {
  return std::min<std::int32_t>(record.get(CityNameRow::nameLength), kMaxName);
}

int compareSigned(char search, unsigned char held) {
  return static_cast<signed char>(search) - static_cast<signed char>(held);
}

// Below 0, 0 or above 0: the search stands before, in or behind the record.
int compareTruncated(const char* state, const char* name, std::int32_t length,
                     const CityNameRow& record) {
  const auto heldState = record.get(CityNameRow::state);
  const auto heldName = record.get(CityNameRow::name);
  if (const int order = compareSigned(state[0], heldState[0]); order != 0) return order;
  if (const int order = compareSigned(state[1], heldState[1]); order != 0) return order;
  if (const int order = compareSigned(name[0], heldName[0]); order != 0) return order;
  const std::int32_t heldLength = nameLength(record);
  const std::int32_t common = std::min(length, heldLength);
  const int order = std::memcmp(name, heldName.data(), static_cast<std::size_t>(common));
  // A search longer than the name never matches it.
  return order == 0 && length > heldLength ? 1 : order;
}

// Probes positions 0 to count - 1, one below the keys of the other lookups. Meant. A null record
// ends the search.
template <typename RecordAt>
std::int32_t searchTruncated(const char* state, const char* name, std::int32_t length,
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

// True when a record with a longer name of the same state fits the search as well.
bool isRival(const CityNameRow& record, const char* state, const char* name, std::int32_t length) {
  return length >= 0 && nameLength(record) > length &&
         std::memcmp(record.get(CityNameRow::state).data(), state, 2) == 0 &&
         std::memcmp(record.get(CityNameRow::name).data(), name,
                     static_cast<std::size_t>(length)) == 0;
}

// The record at `index`, null when a neighbour is a rival. `recordAt` may give null.
template <typename RecordAt>
CityNameRow* onlyMatch(const char* state, const char* name, std::int32_t length, std::int32_t index,
                       std::uint32_t count, RecordAt recordAt) {
  const auto rivalAt = [&](std::int64_t neighbour) {
    const CityNameRow* record = recordAt(static_cast<std::uint32_t>(neighbour));
    return record != nullptr && isRival(*record, state, name, length);
  };
  // Looks back from index 2 upward only: the record at position 0 is never a rival. Meant.
  if (index > 1 && rivalAt(std::int64_t{index} - 1)) return nullptr;
  if (index < std::int64_t{count} && rivalAt(std::int64_t{index} + 1)) return nullptr;
  return recordAt(static_cast<std::uint32_t>(index));
}

// The record on disk, null when it cannot be read.
CityNameRow* readName(const RefControlRec& ref, std::uint32_t at, CityNameRow* record) {
  return readRow(ref.get(RefControlRec::cityNamesRba), at, record) ? record : nullptr;
}

std::int32_t truncatedIndex(const char* state, const char* name, std::int32_t length) {
  return orFirst(&ProcObj::pfnFindTruncCityIndex, dbFindTruncCityIndexFirst)(state, name, length);
}

}  // namespace

std::int32_t dbFindTruncCityIndex(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const RefControlRec* ref = refRecord();
  if (ref == nullptr || !loaded(kSlotCityNames)) return -1;
  const unsigned char* table = refPointers[kSlotCityNames].table;
  return trace.leave(searchTruncated(
      state, name, length, ref->get(RefControlRec::cityNamesCount), [table](std::uint32_t at) {
        return reinterpret_cast<const CityNameRow*>(table + std::size_t{at} * CityNameRow::size);
      }));
}

std::int32_t dbFindTruncCityIdxOff(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const RefControlRec* ref = refRecord();
  if (ref == nullptr) return -1;
  CityNameRow record{};
  return trace.leave(
      searchTruncated(state, name, length, ref->get(RefControlRec::cityNamesCount),
                      [&](std::uint32_t at) { return readName(*ref, at, &record); }));
}

CityNameRow* dbFindTruncCityIn(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  const std::int32_t index = truncatedIndex(state, name, length);
  const RefControlRec* ref = refRecord();
  if (index == -1 || ref == nullptr) return nullptr;
  const std::uint32_t count = ref->get(RefControlRec::cityNamesCount);
  return trace.leave(onlyMatch(state, name, length, index, count, [count](std::uint32_t at) {
    return rowAt<CityNameRow>(kSlotCityNames, at, count);
  }));
}

CityNameRow* dbFindTruncCityOff(const char* state, const char* name, std::int32_t length) {
  const Trace trace(kCitiesSource);
  static CityNameRow nextCityName{};
  const std::int32_t index = truncatedIndex(state, name, length);
  const RefControlRec* ref = refRecord();
  if (index == -1 || ref == nullptr) return nullptr;
  return trace.leave(
      onlyMatch(state, name, length, index, ref->get(RefControlRec::cityNamesCount),
                [ref](std::uint32_t at) { return readName(*ref, at, &nextCityName); }));
}

}  // namespace statecut
