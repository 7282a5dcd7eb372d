// Batches and cursors.

#include <algorithm>
#include <array>
#include <new>

#include "capi/handles.h"

using namespace statecut;
using namespace statecut::capi;

namespace {

constexpr std::size_t kSome = 64;  // questions at once

// Asks for some questions at a time and makes records of the answers.
template <typename Question, typename Answer, typename Make, typename Ask, typename Store>
void inPieces(std::size_t count, Make make, Ask ask, Store store) {
  std::array<Question, kSome> questions;
  std::array<Answer, kSome> answers;
  for (std::size_t from = 0; from < count; from += kSome) {
    const std::size_t some = std::min(kSome, count - from);
    for (std::size_t i = 0; i < some; ++i) questions[i] = make(from + i);
    ask(std::span<const Question>(questions.data(), some), std::span<Answer>(answers.data(), some));
    for (std::size_t i = 0; i < some; ++i) store(from + i, answers[i]);
  }
}

// Null and longer than any name: not found.
std::string_view questionText(const char* text, std::size_t length) {
  return text == nullptr ? std::string_view() : std::string_view(text, length);
}

template <typename Cursor>
int32_t begun(const statecut_db* db, statecut_cursor** cursor, const Walk<Cursor>& walk) {
  statecut_cursor* made = new (std::nothrow) statecut_cursor;
  if (made == nullptr) return STATECUT_NO_MEMORY;
  made->database = db->database.get();
  made->place = walk.begin();
  *cursor = made;
  return STATECUT_OK;
}

template <typename Iterator, typename Store>
std::size_t advance(Iterator& at, std::size_t room, Store store) {
  std::size_t stored = 0;
  for (; stored < room && at != std::default_sentinel; ++at) store(stored++, *at);
  return stored;
}

}  // namespace

extern "C" {

int32_t statecut_find_zips(const statecut_db* db, const uint32_t* codes, size_t count,
                           statecut_zip* zips) {
  if (db == nullptr || (count != 0 && (codes == nullptr || zips == nullptr)))
    return STATECUT_ARGUMENT;
  const Database& database = *db->database;
  inPieces<std::uint32_t, Zip>(
      count, [&](std::size_t i) { return codes[i]; },
      [&](auto from, auto to) { database.findZips(from, to); },
      [&](std::size_t i, const Zip& zip) { zips[i] = recordOf(database, zip); });
  return STATECUT_OK;
}

int32_t statecut_find_cities(const statecut_db* db, const statecut_city_query* queries,
                             size_t count, statecut_city_name* cities) {
  if (db == nullptr || (count != 0 && (queries == nullptr || cities == nullptr)))
    return STATECUT_ARGUMENT;
  const Database& database = *db->database;
  inPieces<CityQuery, CityName>(
      count,
      [&](std::size_t i) {
        const statecut_city_query& query = queries[i];
        const bool whole = query.state != nullptr && query.state[0] != '\0' &&
                           (query.name != nullptr || query.length == 0);
        return whole ? CityQuery{{query.state, 2}, questionText(query.name, query.length)}
                     : CityQuery{};
      },
      [&](auto from, auto to) { database.findCities(from, to); },
      [&](std::size_t i, const CityName& city) { cities[i] = recordOf(city); });
  return STATECUT_OK;
}

int32_t statecut_find_streets(const statecut_db* db, const statecut_text* names, size_t count,
                              statecut_name* streets) {
  if (db == nullptr || (count != 0 && (names == nullptr || streets == nullptr)))
    return STATECUT_ARGUMENT;
  const Database& database = *db->database;
  inPieces<std::string_view, NamedKey>(
      count, [&](std::size_t i) { return questionText(names[i].text, names[i].length); },
      [&](auto from, auto to) { database.findStreets(from, to); },
      [&](std::size_t i, const NamedKey& street) { streets[i] = recordOf(street); });
  return STATECUT_OK;
}

int32_t statecut_find_firms(const statecut_db* db, const statecut_text* names, size_t count,
                            statecut_name* firms) {
  if (db == nullptr || (count != 0 && (names == nullptr || firms == nullptr)))
    return STATECUT_ARGUMENT;
  const Database& database = *db->database;
  inPieces<std::string_view, NamedKey>(
      count, [&](std::size_t i) { return questionText(names[i].text, names[i].length); },
      [&](auto from, auto to) { database.findFirms(from, to); },
      [&](std::size_t i, const NamedKey& firm) { firms[i] = recordOf(firm); });
  return STATECUT_OK;
}

int32_t statecut_cities(const statecut_db* db, const char* state, const char* pattern,
                        size_t length, statecut_cursor** cursor) {
  std::string_view text;
  if (db == nullptr || cursor == nullptr || state == nullptr || !textOf(pattern, length, &text))
    return STATECUT_ARGUMENT;
  statecut_cursor* made = nullptr;
  try {
    made = new statecut_cursor;
    made->database = db->database.get();
    made->pattern = text;
    const std::string_view two(state, state[0] == '\0' ? 0 : 2);
    made->place = db->database->cities(two, made->pattern).begin();
  } catch (const std::bad_alloc&) {
    delete made;
    return STATECUT_NO_MEMORY;
  }
  *cursor = made;
  return STATECUT_OK;
}

int32_t statecut_zips(const statecut_db* db, statecut_cursor** cursor) {
  if (db == nullptr || cursor == nullptr) return STATECUT_ARGUMENT;
  return begun(db, cursor, db->database->zips());
}

int32_t statecut_city_names(const statecut_db* db, statecut_cursor** cursor) {
  if (db == nullptr || cursor == nullptr) return STATECUT_ARGUMENT;
  return begun(db, cursor, db->database->cityNames());
}

int32_t statecut_streets(const statecut_db* db, statecut_cursor** cursor) {
  if (db == nullptr || cursor == nullptr) return STATECUT_ARGUMENT;
  return begun(db, cursor, db->database->streets());
}

int32_t statecut_firms(const statecut_db* db, statecut_cursor** cursor) {
  if (db == nullptr || cursor == nullptr) return STATECUT_ARGUMENT;
  return begun(db, cursor, db->database->firms());
}

size_t statecut_next_zips(statecut_cursor* cursor, statecut_zip* zips, size_t room) {
  if (cursor == nullptr || zips == nullptr) return 0;
  auto* at = std::get_if<0>(&cursor->place);
  if (at == nullptr) return 0;
  return advance(*at, room, [&](std::size_t i, const Zip& zip) {
    zips[i] = recordOf(*cursor->database, zip);
  });
}

size_t statecut_next_cities(statecut_cursor* cursor, statecut_city_name* cities, size_t room) {
  if (cursor == nullptr || cities == nullptr) return 0;
  const auto store = [&](std::size_t i, const CityName& city) { cities[i] = recordOf(city); };
  if (auto* all = std::get_if<1>(&cursor->place)) return advance(*all, room, store);
  auto* fitting = std::get_if<2>(&cursor->place);
  return fitting == nullptr ? 0 : advance(*fitting, room, store);
}

size_t statecut_next_names(statecut_cursor* cursor, statecut_name* names, size_t room) {
  if (cursor == nullptr || names == nullptr) return 0;
  auto* at = std::get_if<3>(&cursor->place);
  if (at == nullptr) return 0;
  return advance(*at, room,
                 [&](std::size_t i, const NamedKey& named) { names[i] = recordOf(named); });
}

void statecut_cursor_close(statecut_cursor* cursor) { delete cursor; }

}  // extern "C"
