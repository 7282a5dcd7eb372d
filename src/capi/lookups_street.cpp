// Streets, firms and the small tables.

#include "capi/handles.h"

using namespace statecut;
using namespace statecut::capi;

namespace {

int32_t storedBytes(std::span<const unsigned char> found, const unsigned char** bytes) {
  return stored(!found.empty(), bytes, found.data());
}

}  // namespace

statecut_name statecut::capi::recordOf(const NamedKey& named) {
  if (!named) return {0, nullptr, 0};
  return {named.key, named.name.data(), named.name.size()};
}

extern "C" {

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
