// county and urbanization: records that are not interpreted.

#include "relations/zipwalk.h"

namespace statecut::relations {

namespace {

enum SmallColumn : std::uint8_t { kPosition, kData };
constexpr Column kColumns[] = {
    {"position", Type::kInteger, "position in its table"},
    {"data", Type::kBlob, "the record; not interpreted"},
};
constexpr int kPrimary[] = {kPosition};
constexpr Path kPaths[] = {{"rowid=?", {{{kRowId, Match::kKey}}}, 1, true}};

template <auto RecordOf>
class SmallRows : public Cursor {
 public:
  explicit SmallRows(Source& source) : database_(source.database()) {}

  void startAll() override {
    next_ = 1;
    last_ = UINT32_MAX;
  }
  void start(std::size_t, std::span<const Wanted> wanted) override {
    next_ = 1;
    last_ = 0;
    if (wanted[0].low <= UINT32_MAX) next_ = last_ = static_cast<std::uint32_t>(wanted[0].low);
  }
  bool next() override {
    if (next_ > last_) return false;
    position_ = next_++;
    record_ = (database_.*RecordOf)(position_);
    return !record_.empty();
  }
  [[nodiscard]] std::int64_t id() const override { return position_; }
  Value value(std::size_t column) override {
    if (column == kPosition) return Value::integer(position_);
    return Value::blob({reinterpret_cast<const char*>(record_.data()), record_.size()});
  }

 private:
  const Database& database_;
  std::uint32_t next_ = 1, last_ = 0;
  std::uint32_t position_ = 0;
  std::span<const unsigned char> record_;
};

std::uint64_t countCounties(const Source& source) {
  return source.database().referenceRecord().get(RefControlRec::countiesCount);
}
std::uint64_t countUrbanizations(const Source& source) {
  return source.database().referenceRecord().get(RefControlRec::urbsCount);
}

}  // namespace

constinit const Relation kCounty = {
    "county",  "counties",    kColumns,
    kPosition, kPrimary,      {},
    kPaths,    countCounties, openRows<SmallRows<&Database::county>>};
constinit const Relation kUrbanization = {
    "urbanization", "urbanizations",    kColumns,
    kPosition,      kPrimary,           {},
    kPaths,         countUrbanizations, openRows<SmallRows<&Database::urbanization>>};

}  // namespace statecut::relations
