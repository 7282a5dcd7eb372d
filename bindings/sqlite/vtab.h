#pragma once
// The parts of the SQLite module: a virtual table is a relation of a source.

#include <sqlite3ext.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "relations/relation.h"
#include "relations/source.h"

namespace statecut::sql {

using relations::Relation;
using relations::Source;
using relations::Wanted;

// The sources of a connection: tables of the same files share one, which is read once.
class Sources {
 public:
  std::shared_ptr<Source> open(const std::string& reference, const std::string& range,
                               Error& error);

 private:
  std::map<std::string, std::weak_ptr<Source>> open_;  // by names and state of the files
};

struct Table {
  sqlite3_vtab base{};  // first: SQLite knows the table by it
  const Relation* relation = nullptr;
  std::shared_ptr<Source> source;
};

struct Rows {
  sqlite3_vtab_cursor base{};  // first, too
  std::unique_ptr<relations::Cursor> cursor;
  bool isAtEnd = true;
  std::vector<std::string> texts;  // what the cursor was started with
};

int statusOf(const Error& error);

// Which rows a query wants, in the numbers that xBestIndex gives and xFilter gets: 0 all, else a
// path and whether its range has a lower and an upper bound.
inline constexpr int kPathMask = 0xFF, kLowerBound = 0x100, kUpperBound = 0x200;
int bestIndex(const Table& table, sqlite3_index_info& info);
// Starts the cursor with the values of the constraints; false: no row fits.
bool startRows(const Table& table, Rows& rows, int plan, std::span<sqlite3_value*> values);

// statecut_open(ref, rng)
void openAll(sqlite3_context* context, int count, sqlite3_value** values);

}  // namespace statecut::sql
