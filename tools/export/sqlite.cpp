#include "export/sqlite.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>

#include "format/latin1.h"

namespace statecut::exporting {

namespace {

using relations::Column;
using relations::Type;
using Kind = Value::Kind;

// Nothing that depends on the time or on memory gets into the file. It has its name when it is
// whole, so that a journal would guard nothing.
constexpr char kSettings[] =
    "PRAGMA page_size=4096; PRAGMA encoding='UTF-8'; PRAGMA auto_vacuum=NONE;"
    "PRAGMA secure_delete=ON; PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;"
    "PRAGMA locking_mode=EXCLUSIVE; PRAGMA temp_store=MEMORY; PRAGMA user_version=1; BEGIN;"
    "CREATE TABLE \"metadata\" (\"key\" TEXT PRIMARY KEY NOT NULL, \"value\" TEXT NOT NULL)"
    " WITHOUT ROWID;";

std::string quoted(const std::string& name) { return '"' + name + '"'; }

const char* typeName(Type type) {
  switch (type) {
    case Type::kInteger:
      return " INTEGER";
    case Type::kText:
      return " TEXT";
    case Type::kBlob:
      return " BLOB";
    case Type::kAny:
      break;
  }
  return "";
}

std::string listOf(const Relation& relation, relations::Columns columns) {
  std::string list;
  for (const int column : columns)
    list += (list.empty() ? "" : ", ") +
            quoted(relation.columns[static_cast<std::size_t>(column)].name);
  return list;
}

std::string indexName(const Relation& relation, relations::Columns columns) {
  std::string name = relation.name;
  for (const int column : columns)
    name += std::string("_") + relation.columns[static_cast<std::size_t>(column)].name;
  return name;
}

// Where a text is the key, and rows are small, it is the only tree of the table.
bool isKeyed(const Relation& relation) {
  const bool isSmall =
      std::none_of(relation.columns.begin(), relation.columns.end(),
                   [](const Column& column) { return column.type == Type::kBlob; });
  const bool isText =
      std::any_of(relation.primaryKey.begin(), relation.primaryKey.end(), [&](int column) {
        return relation.columns[static_cast<std::size_t>(column)].type == Type::kText;
      });
  return isSmall && isText;
}

std::string definition(const Relation& relation, std::span<const Relation* const> there) {
  std::string sql = "CREATE TABLE " + quoted(relation.name) + " (";
  for (const Column& column : relation.columns)
    sql += (&column == relation.columns.data() ? "" : ", ") + quoted(column.name) +
           typeName(column.type) + (column.nullable ? "" : " NOT NULL");
  if (!relation.primaryKey.empty())
    sql += ", PRIMARY KEY (" + listOf(relation, relation.primaryKey) + ")";
  for (const Column& column : relation.columns) {
    const bool isThere =
        column.refersTo != nullptr && std::any_of(there.begin(), there.end(), [&](auto* other) {
          return std::string_view(other->name) == column.refersTo;
        });
    if (isThere)
      sql += ", FOREIGN KEY (" + quoted(column.name) + ") REFERENCES " + quoted(column.refersTo) +
             " (" + quoted(column.refersToColumn) + ")";
  }
  return sql + (isKeyed(relation) ? ") WITHOUT ROWID" : ")");
}

}  // namespace

struct SqliteFile::Insertion {
  ~Insertion() { sqlite3_finalize(statement); }
  sqlite3_stmt* statement = nullptr;
};

SqliteFile::SqliteFile(const std::string& path) {
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  if (sqlite3_open_v2(path.empty() ? ":memory:" : path.c_str(), &db_, flags, nullptr) != SQLITE_OK)
    failed();
}

SqliteFile::~SqliteFile() { sqlite3_close(db_); }

bool SqliteFile::failed() {
  if (error_.empty()) error_ = sqlite3_errmsg(db_);
  return false;
}

bool SqliteFile::execute(const std::string& sql) {
  if (!error_.empty()) return false;
  return sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK || failed();
}

bool SqliteFile::begin(std::span<const Relation* const> relations) {
  relations_ = relations;
  if (!execute(kSettings)) return false;
  return std::all_of(relations.begin(), relations.end(), [&](const Relation* relation) {
    return execute(definition(*relation, relations));
  });
}

bool SqliteFile::insert(Insertion& insertion, const Relation& relation, relations::Cursor& cursor) {
  sqlite3_stmt* const to = insertion.statement;
  for (std::size_t i = 0; i < relation.columns.size(); ++i) {
    const Value value = cursor.value(i);
    const int at = static_cast<int>(i) + 1;
    int status = SQLITE_OK;
    switch (value.kind) {
      case Kind::kNull:
        status = sqlite3_bind_null(to, at);
        break;
      case Kind::kInteger:
        status = sqlite3_bind_int64(to, at, static_cast<sqlite3_int64>(value.number));
        break;
      case Kind::kZip: {
        const auto digits = relations::digitsOf(value.number);
        status = sqlite3_bind_text(to, at, digits.data(), 5, SQLITE_TRANSIENT);
        break;
      }
      case Kind::kText: {
        const std::string text = format::utf8Of(value.bytes);
        status =
            sqlite3_bind_text64(to, at, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        break;
      }
      case Kind::kBlob:
      case Kind::kRead:
        // Without bytes a blob must still be one.
        status = value.bytes.empty() ? sqlite3_bind_zeroblob(to, at, 0)
                                     : sqlite3_bind_blob64(to, at, value.bytes.data(),
                                                           value.bytes.size(), SQLITE_STATIC);
        break;
      case Kind::kFault:
        error_ = cursor.fault()->text;
        return false;
    }
    if (status != SQLITE_OK) return failed();
  }
  if (sqlite3_step(to) != SQLITE_DONE) return failed();
  sqlite3_reset(to);
  return true;
}

bool SqliteFile::add(const Relation& relation, Source& source, Progress& progress) {
  std::string sql = "INSERT INTO " + quoted(relation.name) + " VALUES (?";
  for (std::size_t i = 1; i < relation.columns.size(); ++i) sql += ",?";
  sql += ')';
  Insertion insertion;
  if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &insertion.statement, nullptr) != SQLITE_OK)
    return failed();
  std::uint64_t rows = 0;
  std::string fault;
  const bool good =
      forEachRow(relation, source, progress, rows, fault,
                 [&](relations::Cursor& cursor) { return insert(insertion, relation, cursor); });
  if (!good && error_.empty()) error_ = fault;
  return error_.empty() && createIndexes(relation) &&
         describe(std::string("rows of ") + relation.name, std::to_string(rows));
}

