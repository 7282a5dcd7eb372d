#include "lookups/peers.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "measure/sqlite.h"

namespace statecut::bench {

namespace {

std::uint32_t number(const void* from) {
  std::uint32_t value = 0;
  std::memcpy(&value, from, sizeof value);
  return value;
}

int openFile(const std::filesystem::path& file, int flags) {
  const int descriptor = ::open(file.c_str(), flags | O_CLOEXEC, 0644);
  need(descriptor != -1, file.c_str());
  return descriptor;
}

void bindName(sqlite3_stmt* statement, const std::string& name) {
  sqlite3_bind_text(statement, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
}

void fill(sqlite3* db, const Names& names) {
  execute(db, "BEGIN; CREATE TABLE names(name TEXT PRIMARY KEY, number INTEGER) WITHOUT ROWID");
  Insertion insertion(db, "INSERT INTO names VALUES(?1, ?2)");
  for (const auto& [name, value] : names.all) insertion.add(name, value);
  execute(db, "COMMIT");
}

}  // namespace

CdbPeer::CdbPeer(const Names& names, const std::filesystem::path& file)
    : descriptor_(openFile(file, O_RDWR | O_CREAT | O_TRUNC)) {
  cdb_make make{};
  need(cdb_make_start(&make, descriptor_) == 0, "cdb_make_start");
  for (const auto& [name, value] : names.all)
    need(cdb_make_add(&make, name.data(), static_cast<unsigned>(name.size()), &value,
                      sizeof value) == 0,
         "cdb_make_add");
  need(cdb_make_finish(&make) == 0, "cdb_make_finish");
  need(cdb_init(&cdb_, descriptor_) == 0, "cdb_init");
}

CdbPeer::~CdbPeer() {
  cdb_free(&cdb_);
  ::close(descriptor_);
}

std::uint32_t CdbPeer::find(const std::string& name) {
  if (cdb_find(&cdb_, name.data(), static_cast<unsigned>(name.size())) <= 0) return kNoNumber;
  return number(cdb_getdata(&cdb_));
}

LmdbPeer::LmdbPeer(const Names& names, const std::filesystem::path& file) {
  std::filesystem::remove(file);
  constexpr std::size_t kMapBytes = std::size_t{64} << 20;
  need(mdb_env_create(&env_) == 0 && mdb_env_set_mapsize(env_, kMapBytes) == 0 &&
           mdb_env_open(env_, file.c_str(), MDB_NOSUBDIR | MDB_NOSYNC | MDB_NOLOCK, 0644) == 0,
       "opening LMDB");
  MDB_txn* write = nullptr;
  need(
      mdb_txn_begin(env_, nullptr, 0, &write) == 0 && mdb_dbi_open(write, nullptr, 0, &table_) == 0,
      "an LMDB transaction");
  for (const auto& [name, value] : names.all) {
    MDB_val key{name.size(), const_cast<char*>(name.data())};
    MDB_val data{sizeof value, const_cast<std::uint32_t*>(&value)};
    need(mdb_put(write, table_, &key, &data, 0) == 0, "mdb_put");
  }
  need(mdb_txn_commit(write) == 0, "mdb_txn_commit");
  need(mdb_txn_begin(env_, nullptr, MDB_RDONLY, &read_) == 0, "an LMDB read transaction");
}

LmdbPeer::~LmdbPeer() {
  mdb_txn_abort(read_);
  mdb_env_close(env_);
}

std::uint32_t LmdbPeer::find(const std::string& name) {
  MDB_val key{name.size(), const_cast<char*>(name.data())};
  MDB_val data{};
  return mdb_get(read_, table_, &key, &data) == 0 ? number(data.mv_data) : kNoNumber;
}

void SqlitePeer::build(const Names& names, const std::string& file) {
  std::filesystem::remove(file);
  sqlite3* db = nullptr;
  need(sqlite3_open(file.c_str(), &db) == SQLITE_OK, "sqlite3_open");
  fill(db, names);
  sqlite3_close(db);
}

SqlitePeer::SqlitePeer(const Names& names, const std::string& file) {
  const bool inMemory = file == ":memory:";
  if (!inMemory) build(names, file);
  const int flags = SQLITE_OPEN_NOMUTEX |
                    (inMemory ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY);
  need(sqlite3_open_v2(file.c_str(), &db_, flags, nullptr) == SQLITE_OK, "sqlite3_open_v2");
  if (inMemory) fill(db_, names);
  execute(db_, "BEGIN");
  need(sqlite3_prepare_v3(db_, kFind, -1, SQLITE_PREPARE_PERSISTENT, &find_, nullptr) == SQLITE_OK,
       kFind);
}

SqlitePeer::~SqlitePeer() {
  sqlite3_finalize(find_);
  sqlite3_close(db_);
}

std::uint32_t SqlitePeer::find(const std::string& name) {
  bindName(find_, name);
  const std::uint32_t found = sqlite3_step(find_) == SQLITE_ROW
                                  ? static_cast<std::uint32_t>(sqlite3_column_int64(find_, 0))
                                  : kNoNumber;
  sqlite3_reset(find_);
  return found;
}

}  // namespace statecut::bench
