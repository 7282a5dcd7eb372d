#include "cut/refupdate.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "base/cmdline.h"
#include "base/memory.h"
#include "cut/logsites.h"
#include "cut/workstate.h"
#include "hash/namehash.h"
#include "tables/refpointers.h"

namespace statecut {

namespace {

constexpr std::int32_t kStateBytes = CityNameRow::state.width;
constexpr std::int64_t kNameBytes = CityNameRow::size;
constexpr std::int64_t kByStateBytes = CityByStateRow::size;
constexpr std::int64_t kPhoneticBytes = CityPhoneticRow::size;

// How often the most frequent state stands in the list: the records by state of a state that is
// given twice are appended twice.
std::uint64_t highestMultiplicity() {
  std::int64_t highest = 1;
  for (std::int32_t s = 0; s < cmdLine.stateCount; ++s) {
    const char* state = cmdLine.states[s];
    const auto same = std::count_if(
        cmdLine.states, cmdLine.states + cmdLine.stateCount,
        [state](const char(&other)[3]) { return std::memcmp(state, other, kStateBytes) == 0; });
    highest = std::max<std::int64_t>(highest, same);
  }
  return static_cast<std::uint64_t>(highest);
}

// Announces `bytes`, allocates `room` bytes. Null when `bytes` is no size of a table or memory runs
// out (logged).
void* newTable(LogSite info, LogSite failed, const char* name, std::int64_t bytes,
               std::uint64_t room) {
  logRequired(info, "Info Msg ", name, static_cast<std::uint64_t>(bytes));
  void* table = nullptr;
  if (bytes >= 0 && bytes <= static_cast<std::int64_t>(kTableMaxBytes)) table = allocTable(room);
  if (table == nullptr) logNoMemory(failed, name);
  return table;
}

std::uint32_t* newMap(LogSite failed, const char* name, std::uint32_t count) {
  void* map = allocTable(std::uint64_t{count} * sizeof(std::uint32_t));
  if (map == nullptr) logNoMemory(failed, name);
  return static_cast<std::uint32_t*>(map);
}

// A merge scan over a source table sorted by state. The cursor and the next new position go on
// from state to state.
template <typename RowType, typename StateField>
struct MergeScan {
  const RowType* source;
  std::uint32_t count;
  RowType* kept;
  std::uint32_t* map;
  StateField stateField;
  std::uint32_t cursor = 0;
  std::uint32_t next = 1;

  void takeState(const char* state) {
    for (; cursor < count; ++cursor) {
      const auto recordState = source[cursor].get(stateField);
      const int order = std::memcmp(recordState.data(), state, kStateBytes);
      if (order > 0) break;
      if (order < 0) continue;
      kept[next] = source[cursor];
      map[cursor] = next++;
    }
  }
};

template <typename RowType, typename StateField>
MergeScan<RowType, StateField> mergeScan(SlotNumber slot, std::uint32_t count, RowType* kept,
                                         std::uint32_t* map, StateField stateField) {
  const auto* source = reinterpret_cast<const RowType*>(refPointers[slot].table);
  return {source, source == nullptr ? 0 : count, kept, map, stateField};
}

// Appends the records of one state. Deliberate: all of them again when the state was given before;
// such lists have always given such cuts.
void takeByState(const char* state, std::uint32_t& kept) {
  const auto* source =
      reinterpret_cast<const CityByStateRow*>(refPointers[kSlotCityNamesByState].table);
  if (source == nullptr) return;
  for (std::uint32_t i = 0; i + 1 < sourceCityNames; ++i) {
    const auto recordState = source[i].get(CityByStateRow::state);
    if (std::memcmp(recordState.data(), state, kStateBytes) != 0) continue;
    scCityNamesByState[kept++] = source[i];
  }
}

// Unlinks the dropped names and renumbers those that move; a name missing from the index is no
// error. nameAt is where the hashed bytes begin, state first.
void renumber(SlotNumber slot, std::size_t rowBytes, std::size_t nameAt, std::size_t lengthAt,
              std::uint32_t count, const std::uint32_t* map, NameType type) {
  const unsigned char* table = refPointers[slot].table;
  if (table == nullptr) return;
  std::array<HashedName, kZapBatch> batch;
  std::size_t held = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (map[i] == i && i != 0) continue;
    const unsigned char* record = table + std::uint64_t{i} * rowBytes;
    batch[held++] = {record + nameAt, record[lengthAt] + kStateBytes, map[i], i};
    if (held < batch.size()) continue;
    zapHashedNames(batch, type);
    held = 0;
  }
  zapHashedNames(std::span(batch).first(held), type);
}

}  // namespace

