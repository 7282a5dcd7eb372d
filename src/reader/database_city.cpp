// Cities by name, truncated name, phonetic key and pattern, and their data.

#include <algorithm>

#include "hash/namehash.h"
#include "lookup/inmemory.h"
#include "reader/loaded.h"

namespace statecut {

using Ref = RefControlRec;

namespace {

constexpr std::int32_t kNoName = -1;

// The length of a name as the searches take it, for a state of two characters.
std::int32_t lengthOf(std::string_view state, std::string_view name) {
  const bool fits = state.size() == 2 && name.size() <= memory::StateKey::kMost;
  return fits ? static_cast<std::int32_t>(name.size()) : kNoName;
}

}  // namespace

inline namespace v1 {

CityName Database::findCity(std::string_view state, std::string_view name) const noexcept {
  const std::int32_t length = lengthOf(state, name);
  if (length == kNoName) return {};
  const memory::StateKey key(state.data(), name.data(), length);
  const std::int32_t index =
      loaded_->find(kCityNames, key.text.data(), key.length, memory::kLongestCityKey);
  if (index == -1) return {};
  return {static_cast<std::uint32_t>(index), memory::cityNameAt(loaded_->view, index)};
}

CityName Database::cityName(std::uint32_t key) const noexcept {
  if (key > 0x7FFFFFFF) return {};
  const CityNameRow* row = memory::cityName(loaded_->view, static_cast<std::int32_t>(key));
  if (row == nullptr) return {};
  return {key, row};
}

TruncatedCity Database::findTruncatedCity(std::string_view state,
                                          std::string_view name) const noexcept {
  const std::int32_t length = lengthOf(state, name);
  if (length == kNoName) return {};
  const std::int32_t index =
      memory::truncatedIndex(loaded_->view, state.data(), name.data(), length);
  if (index == -1) return {};
  const CityNameRow* row =
      memory::onlyMatch(loaded_->view, state.data(), name.data(), length, index);
  if (row == nullptr) return {{}, true};
  return {{static_cast<std::uint32_t>(index), row}, false};
}

CityPhonetic Database::findPhonetic(std::string_view state, std::string_view code) const noexcept {
  const std::int32_t length = lengthOf(state, code);
  if (length == kNoName) return {};
  const memory::StateKey key(state.data(), code.data(), length);
  const std::int32_t index =
      loaded_->find(kCityPhonetics, key.text.data(), key.length, memory::kLongestPhoneticKey);
  if (index == -1) return {};
  return {static_cast<std::uint32_t>(index), memory::cityPhoneticAt(loaded_->view, index)};
}

CityPhonetic Database::phonetic(std::uint32_t key) const noexcept {
  if (key < 1 || key > 0x7FFFFFFF) return {};
  const CityPhoneticRow* row =
      memory::cityPhoneticAt(loaded_->view, static_cast<std::int32_t>(key));
  if (row == nullptr) return {};
  return {key, row};
}

City Database::cityData(std::uint32_t key) const noexcept {
  const CityDataRow* row = key == 0 ? nullptr : memory::cityDataAt(loaded_->view, key);
  if (row == nullptr) return {};
  return {key, row};
}

City Database::cityOf(const CityNameRow& name) const noexcept {
  return cityData(name.get(CityNameRow::cityKey));
}

const CityMultiZipRow* Database::multiZipOf(const CityDataRow& city) const noexcept {
  return memory::cityMultiZip(loaded_->view, city);
}

bool Database::CityCursor::next(CityName& item) noexcept {
  if (loaded == nullptr) return false;
  item.row = memory::cityName(loaded->view, static_cast<std::int32_t>(key));
  item.key = key++;
  return item.row != nullptr;
}

Walk<Database::CityCursor> Database::cityNames() const noexcept {
  return Walk<CityCursor>({loaded_.get(), 1});
}

bool Database::PhoneticCursor::next(CityPhonetic& item) noexcept {
  if (loaded == nullptr) return false;
  item = {key, memory::cityPhoneticAt(loaded->view, static_cast<std::int32_t>(key))};
  ++key;
  return item.row != nullptr;
}

Walk<Database::PhoneticCursor> Database::phonetics() const noexcept {
  return Walk<PhoneticCursor>({loaded_.get(), 1});
}

bool Database::PatternCursor::next(CityName& item) noexcept {
  if (loaded == nullptr || match == Match::kNothing) return false;
  const std::string_view wanted(text.data(), length);
  const auto fits = [&](const CityNameRow& record) {
    const std::string_view name = nameOf(record);
    if (match == Match::kStarts) return name.starts_with(wanted);
    if (match == Match::kEnds) return name.ends_with(wanted);
    return name.find(wanted) != std::string_view::npos;
  };
  const std::int32_t behind = memory::searchCities(loaded->view, state, start, fits);
  start = behind;
  if (behind == -1) return false;
  item.key = static_cast<std::uint32_t>(behind) - 1;
  item.row = memory::cityNameAt(loaded->view, behind - 1);
  return true;
}

Walk<Database::PatternCursor> Database::cities(std::string_view state,
                                               std::string_view pattern) const noexcept {
  using Match = PatternCursor::Match;
  PatternCursor cursor;
  if (state.size() != 2) return Walk<PatternCursor>(cursor);
  cursor.loaded = loaded_.get();
  cursor.state[0] = state[0];
  cursor.state[1] = state[1];
  std::string_view text = pattern;
  const bool leading = text.starts_with('*');
  if (leading) text.remove_prefix(1);
  const bool trailing = text.ends_with('*');
  if (trailing) text.remove_suffix(1);
  const bool valid = !text.empty() && !text.starts_with('*') && !text.ends_with('*');
  if (!valid || text.size() > cursor.text.size()) return Walk<PatternCursor>(cursor);
  std::copy(text.begin(), text.end(), cursor.text.begin());
  cursor.length = static_cast<std::uint8_t>(text.size());
  cursor.match = !leading ? Match::kStarts : trailing ? Match::kHolds : Match::kEnds;
  return Walk<PatternCursor>(cursor);
}

}  // namespace v1
}  // namespace statecut
