// The range file of a cut: the partitions of kept ZIPs, the multi-ZIP partitions still in use, and
// the records that point at them.

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tables/rows.h"
#include "verify/cutchecks.h"
#include "verify/cutrecords.h"
#include "verify/multizipuse.h"

namespace statecut::verify {

namespace {

// Groups of partitions in the order of the range file; multi-ZIP kinds follow.
enum Group : std::uint64_t { kZips, kFirstMultiZip };

struct Piece {
  std::uint64_t group;
  std::uint64_t order;  // in the group
  std::uint64_t rba;
  std::uint64_t bytes;
};

// Compares partitions of the two range files and remembers where the cut's stand.
class RangeCompare {
 public:
  RangeCompare(const CutCase& cut, Report& report)
      : cut_(cut.cut.rngBytes()), source_(cut.source.rngBytes()), report_(report) {}

  void check(RuleId ruleId, std::size_t record, std::uint64_t rba, std::uint64_t sourceRba,
             std::uint64_t bytes, const std::string& what, std::uint64_t group,
             std::uint64_t order) {
    const auto fail = [&](std::uint64_t offset, const std::string& how) {
      report_.add(ruleId, File::Range, static_cast<std::int64_t>(record), offset, what + how);
    };
    if (rba < RngControlRec::size || rba + bytes > cut_.size())
      return fail(rba, ": " + std::to_string(bytes) + " bytes end past the file");
    pieces_.push_back({group, order, rba, bytes});
    // A source that ends early says nothing about the rest.
    const std::uint64_t known =
        sourceRba < source_.size() ? std::min<std::uint64_t>(bytes, source_.size() - sourceRba) : 0;
    const unsigned char* a = cut_.data() + rba;
    const unsigned char* b = source_.data() + sourceRba;
    if (known == 0 || std::memcmp(a, b, known) == 0) return;
    const auto at = static_cast<std::uint64_t>(std::mismatch(a, a + known, b).first - a);
    fail(rba + at, ": differs from the source at byte " + std::to_string(at) + " of " +
                       std::to_string(bytes));
  }

  std::size_t pieces() const { return pieces_.size(); }

  // The pieces, empty ones too, must lie end to end behind the control record, in their order.
  void checkLayout() {
    std::sort(pieces_.begin(), pieces_.end(), [](const Piece& a, const Piece& b) {
      return std::pair(a.group, a.order) < std::pair(b.group, b.order);
    });
    std::uint64_t at = RngControlRec::size;
    for (const Piece& piece : pieces_) {
      if (piece.rba != at)
        report_.add(RuleId::CutRangeLayout, File::Range, kNoRecord, piece.rba,
                    [&] { return "a partition begins here, its place is " + std::to_string(at); });
      at = piece.rba + piece.bytes;
    }
    if (at != cut_.size())
      report_.add(RuleId::CutRangeLayout, File::Range, kNoRecord, at, [&] {
        return "the partitions end here, the file has " + std::to_string(cut_.size()) + " bytes";
      });
  }

 private:
  std::span<const unsigned char> cut_;
  std::span<const unsigned char> source_;
  Report& report_;
  std::vector<Piece> pieces_;
};

void checkZipRecords(const CutCase& cut, Report& report) {
  const auto records = cut.cut.records<ZipDataRow>(TableId::ZipData);
  const auto originals = cut.source.records<ZipDataRow>(TableId::ZipData);
  for (std::size_t key = 0; key < std::min(records.size(), originals.size()); ++key) {
    ZipDataRow expected = originals[key];
    const auto rewritten = [&](auto field) {
      if (cut.zipKept[key] && expected.get(field) != 0 && records[key].get(field) != 0)
        expected.set(field, records[key].get(field));
    };
    rewritten(ZipDataRow::sfhRba);
    rewritten(ZipDataRow::pobRba);
    rewritten(ZipDataRow::rrRba);
    compareRecord(records[key], expected, RuleId::CutZipRecords, key, records.offset(key), report);
  }
}

// One kind of partition, in the order of the ZIP codes, which is that of both files.
template <typename RbaField, typename BytesField>
void checkZipKind(const CutCase& cut, RbaField rbaField, BytesField bytesField,
                  RangeCompare& range) {
  const auto records = cut.cut.records<ZipDataRow>(TableId::ZipData);
  const auto originals = cut.source.records<ZipDataRow>(TableId::ZipData);
  const auto sizes = cut.source.records<ZipBytesRow>(TableId::ZipBytes);
  for (const std::uint32_t key : cut.zipIndex) {
    if (key == 0 || key >= records.size() || originals[key].get(rbaField) == 0 ||
        records[key].get(rbaField) == 0)
      continue;
    range.check(RuleId::CutPartitions, key, records[key].get(rbaField),
                originals[key].get(rbaField), sizes[key].get(bytesField), rbaField.name, kZips,
                range.pieces());
  }
}

// The multi-ZIP partitions of a kind that the cut holds: found through its records, once a key.
class MultiZipPass {
 public:
  MultiZipPass(const CutCase& cut, MultiZipKind kind, RangeCompare& range, Report& report)
      : kind_(kind),
        use_(deriveMultiZipUse(cut, kind)),
        cutRbas_(use_.keys.size()),
        range_(range),
        report_(report) {}

