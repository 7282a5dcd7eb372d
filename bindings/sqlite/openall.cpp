// statecut_open(ref, rng): all tables under their own names in `temp`.

#include <sys/stat.h>

#include "vtab.h"

SQLITE_EXTENSION_INIT3

namespace statecut::sql {

namespace {

// What changes when a file is replaced or written.
std::string stateOf(const std::string& path) {
  struct stat status {};
  if (path.empty() || ::stat(path.c_str(), &status) != 0) return path + '\n';
  std::string text = path;
  for (const auto number :
       {static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino),
        static_cast<std::int64_t>(status.st_size), static_cast<std::int64_t>(status.st_mtim.tv_sec),
        static_cast<std::int64_t>(status.st_mtim.tv_nsec)})
    text += ' ' + std::to_string(number);
  return text + '\n';
}

struct Freed {
  void operator()(char* text) const { sqlite3_free(text); }
};
using Text = std::unique_ptr<char, Freed>;

// A statement with the name of a table and of files; null without memory.
int execute(sqlite3* db, const Text& sql, std::string& error) {
  if (sql == nullptr) return SQLITE_NOMEM;
  char* message = nullptr;
  const int status = sqlite3_exec(db, sql.get(), nullptr, nullptr, &message);
  if (message != nullptr) error = message;
  sqlite3_free(message);
  return status;
}

// A table of this module from an earlier call makes room; anything else of that name stays.
int dropOurs(sqlite3* db, const char* name, std::string& error) {
  sqlite3_stmt* found = nullptr;
  int status = sqlite3_prepare_v2(db,
                                  "SELECT 1 FROM sqlite_temp_master WHERE name = ? AND "
                                  "sql LIKE 'CREATE VIRTUAL TABLE % USING statecut(%'",
                                  -1, &found, nullptr);
  if (status != SQLITE_OK) return status;
  sqlite3_bind_text(found, 1, name, -1, SQLITE_STATIC);
  const bool isOurs = sqlite3_step(found) == SQLITE_ROW;
  sqlite3_finalize(found);
  if (!isOurs) return SQLITE_OK;
  return execute(db, Text(sqlite3_mprintf("DROP TABLE temp.\"%w\"", name)), error);
}

int create(sqlite3* db, const char* name, const std::string& reference, const std::string& range,
           std::string& error) {
  const int status = dropOurs(db, name, error);
  if (status != SQLITE_OK) return status;
  Text sql(
      range.empty()
          ? sqlite3_mprintf("CREATE VIRTUAL TABLE temp.\"%w\" USING statecut(table=%s, ref=%Q)",
                            name, name, reference.c_str())
          : sqlite3_mprintf(
                "CREATE VIRTUAL TABLE temp.\"%w\" USING statecut(table=%s, ref=%Q, rng=%Q)", name,
                name, reference.c_str(), range.c_str()));
  return execute(db, sql, error);
}

std::string argument(int count, sqlite3_value** values, int at) {
  const auto* text =
      at < count ? reinterpret_cast<const char*>(sqlite3_value_text(values[at])) : nullptr;
  return text == nullptr ? "" : text;
}

void tell(sqlite3_context* context, int status, const std::string& text) {
  if (!text.empty()) sqlite3_result_error(context, text.c_str(), -1);
  sqlite3_result_error_code(context, status);
}

void openTables(sqlite3_context* context, int count, sqlite3_value** values) {
  sqlite3* const db = sqlite3_context_db_handle(context);
  const std::string reference = argument(count, values, 0);
  const std::string range = argument(count, values, 1);
  auto& sources = *static_cast<std::shared_ptr<Sources>*>(sqlite3_user_data(context));
  Error error;
  // All tables share this one; a file that can't be used is told of before any is made.
  const std::shared_ptr<Source> source = sources->open(reference, range, error);
  if (source == nullptr) return tell(context, statusOf(error), error.text);
  for (const Relation* relation : relations::all()) {
    std::string text;
    const int status = create(db, relation->name, reference, range, text);
    if (status != SQLITE_OK) return tell(context, status, text);
  }
  sqlite3_result_int64(context, static_cast<sqlite3_int64>(relations::all().size()));
}

}  // namespace

std::shared_ptr<Source> Sources::open(const std::string& reference, const std::string& range,
                                      Error& error) {
  const std::string key = stateOf(reference) + stateOf(range);
  if (auto held = open_[key].lock()) return held;
  auto made = Source::open(reference, range, error);
  std::erase_if(open_, [](const auto& one) { return one.second.expired(); });
  if (made != nullptr) open_[key] = made;
  return made;
}

void openAll(sqlite3_context* context, int count, sqlite3_value** values) {
  try {
    openTables(context, count, values);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

}  // namespace statecut::sql
