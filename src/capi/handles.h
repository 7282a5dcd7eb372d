#pragma once
// Inside of the C interface: what its handles stand for, and its records made of the reader's.

#include <statecut/statecut_c.h>

#include <algorithm>
#include <string>
#include <variant>

#include "reader/database.h"

struct statecut_db {
  std::shared_ptr<const statecut::Database> database;
};

struct statecut_cursor {
  using Database = statecut::Database;
  template <typename Cursor>
  using Iterator = typename statecut::Walk<Cursor>::Iterator;
  const Database* database = nullptr;
  std::string pattern;
  std::variant<Iterator<Database::ZipCursor>, Iterator<Database::CityCursor>,
               Iterator<Database::PatternCursor>, Iterator<Database::NameCursor>>
      place;
};

namespace statecut::capi {

// A text of the caller; false when it is null and not empty.
inline bool textOf(const char* text, std::size_t length, std::string_view* view) {
  if (text == nullptr && length != 0) return false;
  *view = std::string_view(text == nullptr ? "" : text, length);
  return true;
}

// Stores what was found.
template <typename Record>
int32_t stored(bool found, Record* to, const Record& record) {
  if (!found) return STATECUT_NOT_FOUND;
  *to = record;
  return STATECUT_OK;
}

inline void copyState(char (&to)[4], std::string_view state) {
  to[0] = state.empty() ? '\0' : state[0];
  to[1] = state.size() < 2 ? '\0' : state[1];
  to[2] = to[3] = '\0';
}

inline void copyKeys(std::span<const KeyRow> keys, uint16_t* to, std::size_t room) {
  for (std::size_t i = 0; i < std::min(room, keys.size()); ++i) to[i] = keys[i].get(KeyRow::key);
}

statecut_zip recordOf(const Database& database, const Zip& zip);
statecut_city_name recordOf(const CityName& city);
statecut_name recordOf(const NamedKey& named);
void fill(statecut_error* error, const Error& from);

}  // namespace statecut::capi
