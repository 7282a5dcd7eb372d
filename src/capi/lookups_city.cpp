// Cities and phonetic keys.

#include "capi/handles.h"

using namespace statecut;
using namespace statecut::capi;

namespace {

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

bool hasState(const char* state) { return state[0] != '\0'; }

}  // namespace

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

extern "C" {

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
  if (!db->database->cityData(city_key)) return STATECUT_NOT_FOUND;
  const auto zips = db->database->zipsOfCity(city_key);
  if (!zips) return STATECUT_NO_MEMORY;
  *keys = zips->data();
  *count = zips->size();
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

}  // extern "C"
