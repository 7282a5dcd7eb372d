#include "csession.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/le.h"

namespace statecut::test {

namespace {

constexpr char kWrongRecord[] = "a record with other fields than the file";

// A name of its own memory, so that nothing can be read behind it.
std::string_view nameOf(const Call& call) {
  return std::string_view(call.name).substr(
      0, static_cast<std::size_t>(std::max(0, call.nameLength())));
}

bool sameText(const char* text, std::size_t length, const unsigned char* bytes) {
  return std::equal(text, text + length, bytes,
                    [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; });
}

std::string keysText(const std::vector<std::uint16_t>& keys) {
  Bytes bytes(2 * keys.size() + 1);
  for (std::size_t i = 0; i < keys.size(); ++i) le::put<2>(bytes.data() + 2 * i, keys[i]);
  return record(bytes.data(), 2 * keys.size());
}

std::string shareText(const statecut_share& share) {
  std::array<unsigned char, 8> bytes{};
  le::put<2>(bytes.data(), share.zip_count);
  le::put<2>(bytes.data() + 2, share.key);
  le::put<4>(bytes.data() + 4, share.rba);
  return record(bytes.data(), bytes.size());
}

std::string nameText(const statecut_name& name) {
  const std::size_t shown = std::min<std::size_t>(name.length, kNameShown);
  return "name" + record(reinterpret_cast<const unsigned char*>(name.name), shown) +
         named("length", static_cast<std::int64_t>(name.length));
}

}  // namespace

CSession::CSession(const Bytes& file, bool batches) : file_(file), batches_(batches) {
  statecut_options options = STATECUT_OPTIONS_INIT;
  options.index_names = batches ? 1 : 0;
  statecut_error error{};
  const std::int32_t status = statecut_open_bytes(file.data(), file.size(), &options, &db_, &error);
  error_.code = static_cast<ErrorCode>(error.code);
  error_.text = error.text;
  error_.table = error.table;
  error_.offset = error.offset;
  if (status != error.code) error_.text.clear();  // seen as a refusal without a reason
}

CSession::~CSession() { statecut_close(db_); }

std::uint32_t CSession::word(std::size_t at) const { return le::get<4>(file_.data() + at); }

std::string CSession::recordAt(std::size_t rbaAt, std::uint64_t index, std::size_t width) const {
  return record(file_.data() + word(rbaAt) + index * width, width);
}

std::string CSession::text(const statecut_city_name& city) const {
  const unsigned char* held = file_.data() + word(44) + std::uint64_t{city.key} * 34;
  const bool right = city.city_key == le::get<2>(held) && city.value == held[2] &&
                     city.length == std::min<std::size_t>(held[3], 28) &&
                     sameText(city.state, 2, held + 4) && city.state[2] == '\0' &&
                     sameText(city.name, city.length, held + 6);
  return right ? record(held, 34) : kWrongRecord;
}

std::string CSession::text(const statecut_phonetic& phonetic) const {
  const unsigned char* held = file_.data() + word(52) + std::uint64_t{phonetic.key} * 26;
  const bool right = phonetic.count == std::min<std::uint32_t>(held[24], 9) &&
                     phonetic.length == std::min<std::size_t>(held[25], 20) &&
                     sameText(phonetic.state, 2, held + 2) &&
                     sameText(phonetic.code, phonetic.length, held + 4);
  return right ? record(held, 26) : kWrongRecord;
}

bool CSession::findZip(std::uint32_t code, statecut_zip& zip) {
  if (!batches_) return statecut_zip_by_code(db_, code, &zip) == STATECUT_OK;
  const std::uint32_t codes[] = {75203, code, 75203};
  statecut_zip zips[3];
  if (statecut_find_zips(db_, codes, 3, zips) != STATECUT_OK) return false;
  zip = zips[1];
  return zip.bytes != nullptr;
}

bool CSession::findCity(std::string_view state, std::string_view name, statecut_city_name& city) {
  const std::string two(state);
  if (!batches_)
    return statecut_find_city(db_, two.c_str(), name.data(), name.size(), &city) == STATECUT_OK;
  const statecut_city_query asked{two.c_str(), name.data(), name.size()};
  const statecut_city_query other{"TX", "AUSTIN", 6};
  const statecut_city_query queries[] = {other, asked, other};
  statecut_city_name cities[3];
  if (statecut_find_cities(db_, queries, 3, cities) != STATECUT_OK) return false;
  city = cities[1];
  return city.name != nullptr;
}

bool CSession::findName(const Call& call, bool firm, statecut_name& found) {
  const std::string_view name = nameOf(call);
  if (!batches_) {
    const auto find = firm ? statecut_find_firm : statecut_find_street;
    return find(db_, name.data(), name.size(), &found) == STATECUT_OK;
  }
  const statecut_text other{"MAIN ST", 7};
  const statecut_text names[] = {other, {name.data(), name.size()}, other};
  statecut_name answers[3];
  const auto find = firm ? statecut_find_firms : statecut_find_streets;
  if (find(db_, names, 3, answers) != STATECUT_OK) return false;
  found = answers[1];
  return found.name != nullptr;
}

std::string CSession::zips(const Call& call) {
  const std::uint32_t a = call.unsignedA();
  statecut_zip zip;
  statecut_share share;
  if (call.op == Op::kZipIndex) return findZip(a, zip) ? std::to_string(zip.key) : "0";
  if (call.op == Op::kZipData)
    return findZip(a, zip) ? record(zip.bytes, 52) + named("key", zip.key) : kNull;
  if (call.op == Op::kFinByIndex)
    return statecut_finance(db_, a, &share) == STATECUT_OK ? shareText(share) : kNull;
  if (call.op == Op::kMultiZips) {
    const std::uint32_t count = std::min(a, kMultiZipsShown);
    std::vector<std::uint16_t> keys(count);
    const std::int32_t status = statecut_multi_zips(db_, call.unsignedB(), count, keys.data());
    return status == STATECUT_OK ? keysText(keys) : kNull;
  }
  if (statecut_zip_by_key(db_, a, &zip) != STATECUT_OK) return kNull;
  const unsigned char* held = zip.bytes;
  if (zip.code != le::get<4>(held) || zip.street_rba != le::get<4>(held + 8) ||
      zip.po_box_rba != le::get<4>(held + 12) || zip.rural_route_rba != le::get<4>(held + 16) ||
      zip.city_count != held[36] || zip.finance_key != le::get<2>(held + 38))
    return kWrongRecord;
  if (call.op == Op::kZipDataFromKey) return record(held, 52);
  if (call.op == Op::kFinOfZip)
    return statecut_finance(db_, zip.finance_key, &share) == STATECUT_OK ? shareText(share) : kNull;
  std::size_t count = 0;
  if (statecut_zip_cities(db_, a, nullptr, 0, &count) != STATECUT_OK) return kNull;
  std::vector<std::uint16_t> keys(count);
  if (statecut_zip_cities(db_, a, keys.data(), count, &count) != STATECUT_OK) return kNull;
  // A list of none and no list are alike.
  const std::uint32_t start = le::get<4>(held + 32);
  return count == 0 && (start == 0 || start >= word(196)) ? kNull : keysText(keys);
}

std::string CSession::search(const Call& call) {
  const std::int32_t start = call.op == Op::kNearest ? 0 : call.signedB();
  if (start < 0) return "-1";
  const std::string pattern = patternOf(call);
  statecut_cursor* cursor = nullptr;
  if (statecut_cities(db_, call.state.c_str(), pattern.data(), pattern.size(), &cursor) !=
      STATECUT_OK)
    return "no cursor";
  std::int64_t found = -1;
  statecut_city_name cities[3];
  for (std::size_t count = 1; count > 0 && found == -1;) {
    count = statecut_next_cities(cursor, cities, std::size(cities));
    for (std::size_t i = 0; i < count && found == -1; ++i)
      if (cities[i].key >= static_cast<std::uint32_t>(start))
        found = std::int64_t{cities[i].key} + 1;
  }
  statecut_cursor_close(cursor);
  return std::to_string(found);
}

std::string CSession::phonetics(const Call& call) {
  const std::int32_t length = call.nameLength();
  const std::string_view name = nameOf(call);
  statecut_phonetic found;
  const auto find = [&](std::string_view state, std::string_view code) {
    return statecut_find_phonetic(db_, std::string(state).c_str(), code.data(), code.size(),
                                  &found) == STATECUT_OK;
  };
  if (call.op == Op::kPhoneticIndex)
    return length >= 2 && find(name.substr(0, 2), name.substr(2)) ? std::to_string(found.key)
                                                                  : "-1";
  if (call.op == Op::kFindPhonetic)
    return length >= 0 && find(call.state, name)
               ? text(found) + named("count", found.count) + named("index", found.key)
               : kNull;
  return statecut_phonetic_by_key(db_, call.unsignedA(), &found) == STATECUT_OK ? text(found)
                                                                                : kNull;
}

std::string CSession::cities(const Call& call) {
  const std::int32_t length = call.nameLength();
  const std::string_view name = nameOf(call);
  statecut_city_name city;
  switch (call.op) {
    case Op::kCityName:
    case Op::kCityNameCached:
      return statecut_city_name_by_key(db_, call.unsignedA(), &city) == STATECUT_OK ? text(city)
                                                                                    : kNull;
    case Op::kCityNameIndex:
      return length >= 2 && findCity(name.substr(0, 2), name.substr(2), city)
                 ? std::to_string(city.key)
                 : "-1";
    case Op::kCityHash:
      return length >= 0 && findCity(call.state, name, city) ? std::to_string(city.key) : "-1";
    case Op::kFindCity:
      return length >= 0 && findCity(call.state, name, city) ? text(city) : kNull;
    case Op::kTruncCity:
      return length >= 0 && statecut_find_truncated_city(db_, call.state.c_str(), name.data(),
                                                         name.size(), &city) == STATECUT_OK
                 ? text(city)
                 : kNull;
    case Op::kSequential:
    case Op::kNearest:
    case Op::kNext:
      return search(call);
    default:
      return phonetics(call);
  }
}

// The shares of the kinds, which are fields of one record.
std::string CSession::multiZip(std::uint32_t cityKey) {
  const unsigned char* city = file_.data() + word(32) + std::uint64_t{cityKey} * 36;
  const unsigned char* held = file_.data() + word(260) + std::uint64_t{le::get<2>(city + 30)} * 28;
  statecut_share share;
  for (const std::int32_t kind : {STATECUT_PO_BOX, STATECUT_STREET, STATECUT_RURAL_ROUTE}) {
    if (statecut_city_share(db_, cityKey, kind, &share) != STATECUT_OK) return kNull;
    const unsigned char* at = held + (kind == STATECUT_STREET   ? 0
                                      : kind == STATECUT_PO_BOX ? 12
                                                                : 20);
    const bool wide = kind == STATECUT_STREET;
    if (share.zip_count != le::get<2>(at) ||
        share.key != (wide ? le::get<4>(at + 4) : le::get<2>(at + 2)) ||
        share.rba != le::get<4>(at + (wide ? 8 : 4)))
      return kWrongRecord;
  }
  return record(held, 28);
}

std::string CSession::cityData(const Call& call) {
  const std::string_view name = nameOf(call);
  const std::uint32_t a = call.unsignedA();
  statecut_city_name found;
  statecut_city city;
  switch (call.op) {
    case Op::kCityDataByName:
    case Op::kCityDataByTrunc: {
      if (call.nameLength() < 0) return kNull;
      const bool known = call.op == Op::kCityDataByName
                             ? findCity(call.state, name, found)
                             : statecut_find_truncated_city(db_, call.state.c_str(), name.data(),
                                                            name.size(), &found) == STATECUT_OK;
      if (!known) return kNull;
      const bool held = statecut_city_by_key(db_, found.city_key, &city) == STATECUT_OK;
      return (held ? record(city.bytes, 36) : kNull) + std::string(" name") + text(found);
    }
    case Op::kCityZipKeys: {
      const std::uint32_t count = std::min(a, kCityZipKeysShown);
      const unsigned char* entries = nullptr;
      const std::int32_t status = statecut_city_zip_entries(db_, call.unsignedB(), count, &entries);
      return status == STATECUT_OK ? record(entries, std::size_t{count} * 6) : kNull;
    }
    case Op::kCityFinKeys: {
      std::vector<std::uint16_t> keys(std::min(a, kCityFinKeysShown));
      const std::int32_t status = statecut_city_finance_keys(
          db_, call.unsignedB(), static_cast<std::uint32_t>(keys.size()), keys.data());
      return status == STATECUT_OK ? keysText(keys) : kNull;
    }
    default:
      break;
  }
  if (statecut_city_by_key(db_, a, &city) != STATECUT_OK) return kNull;
  return call.op == Op::kCityData ? record(city.bytes, 36) : multiZip(a);
}

std::string CSession::variation(const Call& call) {
  const std::int32_t length = call.nameLength();
  if (length < 0 || length > 28 || call.a < 0 || call.a > 1) return kNull;
  const std::string_view name = nameOf(call);
  const std::int32_t scf = call.scfs.empty() ? -1 : call.scfs[0];
  const auto ask = [&](std::uint32_t* streets, std::size_t room, std::size_t* count) {
    return statecut_variations(db_, call.signedA(), name.data(), name.size(), scf, streets, room,
                               count) == STATECUT_OK;
  };
  std::size_t count = 0;
  if (!ask(nullptr, 0, &count)) return "streets";
  std::vector<std::uint32_t> streets(count);
  if (!ask(streets.data(), count, &count) || count != streets.size()) return "another count";
  return "streets" + runs(streets.data(), static_cast<std::int32_t>(count));
}

std::string CSession::streets(const Call& call) {
  const std::uint32_t a = call.unsignedA();
  statecut_name found;
  switch (call.op) {
    case Op::kStreetKey:
    case Op::kFirm:
      return call.nameLength() >= 0 && findName(call, call.op == Op::kFirm, found)
                 ? std::to_string(found.key)
                 : "-1";
    case Op::kStreetName:
    case Op::kStreetNameCached:
      return statecut_street_by_key(db_, a, &found) == STATECUT_OK ? nameText(found) : kNull;
    case Op::kFirmName:
      return statecut_firm_by_key(db_, a, &found) == STATECUT_OK ? nameText(found) : kNull;
    case Op::kVariation:
      return variation(call);
    default: {
      const unsigned char* bytes = nullptr;
      return statecut_general_delivery(db_, a, &bytes) == STATECUT_OK ? record(bytes, 4) : kNull;
    }
  }
}

std::string CSession::answer(const Call& call) {
  if (call.op <= Op::kMultiZips) return zips(call);
  if (call.op >= Op::kCityDataByName && call.op <= Op::kCityMultiZip) return cityData(call);
  if (call.op >= Op::kStreetKey) return streets(call);
  return cities(call);
}

}  // namespace statecut::test
