// The module `statecut` and its entry point.

#include <cstring>
#include <new>
#include <string_view>

#include "format/latin1.h"
#include "vtab.h"

SQLITE_EXTENSION_INIT1

namespace statecut::sql {

namespace {

using relations::Column;
using relations::Type;
using relations::Value;
using Shared = std::shared_ptr<Sources>;

// Before this one SQLite can't be told to keep a table from schemas of others.
constexpr int kLeastVersion = 3031000;

Table& tableOf(sqlite3_vtab* base) { return *reinterpret_cast<Table*>(base); }
Rows& rowsOf(sqlite3_vtab_cursor* base) { return *reinterpret_cast<Rows*>(base); }

// SQLite is C: nothing is thrown through it.
template <typename Call>
int guarded(Call call) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return SQLITE_NOMEM;
  }
}

int failed(char** message, const std::string& text, int status) {
  sqlite3_free(*message);
  *message = sqlite3_mprintf("%s", text.c_str());
  return *message == nullptr ? SQLITE_NOMEM : status;
}

struct Arguments {
  std::string table, reference, range;
};

// 'it''s' and "it" without their quotes.
std::string unquoted(std::string_view text) {
  if (text.size() < 2 || (text.front() != '\'' && text.front() != '"') ||
      text.back() != text.front())
    return std::string(text);
  const char quote = text.front();
  std::string held;
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    held += text[i];
    if (text[i] == quote) ++i;
  }
  return held;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kSpaces = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kSpaces);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpaces) - first + 1);
}

// What is wrong with it, "" when nothing is.
std::string parse(int count, const char* const* words, Arguments& arguments) {
  for (int i = 3; i < count; ++i) {
    const std::string_view word = words[i];
    const std::size_t equals = word.find('=');
    const std::string_view name = trimmed(word.substr(0, equals));
    std::string* const to = name == "table" ? &arguments.table
                            : name == "ref" ? &arguments.reference
                            : name == "rng" ? &arguments.range
                                            : nullptr;
    if (to == nullptr || equals == std::string_view::npos)
      return "statecut: table=, ref= and rng= are the arguments, not " + std::string(word);
    *to = unquoted(trimmed(word.substr(equals + 1)));
  }
  if (arguments.reference.empty()) return "statecut: ref= is missing";
  if (relations::find(arguments.table) == nullptr)
    return "statecut: no such table: \"" + arguments.table + '"';
  return "";
}

std::string declaration(const Relation& relation) {
  std::string sql = "CREATE TABLE x(";
  for (const Column& column : relation.columns) {
    if (&column != relation.columns.data()) sql += ", ";
    sql += std::string(1, '"') + column.name + '"';
    if (column.type == Type::kInteger) sql += " INTEGER";
    if (column.type == Type::kText) sql += " TEXT";
    if (column.type == Type::kBlob) sql += " BLOB";
  }
  return sql + ")";
}

int connect(sqlite3* db, void* shared, int count, const char* const* words, sqlite3_vtab** made,
            char** message) {
  return guarded([&] {
    Arguments arguments;
    const std::string wrong = parse(count, words, arguments);
    if (!wrong.empty()) return failed(message, wrong, SQLITE_ERROR);
    auto table = std::make_unique<Table>();
    table->relation = relations::find(arguments.table);
    Error error;
    table->source =
        (*static_cast<Shared*>(shared))->open(arguments.reference, arguments.range, error);
    if (table->source == nullptr) return failed(message, error.text, statusOf(error));
    int status = sqlite3_declare_vtab(db, declaration(*table->relation).c_str());
    if (status == SQLITE_OK) status = sqlite3_vtab_config(db, SQLITE_VTAB_DIRECTONLY);
    if (status == SQLITE_OK) *made = &table.release()->base;
    return status;
  });
}

// Another function than connect: there is no table of the module's own name.
int create(sqlite3* db, void* shared, int count, const char* const* words, sqlite3_vtab** made,
           char** message) {
  return connect(db, shared, count, words, made, message);
}

int disconnect(sqlite3_vtab* base) {
  delete &tableOf(base);
  return SQLITE_OK;
}

int chooseIndex(sqlite3_vtab* base, sqlite3_index_info* info) {
  return guarded([&] { return bestIndex(tableOf(base), *info); });
}

int openCursor(sqlite3_vtab* base, sqlite3_vtab_cursor** made) {
  return guarded([&] {
    auto rows = std::make_unique<Rows>();
    const Table& table = tableOf(base);
    rows->cursor = table.relation->open(*table.source);
    *made = &rows.release()->base;
    return SQLITE_OK;
  });
}

int closeCursor(sqlite3_vtab_cursor* base) {
  delete &rowsOf(base);
  return SQLITE_OK;
}

int nextRow(sqlite3_vtab_cursor* base) {
  return guarded([&] {
    Rows& rows = rowsOf(base);
    rows.isAtEnd = !rows.cursor->next();
    const Error* fault = rows.isAtEnd ? rows.cursor->fault() : nullptr;
    if (fault == nullptr) return SQLITE_OK;
    return failed(&base->pVtab->zErrMsg, fault->text, statusOf(*fault));
  });
}

