// Opening, what a database says of itself, partitions.

#include <algorithm>
#include <cstring>
#include <new>

#include "capi/handles.h"

using namespace statecut;
using namespace statecut::capi;

namespace {

template <std::size_t N>
void copyText(char (&to)[N], std::string_view from) {
  const std::size_t length = std::min(from.size(), N - 1);
  std::copy_n(from.begin(), length, to);
  std::fill(to + length, to + N, '\0');
}

OpenOptions optionsOf(const statecut_options* options) {
  OpenOptions made;
  if (options == nullptr) return made;
  // A program may have been built with a shorter record.
  statecut_options whole = STATECUT_OPTIONS_INIT;
  std::memcpy(&whole, options, std::min(options->size, sizeof whole));
  if (whole.range != nullptr) made.range = whole.range;
  made.mapped = whole.mapped != 0;
  made.indexNames = whole.index_names != 0;
  made.indexCityZips = whole.index_city_zips != 0;
  return made;
}

// Runs an opening. Nothing that it throws gets out.
template <typename Open>
int32_t opened(const statecut_options* options, statecut_db** db, statecut_error* error,
               Open open) {
  if (db == nullptr) return STATECUT_ARGUMENT;
  Error why;
  try {
    auto database = open(optionsOf(options), why);
    if (database != nullptr) {
      *db = new statecut_db{std::move(database)};
      fill(error, Error());
      return STATECUT_OK;
    }
  } catch (const std::bad_alloc&) {
    why.code = ErrorCode::kNoMemory;
  }
  fill(error, why);
  return static_cast<int32_t>(why.code);
}

}  // namespace

void statecut::capi::fill(statecut_error* error, const Error& from) {
  if (error == nullptr) return;
  error->code = static_cast<int32_t>(from.code);
  error->number = from.number;
  error->offset = from.offset;
  copyText(error->table, from.table);
  copyText(error->text, from.text);
}

extern "C" {

int32_t statecut_open(const char* reference, const statecut_options* options, statecut_db** db,
                      statecut_error* error) {
  if (reference == nullptr) return STATECUT_ARGUMENT;
  return opened(options, db, error, [&](const OpenOptions& made, Error& why) {
    return Database::open(std::string(reference), made, why);
  });
}

int32_t statecut_open_bytes(const void* bytes, size_t count, const statecut_options* options,
                            statecut_db** db, statecut_error* error) {
  if (bytes == nullptr) return STATECUT_ARGUMENT;
  return opened(options, db, error, [&](const OpenOptions& made, Error& why) {
    const std::span<const unsigned char> span(static_cast<const unsigned char*>(bytes), count);
    return Database::open(span, made, why);
  });
}

void statecut_close(statecut_db* db) { delete db; }

int32_t statecut_get_info(const statecut_db* db, statecut_info* info) {
  if (db == nullptr || info == nullptr) return STATECUT_ARGUMENT;
  const Database& database = *db->database;
  info->build_time = database.buildTime();
  info->cut_time = database.cutTime().value_or(0);
  info->is_cut = database.isCut() ? 1 : 0;
  copyText(info->version, database.version());
  copyText(info->copyright, database.copyright());
  return STATECUT_OK;
}

int32_t statecut_states(const statecut_db* db, char (*states)[3], size_t room, size_t* count) {
  if (db == nullptr || count == nullptr || (states == nullptr && room != 0))
    return STATECUT_ARGUMENT;
  try {
    const std::vector<std::string> all = db->database->states();
    for (size_t i = 0; i < std::min(room, all.size()); ++i) copyText(states[i], all[i]);
    *count = all.size();
    return STATECUT_OK;
  } catch (const std::bad_alloc&) {
    return STATECUT_NO_MEMORY;
  }
}

int32_t statecut_index_names(const statecut_db* db) {
  if (db == nullptr) return STATECUT_ARGUMENT;
  return db->database->indexNames() ? STATECUT_OK : STATECUT_NO_MEMORY;
}

int32_t statecut_index_city_zips(const statecut_db* db) {
  if (db == nullptr) return STATECUT_ARGUMENT;
  return db->database->indexCityZips() ? STATECUT_OK : STATECUT_NO_MEMORY;
}

int32_t statecut_partition_bytes(const statecut_db* db, uint32_t zip_key, int32_t kind,
                                 uint32_t* bytes) {
  if (db == nullptr || bytes == nullptr || kind < STATECUT_PO_BOX || kind > STATECUT_RURAL_ROUTE)
    return STATECUT_ARGUMENT;
  const Zip zip = db->database->zipOfKey(zip_key);
  if (!zip) return STATECUT_NOT_FOUND;
  const auto known = db->database->partitionBytes(zip, static_cast<PartitionKind>(kind));
  if (!known) return STATECUT_UNKNOWN;
  *bytes = *known;
  return STATECUT_OK;
}

int32_t statecut_read_partition(const statecut_db* db, uint32_t zip_key, int32_t kind, void* buffer,
                                size_t size, size_t* got, statecut_error* error) {
  if (db == nullptr || got == nullptr || (buffer == nullptr && size != 0) ||
      kind < STATECUT_PO_BOX || kind > STATECUT_RURAL_ROUTE)
    return STATECUT_ARGUMENT;
  Error why;
  const auto read = db->database->readPartition(
      db->database->zipOfKey(zip_key), static_cast<PartitionKind>(kind),
      std::span<unsigned char>(static_cast<unsigned char*>(buffer), size), why);
  fill(error, why);
  if (!read) return static_cast<int32_t>(why.code);
  *got = *read;
  return STATECUT_OK;
}

const char* statecut_strerror(int32_t status) {
  switch (status) {
    case STATECUT_OK:
      return "no error";
    case STATECUT_OPEN_FILE:
      return "a file cannot be opened";
    case STATECUT_READ_FILE:
      return "a file cannot be read";
    case STATECUT_NOT_DATABASE:
      return "a file is no database of its kind";
    case STATECUT_SHORT_FILE:
      return "a file is too short";
    case STATECUT_DAMAGED:
      return "a file is damaged";
    case STATECUT_OTHER_BUILD:
      return "the range file is of another build";
    case STATECUT_NO_MEMORY:
      return "no memory";
    case STATECUT_NO_RANGE:
      return "there is no range file";
    case STATECUT_NO_PARTITION:
      return "there is no such partition";
    case STATECUT_SMALL_BUFFER:
      return "the buffer is too small";
    case STATECUT_NOT_FOUND:
      return "not found";
    case STATECUT_AMBIGUOUS:
      return "several names fit";
    case STATECUT_UNKNOWN:
      return "a cut does not hold it";
    case STATECUT_ARGUMENT:
      return "an argument is null or out of range";
    default:
      return "unknown status";
  }
}

}  // extern "C"
