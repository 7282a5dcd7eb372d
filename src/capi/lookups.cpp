// The single lookups.

#include <algorithm>
#include <cstring>

#include "capi/handles.h"

using namespace statecut;
using namespace statecut::capi;

namespace {

void copyState(char (&to)[4], std::string_view state) {
  to[0] = state.empty() ? '\0' : state[0];
  to[1] = state.size() < 2 ? '\0' : state[1];
  to[2] = to[3] = '\0';
}

// Stores what was found.
template <typename Record>
int32_t stored(bool found, Record* to, const Record& record) {
  if (!found) return STATECUT_NOT_FOUND;
  *to = record;
  return STATECUT_OK;
}

statecut_share shareOf(const FinMultiZipRow& row) {
  return {row.get(FinMultiZipRow::zipCount), row.get(FinMultiZipRow::key),
          row.get(FinMultiZipRow::rba)};
}

statecut_share shareOf(const CityMultiZipRow& row, int32_t kind) {
  using M = CityMultiZipRow;
  if (kind == STATECUT_STREET)
    return {row.get(M::sfhZipCount), row.get(M::sfhKey), row.get(M::sfhRba)};
  if (kind == STATECUT_PO_BOX)
    return {row.get(M::pobZipCount), row.get(M::pobKey), row.get(M::pobRba)};
  return {row.get(M::rrZipCount), row.get(M::rrKey), row.get(M::rrRba)};
}

statecut_phonetic recordOf(const CityPhonetic& phonetic) {
  statecut_phonetic record{};
  if (!phonetic) return record;
  const std::string_view code = keyOf(*phonetic);
  record.key = phonetic.key;
  record.count = countOf(*phonetic);
  const auto state = phonetic->get(CityPhoneticRow::state);
  copyState(record.state, {reinterpret_cast<const char*>(state.data()), state.size()});
  record.code = code.data();
  record.length = code.size();
  return record;
}

void copyKeys(std::span<const KeyRow> keys, uint16_t* to, std::size_t room) {
  for (std::size_t i = 0; i < std::min(room, keys.size()); ++i) to[i] = keys[i].get(KeyRow::key);
}

int32_t storedBytes(std::span<const unsigned char> found, const unsigned char** bytes) {
  return stored(!found.empty(), bytes, found.data());
}

bool hasState(const char* state) { return state != nullptr && state[0] != '\0'; }

}  // namespace

statecut_zip statecut::capi::recordOf(const Database& database, const Zip& zip) {
  statecut_zip record{};
  if (!zip) return record;
  record.key = zip.key;
  record.code = zip->get(ZipDataRow::zip);
  record.street_rba = zip->get(ZipDataRow::sfhRba);
  record.po_box_rba = zip->get(ZipDataRow::pobRba);
  record.rural_route_rba = zip->get(ZipDataRow::rrRba);
  record.city_count = zip->get(ZipDataRow::cityKeysCount);
  record.finance_key = zip->get(ZipDataRow::finMultiZipKey);
  copyState(record.state, database.stateOf(zip).value_or(std::string_view()));
  record.bytes = zip->bytes.data();
  return record;
}

statecut_city_name statecut::capi::recordOf(const CityName& city) {
  statecut_city_name record{};
  if (!city) return record;
  const std::string_view name = nameOf(*city);
  record.key = city.key;
  record.city_key = city->get(CityNameRow::cityKey);
  record.value = city->get(CityNameRow::value);
  copyState(record.state, stateOf(*city));
  record.name = name.data();
  record.length = name.size();
  return record;
}

statecut_name statecut::capi::recordOf(const NamedKey& named) {
  if (!named) return {0, nullptr, 0};
  return {named.key, named.name.data(), named.name.size()};
}