bool SqliteFile::createIndexes(const Relation& relation) {
  return std::all_of(relation.indexes.begin(), relation.indexes.end(), [&](auto columns) {
    return execute("CREATE INDEX " + quoted(indexName(relation, columns)) + " ON " +
                   quoted(relation.name) + " (" + listOf(relation, columns) + ")");
  });
}

bool SqliteFile::describe(const std::string& key, const std::string& value) {
  Insertion insertion;
  const bool good =
      sqlite3_prepare_v2(db_, "INSERT INTO \"metadata\" VALUES (?, ?)", -1, &insertion.statement,
                         nullptr) == SQLITE_OK &&
      sqlite3_bind_text(insertion.statement, 1, key.c_str(), -1, SQLITE_TRANSIENT) == SQLITE_OK &&
      sqlite3_bind_text(insertion.statement, 2, value.c_str(), -1, SQLITE_TRANSIENT) == SQLITE_OK &&
      sqlite3_step(insertion.statement) == SQLITE_DONE;
  return good || failed();
}

bool SqliteFile::end(const Database& database) {
  const auto name = [](const std::string& path) {
    return std::filesystem::path(path).filename().string();
  };
  const auto text = [](std::string_view bytes) { return format::utf8Of(bytes); };
  bool good = describe("program", "statedb (statecut) " STATEDB_VERSION) &&
              describe("reference file", name(database.referenceFile())) &&
              describe("version", text(database.version())) &&
              describe("copyright", text(database.copyright())) &&
              describe("build stamp", std::to_string(database.buildTime())) &&
              describe("state cut", database.isCut() ? "1" : "0");
  if (good && database.isCut())
    good = describe("cut stamp", std::to_string(database.cutTime().value_or(0)));
  if (good && database.rangeRecord() != nullptr)
    good = describe("range file", name(database.rangeFile()));
  return good && execute("COMMIT");
}

std::string SqliteFile::bytes() const {
  sqlite3_int64 size = 0;
  unsigned char* const bytes = sqlite3_serialize(db_, "main", &size, 0);
  if (bytes == nullptr) return "";
  std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
  sqlite3_free(bytes);
  return text;
}

}  // namespace statecut::exporting
