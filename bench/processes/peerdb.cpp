#include "processes/peerdb.h"

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>
#include <string_view>

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

void need(bool good, const char* what) {
  if (!good) throw std::runtime_error(std::string(what) + " failed");
}

struct Database {
  sqlite3* db = nullptr;
  explicit Database(const std::string& file) {
    std::filesystem::remove(file);
    need(sqlite3_open(file.c_str(), &db) == SQLITE_OK, "sqlite3_open");
  }
  ~Database() { sqlite3_close(db); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  void execute(const char* sql) const {
    need(sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
  }
};

// An insertion that is made again and again; add() takes the values in their order.
class Insertion {
 public:
  Insertion(const Database& to, const char* sql) {
    need(sqlite3_prepare_v2(to.db, sql, -1, &statement_, nullptr) == SQLITE_OK, sql);
  }
  ~Insertion() { sqlite3_finalize(statement_); }
  Insertion(const Insertion&) = delete;
  Insertion& operator=(const Insertion&) = delete;

  template <typename... Values>
  void add(const Values&... values) {
    int at = 0;
    (bind(++at, values), ...);
    need(sqlite3_step(statement_) == SQLITE_DONE, "an insertion");
    sqlite3_reset(statement_);
  }

 private:
  void bind(int at, std::uint32_t number) { sqlite3_bind_int64(statement_, at, number); }
  void bind(int at, std::string_view text) {
    sqlite3_bind_text(statement_, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }
  template <std::size_t N>
  void bind(int at, const Row<N>& record) {
    sqlite3_bind_blob(statement_, at, record.bytes.data(), N, SQLITE_STATIC);
  }

  sqlite3_stmt* statement_ = nullptr;
};

std::string_view text(const unsigned char* from, std::size_t length) {
  return {reinterpret_cast<const char*>(from), length};
}

void addZips(const Database& to, const R& ref) {
  Insertion zips(to, "INSERT INTO zips VALUES(?1, ?2, ?3)");
  Insertion cities(to, "INSERT INTO zip_cities VALUES(?1, ?2, ?3)");
  for (std::uint32_t key = 1; key < ref.get(R::zipDataCount); ++key) {
    const ZipDataRow& record = *dbGetZipDataFromKey(static_cast<std::int32_t>(key));
    zips.add(record.get(ZipDataRow::zip), key, record);
    const KeyRow* keys = dbGetCityKeysPtr(&record);
    for (std::uint32_t i = 0; keys != nullptr && i < record.get(ZipDataRow::cityKeysCount); ++i)
      cities.add(key, i, std::uint32_t{keys[i].get(KeyRow::key)});
  }
}

void addCities(const Database& to, const R& ref) {
  Insertion cities(to, "INSERT INTO cities VALUES(?1, ?2)");
  for (std::uint32_t key = 1; key < ref.get(R::cityDataCount); ++key)
    cities.add(key, *dbGetCityData(static_cast<std::int32_t>(key)));
  Insertion names(to, "INSERT INTO city_names VALUES(?1, ?2, ?3, ?4)");
  for (std::uint32_t number = 1; number < ref.get(R::cityNamesCount); ++number) {
    const CityNameRow& record = *dbGetCityName(&number);
    names.add(number, text(record.get(CityNameRow::state).data(), CityNameRow::state.width),
              text(record.get(CityNameRow::name).data(), record.get(CityNameRow::nameLength)),
              record);
  }
}

void addPacked(const Database& to, const char* sql, SlotNumber slot, std::uint32_t bytes) {
  Insertion names(to, sql);
  const unsigned char* table = refPointers[slot].table;
  for (std::uint32_t at = 0; at < bytes; at += 1 + std::uint32_t{table[at]})
    names.add(at, text(table + at + 1, table[at]));
}

}  // namespace

void writePeerDb(Session& session, const std::string& file) {
  const R& ref = session.ref();
  const Database to(file);
  to.execute(kSchema);
  addZips(to, ref);
  addCities(to, ref);
  addPacked(to, "INSERT INTO streets VALUES(?1, ?2)", kSlotStreetNames,
            ref.get(R::streetNamesBytes));
  addPacked(to, "INSERT INTO firms VALUES(?1, ?2)", kSlotFirms, ref.get(R::firmsBytes));
  to.execute(kIndexes);
}

}  // namespace statecut::bench
