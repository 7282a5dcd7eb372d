#include "processes/peerdb.h"

#include <filesystem>

#include "measure/sqlite.h"
#include "tables/refpointers.h"

namespace statecut::bench {

namespace {

using R = RefControlRec;

constexpr char kSchema[] =
    "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN;"
    "CREATE TABLE zips(zip INTEGER PRIMARY KEY, key INTEGER, record BLOB);"
    "CREATE TABLE zip_cities(zip_key INTEGER, place INTEGER, city INTEGER,"
    " PRIMARY KEY(zip_key, place)) WITHOUT ROWID;"
    "CREATE TABLE cities(key INTEGER PRIMARY KEY, record BLOB);"
    "CREATE TABLE city_names(number INTEGER PRIMARY KEY, state TEXT, name TEXT, record BLOB);"
    "CREATE TABLE streets(number INTEGER PRIMARY KEY, name TEXT);"
    "CREATE TABLE firms(number INTEGER PRIMARY KEY, name TEXT);";
constexpr char kIndexes[] =
    "CREATE INDEX city_by_name ON city_names(state, name);"
    "CREATE INDEX street_by_name ON streets(name); CREATE INDEX firm_by_name ON firms(name);"
    "COMMIT; ANALYZE;";

struct Database {
  sqlite3* db = nullptr;
  explicit Database(const std::string& file) {
    std::filesystem::remove(file);
    need(sqlite3_open(file.c_str(), &db) == SQLITE_OK, "sqlite3_open");
  }
  ~Database() { sqlite3_close(db); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
};

std::string_view text(const unsigned char* from, std::size_t length) {
  return {reinterpret_cast<const char*>(from), length};
}

void addZips(sqlite3* to, const R& ref) {
  Insertion zips(to, "INSERT INTO zips VALUES(?1, ?2, ?3)");
  Insertion cities(to, "INSERT INTO zip_cities VALUES(?1, ?2, ?3)");
  for (std::uint32_t key = 1; key < ref.get(R::zipDataCount); ++key) {
    const ZipDataRow& record = *dbGetZipDataFromKey(static_cast<std::int32_t>(key));
    zips.add(record.get(ZipDataRow::zip), key, record.bytes);
    const KeyRow* keys = dbGetCityKeysPtr(&record);
    for (std::uint32_t i = 0; keys != nullptr && i < record.get(ZipDataRow::cityKeysCount); ++i)
      cities.add(key, i, std::uint32_t{keys[i].get(KeyRow::key)});
  }
}

void addCities(sqlite3* to, const R& ref) {
  Insertion cities(to, "INSERT INTO cities VALUES(?1, ?2)");
  for (std::uint32_t key = 1; key < ref.get(R::cityDataCount); ++key)
    cities.add(key, dbGetCityData(static_cast<std::int32_t>(key))->bytes);
  Insertion names(to, "INSERT INTO city_names VALUES(?1, ?2, ?3, ?4)");
  for (std::uint32_t number = 1; number < ref.get(R::cityNamesCount); ++number) {
    const CityNameRow& record = *dbGetCityName(&number);
    names.add(number, text(record.get(CityNameRow::state).data(), CityNameRow::state.width),
              text(record.get(CityNameRow::name).data(), record.get(CityNameRow::nameLength)),
              record.bytes);
  }
}

void addPacked(sqlite3* to, const char* sql, SlotNumber slot, std::uint32_t bytes) {
  Insertion names(to, sql);
  const unsigned char* table = refPointers[slot].table;
  for (std::uint32_t at = 0; at < bytes; at += 1 + std::uint32_t{table[at]})
    names.add(at, text(table + at + 1, table[at]));
}

}  // namespace

void writePeerDb(Session& session, const std::string& file) {
  const R& ref = session.ref();
  const Database database(file);
  sqlite3* const to = database.db;
  execute(to, kSchema);
  addZips(to, ref);
  addCities(to, ref);
  addPacked(to, "INSERT INTO streets VALUES(?1, ?2)", kSlotStreetNames,
            ref.get(R::streetNamesBytes));
  addPacked(to, "INSERT INTO firms VALUES(?1, ?2)", kSlotFirms, ref.get(R::firmsBytes));
  execute(to, kIndexes);
}

}  // namespace statecut::bench