extern "C" {

int32_t statecut_zip_by_code(const statecut_db* db, uint32_t code, statecut_zip* zip) {
  if (db == nullptr || zip == nullptr) return STATECUT_ARGUMENT;
  const Zip found = db->database->zip(code);
  if (!found) return STATECUT_NOT_FOUND;
  *zip = recordOf(*db->database, found);
  return STATECUT_OK;
}

int32_t statecut_zip_by_key(const statecut_db* db, uint32_t key, statecut_zip* zip) {
  if (db == nullptr || zip == nullptr) return STATECUT_ARGUMENT;
  const Zip found = db->database->zipOfKey(key);
  if (!found) return STATECUT_NOT_FOUND;
  *zip = recordOf(*db->database, found);
  return STATECUT_OK;
}

int32_t statecut_zip_cities(const statecut_db* db, uint32_t zip_key, uint16_t* keys, size_t room,
                            size_t* count) {
  if (db == nullptr || count == nullptr || (keys == nullptr && room != 0)) return STATECUT_ARGUMENT;
  const Zip zip = db->database->zipOfKey(zip_key);
  if (!zip) return STATECUT_NOT_FOUND;
  const std::span<const KeyRow> cities = db->database->citiesOf(*zip);
  copyKeys(cities, keys, room);
  *count = cities.size();
  return STATECUT_OK;
}

int32_t statecut_finance(const statecut_db* db, uint32_t index, statecut_share* share) {
  if (db == nullptr || share == nullptr) return STATECUT_ARGUMENT;
  const FinMultiZipRow* row = db->database->finance(index);
  return row == nullptr ? STATECUT_NOT_FOUND : stored(true, share, shareOf(*row));
}

int32_t statecut_multi_zips(const statecut_db* db, uint32_t start, uint32_t count, uint16_t* keys) {
  if (db == nullptr || (keys == nullptr && count != 0)) return STATECUT_ARGUMENT;
  const std::span<const KeyRow> found = db->database->multiZips(start, count);
  if (found.data() == nullptr) return STATECUT_NOT_FOUND;
  copyKeys(found, keys, count);
  return STATECUT_OK;
}

int32_t statecut_find_city(const statecut_db* db, const char* state, const char* name,
                           size_t length, statecut_city_name* city) {
  std::string_view text;
  if (db == nullptr || city == nullptr || state == nullptr || !textOf(name, length, &text))
    return STATECUT_ARGUMENT;
  if (!hasState(state)) return STATECUT_NOT_FOUND;
  const CityName found = db->database->findCity({state, 2}, text);
  return found ? stored(true, city, recordOf(found)) : STATECUT_NOT_FOUND;
}

int32_t statecut_city_name_by_key(const statecut_db* db, uint32_t key, statecut_city_name* city) {
  if (db == nullptr || city == nullptr) return STATECUT_ARGUMENT;
  const CityName found = db->database->cityName(key);
  return stored(static_cast<bool>(found), city, recordOf(found));
}

int32_t statecut_find_truncated_city(const statecut_db* db, const char* state, const char* name,
                                     size_t length, statecut_city_name* city) {
  std::string_view text;
  if (db == nullptr || city == nullptr || state == nullptr || !textOf(name, length, &text))
    return STATECUT_ARGUMENT;
  if (!hasState(state)) return STATECUT_NOT_FOUND;
  const TruncatedCity found = db->database->findTruncatedCity({state, 2}, text);
  if (found.ambiguous) return STATECUT_AMBIGUOUS;
  return stored(static_cast<bool>(found), city, recordOf(found.city));
}

int32_t statecut_find_phonetic(const statecut_db* db, const char* state, const char* code,
                               size_t length, statecut_phonetic* phonetic) {
  std::string_view text;
  if (db == nullptr || phonetic == nullptr || state == nullptr || !textOf(code, length, &text))
    return STATECUT_ARGUMENT;
  if (!hasState(state)) return STATECUT_NOT_FOUND;
  const CityPhonetic found = db->database->findPhonetic({state, 2}, text);
  return stored(static_cast<bool>(found), phonetic, recordOf(found));
}

int32_t statecut_phonetic_by_key(const statecut_db* db, uint32_t key, statecut_phonetic* phonetic) {
  if (db == nullptr || phonetic == nullptr) return STATECUT_ARGUMENT;
  const CityPhonetic found = db->database->phonetic(key);
  return stored(static_cast<bool>(found), phonetic, recordOf(found));
}

int32_t statecut_city_by_key(const statecut_db* db, uint32_t key, statecut_city* city) {
  if (db == nullptr || city == nullptr) return STATECUT_ARGUMENT;
  const City found = db->database->cityData(key);
  if (!found) return STATECUT_NOT_FOUND;
  const bool finance = found->get(CityDataRow::finMultiZipFlag) == 1;
  *city = {key,
           found->get(CityDataRow::nameUsps),
           found->get(CityDataRow::nameStandard),
           found->get(CityDataRow::zipCount),
           finance ? uint32_t{found->get(CityDataRow::finMultiZipKey)} : 0U,
           found->bytes.data()};
  return STATECUT_OK;
}

int32_t statecut_city_share(const statecut_db* db, uint32_t city_key, int32_t kind,
                            statecut_share* share) {
  if (db == nullptr || share == nullptr || kind < STATECUT_PO_BOX || kind > STATECUT_RURAL_ROUTE)
    return STATECUT_ARGUMENT;
  const City city = db->database->cityData(city_key);
  const CityMultiZipRow* row = city ? db->database->multiZipOf(*city) : nullptr;
  return row == nullptr ? STATECUT_NOT_FOUND : stored(true, share, shareOf(*row, kind));
}

int32_t statecut_city_zips(const statecut_db* db, uint32_t city_key, const uint16_t** keys,
                           size_t* count) {
  if (db == nullptr || keys == nullptr || count == nullptr) return STATECUT_ARGUMENT;
  if (!db->database->indexCityZips()) return STATECUT_NO_MEMORY;
  if (!db->database->cityData(city_key)) return STATECUT_NOT_FOUND;
  const std::span<const std::uint16_t> zips = db->database->zipsOfCity(city_key);
  *keys = zips.data();
  *count = zips.size();
  return STATECUT_OK;
}

int32_t statecut_city_zip_entries(const statecut_db* db, uint32_t start, uint32_t count,
                                  const unsigned char** entries) {
  if (db == nullptr || entries == nullptr) return STATECUT_ARGUMENT;
  const std::span<const CityZipKeyRow> found = db->database->cityZipEntries(start, count);
  if (found.data() == nullptr) return STATECUT_NOT_FOUND;
  *entries = found.data()->bytes.data();
  return STATECUT_OK;
}

int32_t statecut_city_finance_keys(const statecut_db* db, uint32_t start, uint32_t count,
                                   uint16_t* keys) {
  if (db == nullptr || (keys == nullptr && count != 0)) return STATECUT_ARGUMENT;
  const std::span<const KeyRow> found = db->database->cityFinanceKeys(start, count);
  if (found.data() == nullptr) return STATECUT_NOT_FOUND;
  copyKeys(found, keys, count);
  return STATECUT_OK;
}

int32_t statecut_find_street(const statecut_db* db, const char* name, size_t length,
                             statecut_name* street) {
  std::string_view text;
  if (db == nullptr || street == nullptr || !textOf(name, length, &text)) return STATECUT_ARGUMENT;
  const NamedKey found = db->database->findStreet(text);
  return stored(found.found, street, recordOf(found));
}

int32_t statecut_street_by_key(const statecut_db* db, uint32_t key, statecut_name* street) {
  if (db == nullptr || street == nullptr) return STATECUT_ARGUMENT;
  const auto name = db->database->streetName(key);
  if (!name) return STATECUT_NOT_FOUND;
  *street = {key, name->data(), name->size()};
  return STATECUT_OK;
}

int32_t statecut_find_firm(const statecut_db* db, const char* name, size_t length,
                           statecut_name* firm) {
  std::string_view text;
  if (db == nullptr || firm == nullptr || !textOf(name, length, &text)) return STATECUT_ARGUMENT;
  const NamedKey found = db->database->findFirm(text);
  return stored(found.found, firm, recordOf(found));
}

int32_t statecut_firm_by_key(const statecut_db* db, uint32_t key, statecut_name* firm) {
  if (db == nullptr || firm == nullptr) return STATECUT_ARGUMENT;
  const auto name = db->database->firmName(key);
  if (!name) return STATECUT_NOT_FOUND;
  *firm = {key, name->data(), name->size()};
  return STATECUT_OK;
}

int32_t statecut_variations(const statecut_db* db, int32_t kind, const char* name, size_t length,
                            int32_t scf, uint32_t* streets, size_t room, size_t* count) {
  std::string_view text;
  if (db == nullptr || count == nullptr || (streets == nullptr && room != 0) ||
      (kind != STATECUT_PHONETIC && kind != STATECUT_STANDARD) || scf < -1 || scf > 0xFFFF ||
      !textOf(name, length, &text))
    return STATECUT_ARGUMENT;
  std::optional<std::uint16_t> filter;
  if (scf >= 0) filter = static_cast<std::uint16_t>(scf);
  size_t found = 0;
  for (const std::uint32_t street :
       db->database->variations(static_cast<VariationKind>(kind), text, filter)) {
    if (found < room) streets[found] = street;
    ++found;
  }
  if (found == 0) return STATECUT_NOT_FOUND;
  *count = found;
  return STATECUT_OK;
}

int32_t statecut_general_delivery(const statecut_db* db, uint32_t key,
                                  const unsigned char** bytes) {
  if (db == nullptr || bytes == nullptr) return STATECUT_ARGUMENT;
  const GeneralDeliveryRow* row = db->database->generalDelivery(key);
  if (row == nullptr) return STATECUT_NOT_FOUND;
  *bytes = row->bytes.data();
  return STATECUT_OK;
}

int32_t statecut_county(const statecut_db* db, uint32_t position, const unsigned char** bytes) {
  if (db == nullptr || bytes == nullptr) return STATECUT_ARGUMENT;
  return storedBytes(db->database->county(position), bytes);
}

int32_t statecut_urbanization(const statecut_db* db, uint32_t position,
                              const unsigned char** bytes) {
  if (db == nullptr || bytes == nullptr) return STATECUT_ARGUMENT;
  return storedBytes(db->database->urbanization(position), bytes);
}

}  // extern "C"
