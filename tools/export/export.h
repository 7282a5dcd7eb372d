#pragma once
// A database as files of other programs: CSV, JSON lines, a SQLite database.

#include <iosfwd>
#include <string>
#include <vector>

namespace statecut::exporting {

enum class Format { Csv, Ndjson, Sqlite };

struct Options {
  std::string ref;
  std::string rng;                  // empty: the contents of partitions are not known
  std::vector<std::string> tables;  // names of relations, or "all"
  Format format = Format::Csv;
  std::string out;  // a file, or the folder of several; "-": standard output
};

// 0 written, 1 a file can't be written or a record is damaged, 2 can't run.
int run(const Options& options, std::ostream& out, std::ostream& err);

}  // namespace statecut::exporting
