// City names, patterns, city data, phonetic keys.

#include <algorithm>
#include <cstring>

#include "base/le.h"
#include "oracle.h"
#include "oracle_buffers.h"

namespace statecut::test {

namespace {

constexpr std::int64_t kLongestName = 28;

std::int64_t lengthOf(const Bytes& name) { return std::min<std::int64_t>(name[3], kLongestName); }

std::string_view textOf(const Bytes& name) {
  return {reinterpret_cast<const char*>(name.data()) + 6, static_cast<std::size_t>(lengthOf(name))};
}

// Bytes as the search compares them: first both states and the first letter, as signed characters.
int beginning(const Call& call, const Bytes& name) {
  const auto side = [](char c) { return static_cast<signed char>(c); };
  const char search[] = {call.state[0], call.state[1], call.name[0]};
  for (std::size_t i = 0; i < 3; ++i) {
    const int difference = side(search[i]) - static_cast<signed char>(name[4 + i]);
    if (difference != 0) return difference;
  }
  return 0;
}

// 0: the search begins the name; else to which side it lies.
int sideOf(const Call& call, std::int64_t length, const Bytes& name) {
  const int first = beginning(call, name);
  if (first != 0) return first;
  const std::int64_t shorter = std::min(length, lengthOf(name));
  const int rest =
      std::memcmp(call.name.data(), name.data() + 6, static_cast<std::size_t>(shorter));
  if (length > lengthOf(name)) return rest >= 0 ? 1 : -1;  // never a match
  return rest;
}

bool fits(const std::string& name, const std::string& text, Match match) {
  switch (match) {
    case Match::kContains:
      return name.find(text) != std::string::npos;
    case Match::kStarts:
      return name.compare(0, text.size(), text) == 0;
    case Match::kEnds:
      // A suffix longer than the name fits too.
      return text.size() > name.size() ||
             name.compare(name.size() - text.size(), text.size(), text) == 0;
  }
  return false;
}

}  // namespace

Oracle::Optional Oracle::cityName(std::int32_t key, bool cached) {
  if (key < 1 || key > static_cast<std::int32_t>(word(132))) return std::nullopt;
  return row(kNames, static_cast<std::uint64_t>(key), 34,
             cached ? diskBuffers.cityNameCached : diskBuffers.cityName, cached);
}

std::int64_t Oracle::cityHash(const Call& call) {
  if (call.nameLength() > kLongestName || call.nameLength() < 0) return -1;
  return hash(call.state + call.name, call.nameLength() + 2, 2);
}

Oracle::Optional Oracle::findCity(const Call& call) {
  const std::int64_t index = cityHash(call);
  if (index == -1) return std::nullopt;
  return row(kNames, static_cast<std::uint64_t>(index), 34, diskBuffers.findCity, false);
}

std::int64_t Oracle::truncIndex(const Call& call) {
  const std::int64_t length = call.nameLength();
  if (length <= 0) return -1;
  std::int64_t low = 0;
  std::int64_t high = std::int64_t{word(132)} - 1;
  Bytes local(34);
  while (low <= high) {
    const std::int64_t middle = (low + high) / 2;
    const Optional name = row(kNames, static_cast<std::uint64_t>(middle), 34, local, false);
    if (!name) return -1;
    const int side = sideOf(call, length, *name);
    if (side == 0) return middle;
    if (side < 0) {
      high = middle - 1;
    } else {
      low = middle + 1;
    }
  }
  return -1;
}

bool Oracle::rival(const Bytes& name, const Call& call) const {
  const std::string_view text = textOf(name);
  const auto length = static_cast<std::size_t>(call.nameLength());
  return text.size() > length && std::memcmp(name.data() + 4, call.state.data(), 2) == 0 &&
         text.substr(0, length) == std::string_view(call.name).substr(0, length);
}

Oracle::Optional Oracle::truncCity(const Call& call) {
  const std::int64_t index = truncIndex(call);
  if (index == -1) return std::nullopt;
  const auto at = static_cast<std::uint64_t>(index);
  Bytes& buffer = diskBuffers.truncCity;
  if (index > 1) {
    const Optional before = row(kNames, at - 1, 34, buffer, false);
    if (!before || rival(*before, call)) return std::nullopt;
  }
  if (at < word(132)) {
    const Optional behind = row(kNames, at + 1, 34, buffer, false);
    if (!behind) return std::nullopt;
    if (rival(*behind, call)) {
      if (at + 1 == word(132)) note(Difference::kRivalBehindTheTable);
      return std::nullopt;
    }
  }
  return row(kNames, at, 34, buffer, false);
}

std::int64_t Oracle::sequential(const std::string& state, const std::string& text, Match match,
                                std::int32_t start) {
  if (start < 0) return -1;
  Bytes local(34);
  // Positions are signed; the largest has no position behind it.
  const std::uint64_t end = std::min<std::uint64_t>(word(132), 0x7FFFFFFF);
  for (auto at = static_cast<std::uint64_t>(start); at < end; ++at) {
    const Optional name = row(kNames, at, 34, local, false);
    if (!name) return -1;
    const std::string terminated{textOf(*name)};
    if (std::memcmp(name->data() + 4, state.data(), 2) == 0 &&
        fits(terminated.c_str(), text, match))
      return static_cast<std::int64_t>(at) + 1;
    // Behind the file nothing changes until RBAs start over at 0.
    const std::uint32_t rba = word(44) + 34 * static_cast<std::uint32_t>(at);
    if (kind_ == kDisk && rba >= file_.size()) at += (0xFFFFFFFF - rba) / 34;
  }
  return -1;
}

std::int64_t Oracle::nearest(const std::string& state, const std::string& pattern,
                             std::int32_t start) {
  std::string work = pattern.substr(0, kLongestName);
  if (work.empty()) return -1;
  if (work.front() == '*' && work.back() == '*') {
    if (work.size() < 3) return -1;
    work = work.substr(1, work.size() - 2);
    if (work.front() == '*' || work.back() == '*') return -1;
    return sequential(state, work, Match::kContains, start);
  }
  if (work.front() == '*') {
    const std::string rest = pattern.substr(1);  // not cut
    if (rest.front() == '*') return -1;
    return sequential(state, rest, Match::kEnds, start);
  }
  if (work.back() == '*') {
    work.pop_back();
    if (work.back() == '*') return -1;
  }
  return sequential(state, work, Match::kStarts, start);
}

std::string Oracle::cityDataOf(const Optional& name, Bytes& buffer) {
  if (!name)
    return kNull + named("name", 0) + named("value", kUntouched) + named("key", kUntouched);
  const std::uint32_t key = le::get<2>(name->data());
  const std::string outs =
      " name" + record(name->data(), 34) + named("value", (*name)[2]) + named("key", key);
  if (key > word(188)) {
    note(Difference::kCityKeyAboveTheCount);
    if (kind_ == kMemory) return kNull + outs;
  }
  const Optional found = row(kCities, key, 36, buffer, false);
  return (found ? record(found->data(), 36) : kNull) + outs;
}

Oracle::Optional Oracle::cityData(std::int32_t key) {
  if (key < 1 || key > static_cast<std::int32_t>(word(188))) return std::nullopt;
  return row(kCities, static_cast<std::uint64_t>(key), 36, diskBuffers.cityData, true);
}

std::string Oracle::cityZipKeys(std::uint32_t count, std::uint32_t start) {
  if (start == 0 || start > word(180)) return kNull;
  const std::uint64_t shown = 6ULL * std::min(count, kCityZipKeysShown);
  if (kind_ == kMemory) {
    const Optional keys = view(kZipLists, 6ULL * start, shown);
    return keys ? record(keys->data(), shown) : kNull;
  }
  if (!views_[kZipLists].loaded) note(Difference::kTableTooLarge);
  if (6ULL * start + shown > views_[kZipLists].bytes) note(Difference::kListBehindTheTable);
  if (start == 65535) {
    note(Difference::kZipKeysFrom65535);
  } else {
    const std::uint64_t wanted = std::min<std::uint64_t>(6ULL * count, 1808);
    if (!readCached(word(36) + 6 * start, wanted, diskBuffers.zipLists)) return kNull;
  }
  return record(diskBuffers.zipLists.data(), shown);
}

std::string Oracle::cityFinKeys(std::uint32_t count, std::uint32_t start) {
  if (start == 0) return kNull;
  const std::uint64_t shown = 2ULL * std::min(count, kCityFinKeysShown);
  if (start > word(184)) return kNull;  // then above its low bits too
  if (start > (word(184) & 0xFFFF)) {
    note(Difference::kFinanceBound);
    if (kind_ == kDisk) return kNull;
  }
  if (kind_ == kMemory) {
    const Optional keys = view(kFinanceLists, 2ULL * start, shown);
    return keys ? record(keys->data(), shown) : kNull;
  }
  if (!views_[kFinanceLists].loaded) note(Difference::kTableTooLarge);
  if (2ULL * start + shown > views_[kFinanceLists].bytes) note(Difference::kListBehindTheTable);
  readDirect(word(40) + 2 * start, shown, diskBuffers.financeLists);
  return record(diskBuffers.financeLists.data(), shown);
}

Oracle::Optional Oracle::cityMultiZip(std::int32_t cityKey) {
  const Optional city = cityData(cityKey);
  if (!city) return std::nullopt;
  const std::uint32_t index = le::get<2>(city->data() + 30);
  if (index == 0 || index > word(256)) return std::nullopt;
  return row(kMultiZipRbas, index, 28, diskBuffers.multiZipRba, false);
}

std::string Oracle::findPhonetic(const Call& call) {
  const std::int32_t length = call.nameLength();
  if (length > kLongestName) {
    note(Difference::kLongPhoneticCode);
    return kNull + named("count", kUntouched) + named("index", kind_ == kMemory ? kUntouched : -1);
  }
  const std::int64_t index =
      length < 0 || length + 2 >= 22 ? -1 : hash(call.state + call.name, length + 2, 5);
  if (index == -1) return kNull + named("count", kUntouched) + named("index", -1);
  const Optional found =
      row(kPhonetics, static_cast<std::uint64_t>(index), 26, diskBuffers.findPhonetic, false);
  if (!found) return kNull + named("count", kUntouched) + named("index", index);
  return record(found->data(), 26) + named("count", std::min<int>((*found)[24], 9)) +
         named("index", index);
}

Oracle::Optional Oracle::phonetic(std::int64_t index) {
  if (index < 1 || index > word(136)) return std::nullopt;
  return row(kPhonetics, static_cast<std::uint64_t>(index), 26, diskBuffers.phonetic, false);
}

}  // namespace statecut::test