std::int32_t createNewRefDb() {
  sourceCityNames = refWord(RefControlRec::cityNamesCount);
  sourceCityPhonetics = refWord(RefControlRec::cityPhoneticsCount);
  const std::int64_t names = sourceCityNames;
  const std::int64_t phonetics = sourceCityPhonetics;
  // One record more than announced: a blank first record that is kept moves to position 1.
  const auto nameRoom = (std::uint64_t{sourceCityNames} + 1) * CityNameRow::size;
  const auto phoneticRoom = (std::uint64_t{sourceCityPhonetics} + 1) * CityPhoneticRow::size;
  const auto byStateRoom = nameRoom * highestMultiplicity();

  scCityNames =
      static_cast<CityNameRow*>(newTable(logsite::kNewCityNames, logsite::kNewCityNamesFailed,
                                         "New City Names", names * kNameBytes, nameRoom));
  if (scCityNames == nullptr) return -1;
  scCityNamesByState = static_cast<CityByStateRow*>(
      newTable(logsite::kNewCityNamesByState, logsite::kNewCityNamesByStateFailed,
               "New City Names By State", (names - 1) * kByStateBytes, byStateRoom));
  if (scCityNamesByState == nullptr) return -1;
  scCityPhonetics = static_cast<CityPhoneticRow*>(
      newTable(logsite::kNewCityPhonetics, logsite::kNewCityPhoneticsFailed, "New City Phonetics",
               phonetics * kPhoneticBytes, phoneticRoom));
  return scCityPhonetics == nullptr ? -1 : 0;
}

std::int32_t updateRefDb() {
  scCityNames[0] = {};
  scCityPhonetics[0] = {};
  cityNameMap = newMap(logsite::kCityNameMapFailed, "City Name Map", sourceCityNames);
  if (cityNameMap == nullptr) return -1;
  cityPhNameMap = newMap(logsite::kCityPhNameMapFailed, "City Ph Name Map", sourceCityPhonetics);
  if (cityPhNameMap == nullptr) return -1;

  auto names =
      mergeScan(kSlotCityNames, sourceCityNames, scCityNames, cityNameMap, CityNameRow::state);
  auto phonetics = mergeScan(kSlotCityPhonetics, sourceCityPhonetics, scCityPhonetics,
                             cityPhNameMap, CityPhoneticRow::state);
  std::uint32_t byState = 0;
  for (std::int32_t s = 0; s < cmdLine.stateCount; ++s) {
    names.takeState(cmdLine.states[s]);
    takeByState(cmdLine.states[s], byState);
    phonetics.takeState(cmdLine.states[s]);
  }

  // The search compares with the source tables, so it runs before the counts become the cut's.
  renumber(kSlotCityNames, CityNameRow::size, CityNameRow::state.at, CityNameRow::nameLength.at,
           sourceCityNames, cityNameMap, kCityNames);
  renumber(kSlotCityPhonetics, CityPhoneticRow::size, CityPhoneticRow::state.at,
           CityPhoneticRow::keyLength.at, sourceCityPhonetics, cityPhNameMap, kCityPhonetics);
  setRefWord(RefControlRec::cityNamesCount, names.next);
  if (names.next - 1 != byState) {
    logText(logsite::kCitiesMissing, kWarn, "City Table", "Problem finding all cities.");
  }
  setRefWord(RefControlRec::cityPhoneticsCount, phonetics.next);
  std::stable_sort(
      scCityNamesByState, scCityNamesByState + byState,
      [](const CityByStateRow& a, const CityByStateRow& b) { return compareCities(&a, &b) < 0; });
  return 0;
}

std::int32_t compareCities(const CityByStateRow* a, const CityByStateRow* b) {
  for (std::size_t i = CityByStateRow::name.at; i < CityByStateRow::size; ++i) {
    if (a->bytes[i] != b->bytes[i]) return int{a->bytes[i]} - int{b->bytes[i]};
  }
  return 0;
}

}  // namespace statecut
