#include "readeroracle.h"

#include <algorithm>

#include "base/le.h"
#include "readersession.h"

namespace statecut::test {

namespace {

std::string text(const std::optional<Bytes>& bytes) {
  return bytes ? record(bytes->data(), bytes->size()) : kNull;
}

std::string withKey(const std::optional<Bytes>& bytes, std::int64_t key) {
  return bytes ? record(bytes->data(), bytes->size()) + named("key", key) : kNull;
}

}  // namespace

ReaderOracle::ReaderOracle(const Bytes& file) : Oracle(file, kMemory) { exact_ = true; }

Oracle::Optional ReaderOracle::entry(Slot slot, std::uint64_t index, std::uint64_t count,
                                     std::uint32_t width) {
  if (index == count) mean(ReaderDifference::kRecordAtTheCount);
  if (index >= count) return std::nullopt;
  return view(slot, index * width, width);
}

std::string ReaderOracle::list(Slot slot, std::uint64_t start, std::uint64_t wanted,
                               std::uint64_t end, std::uint32_t width) {
  if (start >= end || start + wanted > end) {
    mean(ReaderDifference::kListBehindTheTable);
    return kNull;
  }
  return text(view(slot, start * width, wanted * width));
}

std::string ReaderOracle::zips(const Call& call) {
  const std::int32_t a = call.signedA();
  if (call.op == Op::kMultiZips) {
    const std::uint32_t start = call.unsignedB();
    if (start > 0xFFFF) mean(ReaderDifference::kUpperBits);
    return list(kLists, start, std::min(call.unsignedA(), kMultiZipsShown), word(252), 2);
  }
  if (call.op == Op::kFinByIndex)
    return text(a < 1 ? std::nullopt : entry(kFinances, call.unsignedA(), word(268), 8));
  if (call.op == Op::kZipIndex || call.op == Op::kZipData) {
    const std::int64_t key = std::max<std::int64_t>(0, zipIndex(a));
    if (call.op == Op::kZipIndex) return std::to_string(key);
    const auto at = static_cast<std::uint64_t>(key);
    return withKey(key == 0 ? std::nullopt : entry(kZips, at, word(192), 52), key);
  }
  const Optional zip = a < 1 ? std::nullopt : entry(kZips, call.unsignedA(), word(192), 52);
  if (!zip || call.op == Op::kZipDataFromKey) return text(zip);
  if (call.op == Op::kFinOfZip) {
    const std::uint32_t index = le::get<2>(zip->data() + 38);
    return text(index == 0 ? std::nullopt : entry(kFinances, index, word(268), 8));
  }
  const std::uint32_t count = (*zip)[36];
  const std::uint32_t first = le::get<4>(zip->data() + 32);
  if (count == 1) return record(zip->data() + 30, 2);
  return first == 0 ? kNull : list(kKeysOfZips, first, count, word(196), 2);
}

// The key of the first name of the state, from the call's start, that fits, and 1; or -1.
std::int64_t ReaderOracle::search(const Call& call) {
  const std::string pattern = patternOf(call);
  const bool leads = pattern.starts_with('*');
  std::string sought = pattern.substr(leads ? 1 : 0);
  const bool trails = sought.ends_with('*');
  if (trails) sought.pop_back();
  if (pattern.size() > 28) mean(ReaderDifference::kLongPattern);
  if (leads && !trails) mean(ReaderDifference::kLongSuffix);
  if (sought.empty() || sought.front() == '*' || sought.back() == '*') return -1;
  const std::int32_t start = call.op == Op::kNearest ? 0 : call.signedB();
  if (start < 0) return -1;
  for (auto at = static_cast<std::uint64_t>(start); at < word(132); ++at) {
    const Optional name = view(kNames, 34 * at, 34);
    const std::size_t length = std::min<std::size_t>((*name)[3], 28);
    const std::string held(name->begin() + 6, name->begin() + 6 + static_cast<int>(length));
    const std::string state(name->begin() + 4, name->begin() + 6);
    const bool fits = leads && trails ? held.find(sought) != std::string::npos
                      : leads         ? held.ends_with(sought)
                                      : held.starts_with(sought);
    if (fits && state == call.state) return static_cast<std::int64_t>(at) + 1;
  }
  return -1;
}

std::string ReaderOracle::cities(const Call& call) {
  const std::int32_t length = call.nameLength();
  const std::int32_t a = call.signedA();
  switch (call.op) {
    case Op::kCityName:
    case Op::kCityNameCached:
      return text(a < 1 ? std::nullopt : entry(kNames, call.unsignedA(), word(132), 34));
    case Op::kCityNameIndex:
      return std::to_string(length < 2 || length > 30 ? -1 : hash(call.name, length, 2));
    case Op::kCityHash:
      return std::to_string(cityHash(call));
    case Op::kFindCity:
      return text(findCity(call));
    case Op::kTruncCity:
      return length > 28 ? kNull : text(truncCity(call));
    case Op::kSequential:
    case Op::kNearest:
    case Op::kNext:
      return std::to_string(search(call));
    case Op::kPhoneticIndex:
      return std::to_string(length < 2 || length > 21 ? -1 : hash(call.name, length, 5));
    case Op::kFindPhonetic: {
      if (length < 0 || length > 19) return kNull;
      const std::int64_t index = hash(call.state + call.name, length + 2, 5);
      const auto at = static_cast<std::uint64_t>(index);
      const Optional found = index == -1 ? std::nullopt : entry(kPhonetics, at, word(136), 26);
      return found ? text(found) + named("count", std::min<int>((*found)[24], 9)) +
                         named("index", index)
                   : kNull;
    }
    default:
      return text(a < 1 ? std::nullopt : entry(kPhonetics, call.unsignedA(), word(136), 26));
  }
}

std::string ReaderOracle::cityData(const Call& call) {
  const std::int32_t a = call.signedA();
  switch (call.op) {
    case Op::kCityDataByName:
    case Op::kCityDataByTrunc: {
      const bool truncated = call.op == Op::kCityDataByTrunc;
      if (call.nameLength() > 28) return kNull;
      const Optional name = truncated ? truncCity(call) : findCity(call);
      if (!name) return kNull;
      const std::uint32_t key = le::get<2>(name->data());
      if (key == 0) mean(ReaderDifference::kNoCityKey);
      return text(key == 0 ? std::nullopt : entry(kCities, key, word(188), 36)) + " name" +
             record(name->data(), 34);
    }
    case Op::kCityZipKeys: {
      const std::uint32_t wanted = std::min(call.unsignedA(), kCityZipKeysShown);
      return call.unsignedB() == 0 ? kNull
                                   : list(kZipLists, call.unsignedB(), wanted, word(180), 6);
    }
    case Op::kCityFinKeys: {
      const std::uint32_t wanted = std::min(call.unsignedA(), kCityFinKeysShown);
      return call.unsignedB() == 0 ? kNull
                                   : list(kFinanceLists, call.unsignedB(), wanted, word(184), 2);
    }
    default:
      break;
  }
  const Optional city = a < 1 ? std::nullopt : entry(kCities, call.unsignedA(), word(188), 36);
  if (!city || call.op == Op::kCityData) return text(city);
  const std::uint32_t index = le::get<2>(city->data() + 30);
  return text(index == 0 ? std::nullopt : entry(kMultiZipRbas, index, word(256), 28));
}

std::string ReaderOracle::packed(Slot slot, std::uint32_t offset, std::uint32_t bytes) {
  if (offset >= bytes) return kNull;
  const std::uint32_t held = (*view(slot, offset, 1))[0];
  const std::uint32_t length = std::min(held > 127 ? 0 : held, bytes - offset - 1);
  if (length != held) mean(ReaderDifference::kNameBehindTheTable);
  const std::uint32_t shown = std::min<std::uint32_t>(length, kNameShown);
  return "name" + text(view(slot, std::uint64_t{offset} + 1, shown)) + named("length", length);
}

std::string ReaderOracle::variation(const Call& call) {
  mean(ReaderDifference::kStreetsOfOneCall);
  const std::int32_t length = call.nameLength();
  if (call.signedA() < 0 || call.signedA() > 1 || length < 0 || length > 28) return kNull;
  const bool phonetic = call.signedA() == 0;
  const std::int64_t found = hash(call.name, length, phonetic ? 4 : 3);
  const auto position = static_cast<std::uint64_t>(found);
  if (found == -1 || position + 5 > word(phonetic ? 152 : 164)) return "streets";
  const Slot lists = phonetic ? kPhoneticLists : kStandardLists;
  const Bytes data = *view(phonetic ? kPhoneticStreets : kStandardStreets, position, 5);
  const std::uint32_t value = le::get<4>(data.data());
  std::vector<std::uint32_t> streets;
  if (data[4] <= 127) {
    streets.push_back(value);
  } else {
    const std::uint64_t end = word(phonetic ? 156 : 168);
    std::uint64_t at = value;
    const auto number = [&](std::uint32_t width) -> std::int64_t {
      if (at + width > end) return -1;
      const Bytes bytes = *view(lists, at, width);
      at += width;
      return le::getN(bytes.data(), width);
    };
    const std::int64_t entries = at < end ? number(2) : -1;
    for (std::int64_t i = 0; i < entries; ++i) {
      const std::int64_t street = number(4);
      const std::int64_t counted = street < 0 ? -1 : number(1);
      if (counted < 0) break;
      const std::int64_t scfs = counted > 127 ? 0 : counted;
      const std::uint64_t next = at + 2 * static_cast<std::uint64_t>(scfs);
      bool fits = call.scfs.empty() || counted == 0;
      std::int64_t scf = 0;
      for (std::int64_t j = 0; j < scfs && !fits && scf >= 0; ++j) {
        scf = number(2);
        fits = scf == call.scfs[0];
      }
      if (fits) streets.push_back(static_cast<std::uint32_t>(street));
      if (scf < 0) break;
      at = next;
    }
  }
  return "streets" + runs(streets.data(), static_cast<std::int32_t>(streets.size()));
}

std::string ReaderOracle::streets(const Call& call) {
  const std::int32_t length = call.nameLength();
  const auto number = [&](std::int32_t longest, std::uint32_t type) {
    return std::to_string(length > longest ? -1 : hash(call.name, length, type));
  };
  switch (call.op) {
    case Op::kStreetKey:
      return number(28, 1);
    case Op::kStreetName:
    case Op::kStreetNameCached:
      return packed(kStreets, call.unsignedA(), word(144));
    case Op::kVariation:
      return variation(call);
    case Op::kFirm:
      return number(40, 0);
    case Op::kFirmName:
      return packed(kFirms, call.unsignedA(), word(176));
    default: {
      const std::uint32_t key = call.unsignedA();
      if (key > 0xFFFF) mean(ReaderDifference::kUpperBits);
      return text(key == 0 ? std::nullopt : entry(kDeliveries, key, word(224), 4));
    }
  }
}

std::string ReaderOracle::answer(const Call& call) {
  meant_.reset();
  if (call.op <= Op::kMultiZips) return zips(call);
  if (call.op >= Op::kCityDataByName && call.op <= Op::kCityMultiZip) return cityData(call);
  if (call.op >= Op::kStreetKey) return streets(call);
  return cities(call);
}

}  // namespace statecut::test
