// ZIP codes and the lists of their keys.

#include "capi/handles.h"

using namespace statecut;
using namespace statecut::capi;

namespace {

statecut_share shareOf(const FinMultiZipRow& row) {
  return {row.get(FinMultiZipRow::zipCount), row.get(FinMultiZipRow::key),
          row.get(FinMultiZipRow::rba)};
}

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

}  // extern "C"
