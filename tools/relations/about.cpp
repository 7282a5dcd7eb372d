// tables and header: what the control records say.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "format/areas.h"
#include "format/directory.h"
#include "relations/zipwalk.h"

namespace statecut::relations {

namespace {

constexpr const char* kReferenceText = "reference";
constexpr const char* kRangeText = "range";

// Rows that are made at once, as there are few.
template <typename Row>
class FewRows : public Cursor {
 public:
  void start(std::size_t, std::span<const Wanted>) override { startAll(); }
  void startAll() override {
    fault_ = Error();
    at_ = SIZE_MAX;
    rows_ = make();
  }
  bool next() override { return fault() == nullptr && ++at_ < rows_.size(); }
  [[nodiscard]] std::int64_t id() const override { return static_cast<std::int64_t>(at_) + 1; }

 protected:
  virtual std::vector<Row> make() = 0;
  [[nodiscard]] const Row& row() const { return rows_[at_]; }

 private:
  std::vector<Row> rows_;
  std::size_t at_ = SIZE_MAX;
};

enum TableColumn : std::uint8_t { kFile, kName, kRba, kCount, kBytes };
constexpr Column kTableColumns[] = {
    {"file", Type::kText, "reference or range"},
    {"name", Type::kText, "name of the table, or of the area of the range file"},
    {"rba", Type::kInteger, "RBA in its file"},
    {"count", Type::kInteger, "records, or bytes of packed names", true},
    {"bytes", Type::kInteger, "bytes"},
};
constexpr int kFileAndName[] = {kFile, kName};

struct TableRow {
  const char* file;
  const char* name;
  std::uint64_t rba;
  std::optional<std::uint64_t> count;
  std::uint64_t bytes;
};

// Tables that hold their own counts are read from the file anew.
class OwnHeaders {
 public:
  explicit OwnHeaders(const Database& database)
      : fd_(::open(database.referenceFile().c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  ~OwnHeaders() {
    if (fd_ >= 0) ::close(fd_);
  }
  OwnHeaders(const OwnHeaders&) = delete;
  OwnHeaders& operator=(const OwnHeaders&) = delete;

  [[nodiscard]] bool read(std::uint64_t rba, std::span<unsigned char> header) const {
    const ssize_t got = ::pread(fd_, header.data(), header.size(), static_cast<off_t>(rba));
    return got == static_cast<ssize_t>(header.size());
  }

 private:
  int fd_;
};

class TableRows : public FewRows<TableRow> {
 public:
  explicit TableRows(Source& source) : database_(source.database()) {}

  Value value(std::size_t column) override {
    switch (column) {
      case kFile:
        return Value::text(row().file);
      case kName:
        return Value::text(row().name);
      case kRba:
        return Value::integer(row().rba);
      case kCount:
        return row().count ? Value::integer(*row().count) : Value::null();
      default:
        return Value::integer(row().bytes);
    }
  }

 private:
  // In the order of the file, as `statedb info` shows them.
  std::vector<TableRow> make() override {
    const OwnHeaders headers(database_);
    std::vector<TableRow> rows;
    for (std::size_t i = 0; i < format::kTables; ++i) {
      const auto id = static_cast<format::TableId>(i);
      const format::TablePlace place = placeOf(id, headers);
      if (place.carried)
        rows.push_back(
            {kReferenceText, format::tableDef(id).name, place.rba, place.count, place.bytes});
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const TableRow& a, const TableRow& b) { return a.rba < b.rba; });
    if (const RngControlRec* range = database_.rangeRecord())
      for (const format::Area& area : format::areasOf(*range))
        rows.push_back({kRangeText, area.name, area.rba, std::nullopt, area.bytes});
    return rows;
  }

  format::TablePlace placeOf(format::TableId id, const OwnHeaders& headers) {
    const RefControlRec& record = database_.referenceRecord();
    if (format::tableDef(id).sizing != format::Sizing::OwnHeader)
      return format::placeTable(id, record, UINT64_MAX);
    std::array<unsigned char, format::kMostHeaderBytes> header{};
    const std::size_t bytes = format::headerBytes(id);
    const std::uint32_t rba = format::placeTable(id, record, UINT64_MAX).rba;
    if (rba == 0 || headers.read(rba, {header.data(), bytes}))
      return format::placeTable(id, rba, {header.data(), bytes}, UINT64_MAX);
    fault_.code = ErrorCode::kReadFile;
    fault_.table = format::tableDef(id).name;
    fault_.offset = rba;
    fault_.text = database_.referenceFile() + ": the table " + fault_.table + " at " +
                  std::to_string(rba) + " cannot be read";
    return {};
  }

  const Database& database_;
};

enum HeaderColumn : std::uint8_t { kOf, kOffset, kWidth, kField, kValue, kMeaning };
constexpr Column kHeaderColumns[] = {
    {"file", Type::kText, "reference or range"},
    {"offset", Type::kInteger, "offset of the field"},
    {"width", Type::kInteger, "bytes of the field"},
    {"name", Type::kText, "name of the field"},
    {"value", Type::kAny, "a number, a text, or bytes that are not interpreted"},
    {"meaning", Type::kText, "what it means"},
};
constexpr int kFileAndOffset[] = {kOf, kOffset};

struct HeaderRow {
  const char* file;
  std::size_t offset, width;
  const char* name;
  const char* meaning;
  Value value;
};

// The fields of a control record. Version and date are texts, what is carried unchanged is bytes.
template <typename Record>
void addFields(const Record& record, const char* file, std::vector<HeaderRow>& rows) {
  forEachField<Record>([&](const auto& field) {
    const auto* at = reinterpret_cast<const char*>(record.bytes.data()) + field.at;
    Value value;
    if constexpr (std::decay_t<decltype(field)>::isNumber)
      value = Value::integer(record.get(field));
    else if (field.at == Record::version.at || field.at == Record::copyrightDate.at)
      value = Value::text({at, field.width});
    else
      value = Value::blob({at, field.width});
    rows.push_back({file, field.at, field.width, field.name, field.meaning, value});
  });
}

class HeaderRows : public FewRows<HeaderRow> {
 public:
  explicit HeaderRows(Source& source) : database_(source.database()) {}

  Value value(std::size_t column) override {
    switch (column) {
      case kOf:
        return Value::text(row().file);
      case kOffset:
        return Value::integer(row().offset);
      case kWidth:
        return Value::integer(row().width);
      case kField:
        return Value::text(row().name);
      case kValue:
        return row().value;
      default:
        return Value::text(row().meaning);
    }
  }

 private:
  std::vector<HeaderRow> make() override {
    std::vector<HeaderRow> rows;
    addFields(database_.referenceRecord(), kReferenceText, rows);
    if (const RngControlRec* range = database_.rangeRecord()) addFields(*range, kRangeText, rows);
    return rows;
  }

  const Database& database_;
};

std::uint64_t countTables(const Source&) { return format::kTables; }
std::uint64_t countFields(const Source&) {
  return std::tuple_size_v<decltype(RefControlRec::fields)>;
}

}  // namespace

constinit const Relation kTables = {"tables",
                                    "tables and areas of the files",
                                    kTableColumns,
                                    kRowId,
                                    kFileAndName,
                                    {},
                                    {},
                                    countTables,
                                    openRows<TableRows>};
constinit const Relation kHeader = {"header",
                                    "fields of the control records",
                                    kHeaderColumns,
                                    kRowId,
                                    kFileAndOffset,
                                    {},
                                    {},
                                    countFields,
                                    openRows<HeaderRows>};

}  // namespace statecut::relations