  template <typename RowType>
  void follow(const Records<RowType>& records, const std::vector<bool>& used,
              std::vector<RowType>& expected) {
    for (std::size_t i = 0; i < std::min(records.size(), expected.size()); ++i) {
      const std::uint32_t key = entryOf(expected[i], kind_).key;
      if (!used[i] || !use_.copied(key)) continue;
      const std::uint32_t rba = entryOf(records[i], kind_).rba;
      followOne(key, rba, i, records.offset(i));
      setRba(expected[i], kind_, rba);
    }
  }

  const MultiZipUse& use() const { return use_; }

 private:
  void followOne(std::uint32_t key, std::uint32_t rba, std::size_t record, std::uint64_t offset) {
    if (cutRbas_[key] == 0) {
      cutRbas_[key] = rba;
      const MultiZipUse::Source& source = use_.keys[key];
      range_.check(RuleId::CutMultiZipPartitions, record, rba, source.rba,
                   static_cast<std::uint32_t>(source.bytes), "multi-ZIP key " + std::to_string(key),
                   kFirstMultiZip + static_cast<std::uint64_t>(kind_), key);
    } else if (cutRbas_[key] != rba) {
      report_.add(RuleId::CutMultiZipPartitions, File::Reference, static_cast<std::int64_t>(record),
                  offset, [&] {
                    return "multi-ZIP key " + std::to_string(key) + " at " + std::to_string(rba) +
                           ", another record has it at " + std::to_string(cutRbas_[key]);
                  });
    }
  }

  MultiZipKind kind_;
  MultiZipUse use_;
  std::vector<std::uint32_t> cutRbas_;  // by multi-ZIP key, 0 = not met
  RangeCompare& range_;
  Report& report_;
};

template <typename RowType>
std::vector<RowType> copyOf(const Records<RowType>& records) {
  std::vector<RowType> copy(records.size());
  for (std::size_t i = 0; i < copy.size(); ++i) copy[i] = records[i];
  return copy;
}

template <typename RowType>
void compareAll(const Records<RowType>& records, const std::vector<RowType>& expected,
                RuleId ruleId, Report& report) {
  for (std::size_t i = 0; i < std::min(records.size(), expected.size()); ++i)
    compareRecord(records[i], expected[i], ruleId, i, records.offset(i), report);
}

// Records are the source's; those whose partition was copied lead to it.
void checkMultiZipRecords(const CutCase& cut, RangeCompare& range, Report& report) {
  const auto cities = cut.cut.records<CityMultiZipRow>(TableId::CityMultiZipRbas);
  const auto areas = cut.cut.records<FinMultiZipRow>(TableId::FinMultiZipRbas);
  auto expectedCities = copyOf(cut.source.records<CityMultiZipRow>(TableId::CityMultiZipRbas));
  auto expectedAreas = copyOf(cut.source.records<FinMultiZipRow>(TableId::FinMultiZipRbas));
  for (const MultiZipKind kind : {MultiZipKind::Sfh, MultiZipKind::Pob, MultiZipKind::Rr}) {
    MultiZipPass pass(cut, kind, range, report);
    pass.follow(cities, pass.use().cityRecords, expectedCities);
    if (kind == MultiZipKind::Sfh) pass.follow(areas, pass.use().finRecords, expectedAreas);
  }
  compareAll(cities, expectedCities, RuleId::CutCityMultiZip, report);
  compareAll(areas, expectedAreas, RuleId::CutFinance, report);
}

}  // namespace

void checkCutRange(const CutCase& cut, Report& report) {
  RangeCompare range(cut, report);
  checkZipRecords(cut, report);
  checkZipKind(cut, ZipDataRow::sfhRba, ZipBytesRow::sfhBytes, range);
  checkZipKind(cut, ZipDataRow::pobRba, ZipBytesRow::pobBytes, range);
  checkZipKind(cut, ZipDataRow::rrRba, ZipBytesRow::rrBytes, range);
  checkMultiZipRecords(cut, range, report);
  // What leads to a wrong place leaves its own place untold, and so does a table that is missing.
  const bool told = report.count(RuleId::CutPartitions) == 0 &&
                    report.count(RuleId::CutMultiZipPartitions) == 0 &&
                    report.count(RuleId::CutZipRecords) == 0 && cut.cut.usable(TableId::ZipData) &&
                    cut.cut.usable(TableId::CityMultiZipRbas) &&
                    cut.cut.usable(TableId::FinMultiZipRbas);
  if (told) range.checkLayout();
}

}  // namespace statecut::verify
