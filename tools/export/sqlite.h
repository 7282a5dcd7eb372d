#pragma once
// Relations as a SQLite database: with types, keys, indexes and a table `metadata`. The same files
// give the same bytes.

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "export/rows.h"

struct sqlite3;

namespace statecut::exporting {

class SqliteFile {
 public:
  // A path of an empty file; empty: in memory.
  explicit SqliteFile(const std::string& path);
  ~SqliteFile();
  SqliteFile(const SqliteFile&) = delete;
  SqliteFile& operator=(const SqliteFile&) = delete;

  // Each is false when it fails; error() tells why.
  bool begin(std::span<const Relation* const> relations);
  bool add(const Relation& relation, Source& source, Progress& progress);
  bool end(const Database& database);

  // The bytes of a database in memory; empty without memory for them.
  [[nodiscard]] std::string bytes() const;
  [[nodiscard]] const std::string& error() const { return error_; }

 private:
  struct Insertion;
  bool execute(const std::string& sql);
  bool failed();
  bool insert(Insertion& insertion, const Relation& relation, relations::Cursor& cursor);
  bool createIndexes(const Relation& relation);
  bool describe(const std::string& key, const std::string& value);

  sqlite3* db_ = nullptr;
  std::span<const Relation* const> relations_;
  std::string error_;
};

}  // namespace statecut::exporting
