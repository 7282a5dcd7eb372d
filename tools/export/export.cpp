#include "export/export.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "export/output.h"
#include "export/rows.h"
#include "export/sqlite.h"

namespace statecut::exporting {

namespace {

namespace fs = std::filesystem;

constexpr int kWritten = 0, kFailed = 1, kCannotRun = 2;

struct File {
  std::string name;  // for people
  Output output;
  std::uint64_t rows = 0;
};

class Export {
 public:
  Export(const Options& options, std::ostream& out, std::ostream& err)
      : options_(options), out_(out), err_(err), progress_(::isatty(STDERR_FILENO) == 1) {}

  int run() {
    if (!choose()) return kCannotRun;
    Error error;
    source_ = Source::open(options_.ref, options_.rng, error);
    if (source_ == nullptr) return fail(error.text, kCannotRun);
    for (const std::string& input : {options_.ref, options_.rng}) {
      std::error_code ignored;
      if (!input.empty() && fs::equivalent(input, options_.out, ignored))
        return fail(options_.out + " is an input", kCannotRun);
    }
    const bool good = options_.format == Format::Sqlite ? writeSqlite() : writeLines();
    progress_.clear();
    if (!good) {
      files_.clear();  // what they hold stands in the folder
      if (madeFolder_) (void)::rmdir(options_.out.c_str());
      return kFailed;
    }
    if (options_.out != "-") summarize();
    return kWritten;
  }

 private:
  int fail(const std::string& what, int status) {
    progress_.clear();
    err_ << "statedb export: " << what << '\n';
    return status;
  }
  bool failed(const std::string& what) { return fail(what, kFailed) == kWritten; }

  // A relation that is named twice counts once; they keep their own order.
  bool choose() {
    std::vector<const Relation*> named;
    for (const std::string& table : options_.tables) {
      const Relation* relation = relations::find(table);
      if (relation == nullptr && table != "all") return failed("no such table: " + table);
      for (const Relation* one : relations::all())
        if (table == "all" || one == relation) named.push_back(one);
    }
    for (const Relation* one : relations::all())
      if (std::find(named.begin(), named.end(), one) != named.end()) chosen_.push_back(one);
    isFolder_ = options_.format != Format::Sqlite && chosen_.size() > 1;
    if (isFolder_ && options_.out == "-")
      return failed("several tables make several files: name a folder, not -");
    return true;
  }

  bool open(const std::string& path) {
    std::string error;
    files_.push_back({path, Output::open(path, error)});
    return error.empty() || failed(error);
  }

  // All files are on the disk before the first gets its name.
  bool writeLines() {
    if (isFolder_ && !makeFolder()) return false;
    for (const Relation* relation : chosen_)
      if (!writeTable(*relation)) return false;
    for (File& file : files_)
      if (!file.output.publish()) return failed(file.output.error());
    return true;
  }

  bool makeFolder() {
    std::error_code code;
    madeFolder_ = fs::create_directory(options_.out, code);
    if (madeFolder_ || fs::is_directory(options_.out)) return true;
    return failed(options_.out + ": " + (code ? code.message() : "not a folder"));
  }

  bool writeTable(const Relation& relation) {
    const bool isCsv = options_.format == Format::Csv;
    if (!open(isFolder_ ? options_.out + "/" + relation.name + (isCsv ? ".csv" : ".ndjson")
                        : options_.out))
      return false;
    File& file = files_.back();
    std::string line, fault;
    if (isCsv) appendCsvHeader(line, relation);
    file.output.write(line);
    bool isSound = true;
    const bool good =
        forEachRow(relation, *source_, progress_, file.rows, fault, [&](relations::Cursor& cursor) {
          line.clear();
          isSound = isCsv ? appendCsv(line, relation, cursor) : appendJson(line, relation, cursor);
          return isSound && file.output.write(line);
        });
    if (!good || !isSound) return failed(fault);
    return file.output.finish() || failed(file.output.error());
  }

  bool writeSqlite() {
    if (!open(options_.out)) return false;
    File& file = files_.back();
    SqliteFile sqlite(file.output.partPath());
    bool good = sqlite.begin(chosen_);
    for (const Relation* relation : chosen_)
      good = good && sqlite.add(*relation, *source_, progress_);
    if (!good || !sqlite.end(source_->database()))
      return failed(options_.out + ": " + sqlite.error());
    if (file.output.partPath().empty()) file.output.write(sqlite.bytes());
    struct stat status {};
    if (::stat(file.output.partPath().c_str(), &status) == 0)
      file.output.setBytes(static_cast<std::uint64_t>(status.st_size));
    return (file.output.finish() && file.output.publish()) || failed(file.output.error());
  }

  void summarize() {
    for (const File& file : files_) {
      out_ << file.name << ": " << file.output.bytes() << " bytes";
      if (options_.format != Format::Sqlite) out_ << ", " << file.rows << " rows";
      out_ << '\n';
    }
  }

  const Options& options_;
  std::ostream& out_;
  std::ostream& err_;
  Progress progress_;
  std::shared_ptr<Source> source_;
  std::vector<const Relation*> chosen_;
  std::vector<File> files_;
  bool isFolder_ = false;
  bool madeFolder_ = false;
};

}  // namespace

int run(const Options& options, std::ostream& out, std::ostream& err) {
  return Export(options, out, err).run();
}

}  // namespace statecut::exporting
