#pragma once
// The rows of relations as lines of text, and what passes over them.

#include <string>

#include "relations/relation.h"
#include "relations/source.h"

namespace statecut::exporting {

using relations::Relation;
using relations::Source;
using relations::Value;

// Tells on a terminal, now and then, how far an export is.
class Progress {
 public:
  explicit Progress(bool isShown) : isShown_(isShown) {}
  ~Progress() { clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void row(const char* relation, std::uint64_t rows, std::uint64_t of);
  void clear();

 private:
  bool isShown_;
  bool isDrawn_ = false;
  std::int64_t next_ = 0;  // milliseconds of the clock
};

// Calls take(cursor) for each row until it gives false. Counts them; false at a fault, which
// `error` tells of, and when `take` gave false.
template <typename Take>
bool forEachRow(const Relation& relation, Source& source, Progress& progress, std::uint64_t& rows,
                std::string& error, Take take) {
  const auto cursor = relation.open(source);
  const std::uint64_t of = relation.rows(source);
  cursor->startAll();
  for (rows = 0; cursor->next(); ++rows) {
    if (!take(*cursor)) break;
    progress.row(relation.name, rows, of);
  }
  if (cursor->fault() == nullptr) return true;
  error = cursor->fault()->text;
  return false;
}

// The values of a row behind each other. False for a fault.
bool appendCsv(std::string& line, const Relation& relation, relations::Cursor& cursor);
bool appendJson(std::string& line, const Relation& relation, relations::Cursor& cursor);
void appendCsvHeader(std::string& line, const Relation& relation);

}  // namespace statecut::exporting