int filter(sqlite3_vtab_cursor* base, int plan, const char*, int count, sqlite3_value** values) {
  return guarded([&] {
    Rows& rows = rowsOf(base);
    rows.isAtEnd = true;
    if (!startRows(tableOf(base->pVtab), rows, plan, {values, static_cast<std::size_t>(count)}))
      return SQLITE_OK;
    return nextRow(base);
  });
}

int isAtEnd(sqlite3_vtab_cursor* base) { return rowsOf(base).isAtEnd ? 1 : 0; }

int rowId(sqlite3_vtab_cursor* base, sqlite3_int64* id) {
  *id = rowsOf(base).cursor->id();
  return SQLITE_OK;
}

// Texts and records stay as long as the table, and so longer than any statement that reads it.
void giveText(sqlite3_context* context, std::string_view bytes) {
  if (format::isAscii(bytes)) {
    sqlite3_result_text64(context, bytes.data(), bytes.size(), SQLITE_STATIC, SQLITE_UTF8);
    return;
  }
  const std::string text = format::utf8Of(bytes);
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void giveBlob(sqlite3_context* context, std::string_view bytes, sqlite3_destructor_type life) {
  if (bytes.empty())
    sqlite3_result_zeroblob(context, 0);
  else
    sqlite3_result_blob64(context, bytes.data(), bytes.size(), life);
}

int giveFault(sqlite3_context* context, const Error& fault) {
  sqlite3_result_error(context, fault.text.c_str(), -1);
  sqlite3_result_error_code(context, statusOf(fault));
  return statusOf(fault);
}

int column(sqlite3_vtab_cursor* base, sqlite3_context* context, int at) {
  return guarded([&] {
    relations::Cursor& cursor = *rowsOf(base).cursor;
    const Value value = cursor.value(static_cast<std::size_t>(at));
    switch (value.kind) {
      case Value::Kind::kNull:
        sqlite3_result_null(context);
        break;
      case Value::Kind::kInteger:
        sqlite3_result_int64(context, static_cast<sqlite3_int64>(value.number));
        break;
      case Value::Kind::kZip:
        sqlite3_result_text(context, relations::digitsOf(value.number).data(), 5, SQLITE_TRANSIENT);
        break;
      case Value::Kind::kText:
        giveText(context, value.bytes);
        break;
      case Value::Kind::kBlob:
        giveBlob(context, value.bytes, SQLITE_STATIC);
        break;
      case Value::Kind::kRead:
        giveBlob(context, value.bytes, SQLITE_TRANSIENT);
        break;
      case Value::Kind::kFault:
        return giveFault(context, *cursor.fault());
    }
    return SQLITE_OK;
  });
}

const sqlite3_module* module() {
  static const sqlite3_module made = [] {
    sqlite3_module calls{};
    calls.iVersion = 1;
    calls.xCreate = create;
    calls.xConnect = connect;
    calls.xBestIndex = chooseIndex;
    calls.xDisconnect = disconnect;
    calls.xDestroy = disconnect;
    calls.xOpen = openCursor;
    calls.xClose = closeCursor;
    calls.xFilter = filter;
    calls.xNext = nextRow;
    calls.xEof = isAtEnd;
    calls.xColumn = column;
    calls.xRowid = rowId;
    return calls;
  }();
  return &made;
}

void release(void* shared) { delete static_cast<Shared*>(shared); }

// SQLite releases what it was given also when it refuses.
int install(sqlite3* db) {
  const auto sources = std::make_shared<Sources>();
  int status = sqlite3_create_module_v2(db, "statecut", module(), new Shared(sources), release);
  for (const int arguments : {1, 2})
    if (status == SQLITE_OK)
      status = sqlite3_create_function_v2(db, "statecut_open", arguments,
                                          SQLITE_UTF8 | SQLITE_DIRECTONLY, new Shared(sources),
                                          openAll, nullptr, nullptr, release);
  return status;
}

}  // namespace

int statusOf(const Error& error) {
  switch (error.code) {
    case ErrorCode::kNone:
      return SQLITE_OK;
    case ErrorCode::kOpenFile:
      return SQLITE_CANTOPEN;
    case ErrorCode::kReadFile:
      return SQLITE_IOERR;
    case ErrorCode::kNoMemory:
      return SQLITE_NOMEM;
    default:
      return SQLITE_CORRUPT_VTAB;
  }
}

}  // namespace statecut::sql

// SQLite derives this name from that of the file.
extern "C" __attribute__((visibility("default"))) int sqlite3_modstatecut_init(
    sqlite3* db, char** message, const sqlite3_api_routines* api) {
  SQLITE_EXTENSION_INIT2(api);
  using namespace statecut::sql;
  return guarded([&] {
    if (sqlite3_libversion_number() < kLeastVersion)
      return failed(message, "mod_statecut needs SQLite 3.31 or later", SQLITE_ERROR);
    return install(db);
  });
}
