// partition: the address ranges of the ZIP codes, as they lie in the range file.

#include "relations/zipwalk.h"

namespace statecut::relations {

namespace {

enum PartitionColumn : std::uint8_t { kZipCode, kKind, kRba, kBytes, kData };
constexpr Column kColumns[] = {
    {"zip", Type::kText, "five-digit ZIP code", false, "zip", "zip"},
    {"kind", Type::kText, "SFH, POB or RR"},
    {"rba", Type::kInteger, "RBA in the range file"},
    {"bytes", Type::kInteger, "bytes of the partition; unknown in a cut", true},
    {"data", Type::kBlob, "the partition; not known without the range file or its bytes", true},
};
constexpr int kPrimary[] = {kZipCode, kKind};
constexpr Path kPaths[] = {
    {"zip=?", {{{kZipCode, Match::kZip}}}},
    {"rowid=?", {{{kRowId, Match::kKey}}}, 1, true},
    {"zip range", {{{kZipCode, Match::kZips}}}, 1, false, 4},
};

constexpr struct {
  PartitionKind kind;
  const char* name;
} kKinds[] = {{PartitionKind::kStreet, "SFH"},
              {PartitionKind::kPoBox, "POB"},
              {PartitionKind::kRuralRoute, "RR"}};
constexpr std::size_t kKindCount = std::size(kKinds);

std::uint32_t rbaOf(const ZipDataRow& zip, PartitionKind kind) {
  if (kind == PartitionKind::kStreet) return zip.get(ZipDataRow::sfhRba);
  return kind == PartitionKind::kPoBox ? zip.get(ZipDataRow::pobRba) : zip.get(ZipDataRow::rrRba);
}

// The id of a row holds the ZIP key and the place of its kind.
class PartitionRows : public Cursor {
 public:
  explicit PartitionRows(Source& source) : database_(source.database()), walk_(database_) {}

  void startAll() override {
    begin();
    walk_.startAll();
  }
  void start(std::size_t path, std::span<const Wanted> wanted) override {
    begin();
    if (path == 1) {
      onlyKind_ = wanted[0].low % kKindCount;
      walk_.startKey(wanted[0].low / kKindCount);
    } else {
      walk_.startZips(wanted[0].low, path == 0 ? wanted[0].low : wanted[0].high);
    }
  }

  bool next() override {
    isRead_ = false;
    for (;;) {
      if (++kind_ >= kKindCount) {
        if (!walk_.next()) return false;
        kind_ = 0;
      }
      rba_ = rbaOf(*walk_.zip(), kKinds[kind_].kind);
      if (rba_ != 0 && (!onlyKind_ || kind_ == *onlyKind_)) return true;
    }
  }

  [[nodiscard]] std::int64_t id() const override {
    return static_cast<std::int64_t>(walk_.zip().key * std::uint64_t{kKindCount} + kind_);
  }

  Value value(std::size_t column) override {
    const auto bytes = database_.partitionBytes(walk_.zip(), kKinds[kind_].kind);
    switch (column) {
      case kZipCode:
        return Value::zip(walk_.zip()->get(ZipDataRow::zip));
      case kKind:
        return Value::text(kKinds[kind_].name);
      case kRba:
        return Value::integer(rba_);
      case kBytes:
        return bytes ? Value::integer(*bytes) : Value::null();
      default:
        return bytes && database_.rangeRecord() != nullptr ? contents(*bytes) : Value::null();
    }
  }

 private:
  void begin() {
    onlyKind_.reset();
    kind_ = kKindCount;
    isRead_ = false;
  }

  // A size that the file can't have is not asked for: it could be of gigabytes.
  Value contents(std::uint32_t bytes) {
    fault_ = Error();
    if (!isRead_ && std::uint64_t{rba_} + bytes > database_.rangeFileBytes()) {
      fault_.code = ErrorCode::kShortFile;
      fault_.offset = rba_;
      fault_.text = database_.rangeFile() + ": the partition at " + std::to_string(rba_) +
                    " ends behind the end of the file";
    } else if (!isRead_) {
      data_.resize(bytes);
      isRead_ = database_.readPartition(walk_.zip(), kKinds[kind_].kind, data_, fault_).has_value();
    }
    if (fault_.code == ErrorCode::kNone)
      return Value::read({reinterpret_cast<const char*>(data_.data()), data_.size()});
    fault_.table = kKinds[kind_].name;
    fault_.text += std::string(" (partition ") + kKinds[kind_].name + " of the ZIP code " +
                   std::string(digitsOf(walk_.zip()->get(ZipDataRow::zip)).data(), 5) + ")";
    return Value::fault();
  }

  const Database& database_;
  ZipWalk walk_;
  std::optional<std::size_t> onlyKind_;
  std::size_t kind_ = kKindCount;
  std::uint32_t rba_ = 0;
  bool isRead_ = false;
  std::vector<unsigned char> data_;
};

// Most ZIP codes have more than one.
std::uint64_t countPartitions(const Source& source) {
  return source.database().referenceRecord().get(RefControlRec::zipDataCount) * std::uint64_t{2};
}

}  // namespace

constinit const Relation kPartition = {"partition",
                                       "partitions of the ZIP codes in the range file",
                                       kColumns,
                                       kRowId,
                                       kPrimary,
                                       {},
                                       kPaths,
                                       countPartitions,
                                       openRows<PartitionRows>,
                                       true};

}  // namespace statecut::relations
