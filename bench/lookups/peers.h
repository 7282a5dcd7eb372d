#pragma once
// The other tools, each with one table from names to numbers.

#include <cdb.h>
#include <lmdb.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>
#include <unordered_map>

#include "lookups/names.h"

namespace statecut::bench {

// Each is built of all names, finds the number of one or kNoNumber, and throws when it fails.

class MapPeer {
 public:
  explicit MapPeer(const Names& names) : map_(names.all.begin(), names.all.end()) {}
  std::uint32_t find(const std::string& name) const {
    const auto found = map_.find(name);
    return found == map_.end() ? kNoNumber : found->second;
  }

 private:
  std::unordered_map<std::string, std::uint32_t> map_;
};

// A constant database, mapped.
class CdbPeer {
 public:
  CdbPeer(const Names& names, const std::filesystem::path& file);
  ~CdbPeer();
  CdbPeer(const CdbPeer&) = delete;
  CdbPeer& operator=(const CdbPeer&) = delete;
  std::uint32_t find(const std::string& name);

 private:
  int descriptor_;
  cdb cdb_{};
};

// Mapped as well; one read transaction for all lookups.
class LmdbPeer {
 public:
  LmdbPeer(const Names& names, const std::filesystem::path& file);
  ~LmdbPeer();
  LmdbPeer(const LmdbPeer&) = delete;
  LmdbPeer& operator=(const LmdbPeer&) = delete;
  std::uint32_t find(const std::string& name);

 private:
  MDB_env* env_ = nullptr;
  MDB_txn* read_ = nullptr;
  MDB_dbi table_ = 0;
};

// One prepared statement in one transaction, of a file or (":memory:") in memory.
class SqlitePeer {
 public:
  SqlitePeer(const Names& names, const std::string& file);
  ~SqlitePeer();
  SqlitePeer(const SqlitePeer&) = delete;
  SqlitePeer& operator=(const SqlitePeer&) = delete;
  std::uint32_t find(const std::string& name);

  static constexpr const char* kFind = "SELECT number FROM names WHERE name = ?1";
  // Writes a database file of the names.
  static void build(const Names& names, const std::string& file);

 private:
  sqlite3* db_ = nullptr;
  sqlite3_stmt* find_ = nullptr;
};

}  // namespace statecut::bench
