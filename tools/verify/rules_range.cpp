// Where the partitions of a range file stand: each in the area of its kind, no two in one place.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tables/rows.h"
#include "verify/multizipsizes.h"
#include "verify/pairrules.h"
#include "verify/tiling.h"

namespace statecut::verify {

namespace {

using G = RngControlRec;
using M = CityMultiZipRow;
using F = FinMultiZipRow;

// The partitions that the records of a pair lead to. Those outside the file are left out.
class RangeLayout {
 public:
  RangeLayout(const Pair& pair, Report& report) : pair_(pair), report_(report) {}

  template <typename StartField, typename BytesField>
  void beginArea(StartField start, BytesField bytes) {
    areaBegin_ = pair_.rng().get(start);
    areaEnd_ = areaBegin_ + pair_.rng().get(bytes);
    areas_.push_back({areaBegin_, areaEnd_});
  }

  template <typename RbaField, typename BytesField>
  void addZips(const char* kind, RbaField rba, BytesField bytes) {
    const auto zips = pair_.records<ZipDataRow>(TableId::ZipData);
    const auto sizes = pair_.records<ZipBytesRow>(TableId::ZipBytes);
    for (std::size_t key = 1; key < std::min(zips.size(), sizes.size()); ++key)
      add({zips[key].get(rba), sizes[key].get(bytes), kind, key, zips.offset(key) + rba.at});
  }

  template <typename RowType, typename CountField, typename KeyField, typename RbaField>
  void addMultiZips(const char* kind, TableId records, TableId sizes, MultiZipForm form,
                    CountField count, KeyField key, RbaField rba) {
    const auto rows = pair_.records<RowType>(records);
    const auto table = pair_.table(sizes);
    for (std::size_t i = 1; i < rows.size(); ++i) {
      if (rows[i].get(count) < 2 || rows[i].get(rba) == 0) continue;
      const auto bytes = multiZipSize(table, form, rows[i].get(key));
      add({rows[i].get(rba), static_cast<std::uint32_t>(bytes.value_or(0)), kind, rows[i].get(key),
           rows.offset(i) + rba.at});
    }
  }

  void checkOverlap() {
    std::sort(pieces_.begin(), pieces_.end(), [](const Piece& a, const Piece& b) {
      return std::pair(a.rba, a.key) < std::pair(b.rba, b.key);
    });
    const Piece* reach = nullptr;  // the partition that ends last so far
    for (const Piece& piece : pieces_) {
      if (reach != nullptr && piece.rba < reach->rba + reach->bytes && !same(piece, *reach))
        report(piece, [&] { return " begins inside that of " + nameOf(*reach); });
      if (reach == nullptr || piece.rba + piece.bytes > reach->rba + reach->bytes) reach = &piece;
    }
  }

  // Where no partition stands, and where no area does. The first area may begin anywhere.
  void checkGaps() {
    const auto reportGap = [&](const char* what, std::uint64_t begin, std::uint64_t end) {
      report_.add(RuleId::RangeGap, File::Range, kNoRecord, begin,
                  [&] { return std::to_string(end - begin) + " bytes belong to no " + what; });
    };
    Tiling areas;
    Tiling pieces;
    std::uint64_t first = pair_.rngBytes().size();
    for (const Area& area : areas_) {
      if (area.begin == area.end) continue;
      first = std::min(first, area.begin);
      areas.add(area.begin, area.end, 0);
    }
    const auto none = [](const Tiling::Piece&) {};
    const auto areaOverlap = [&](const Tiling::Piece& area) {
      report_.add(RuleId::RangeGap, File::Range, kNoRecord, area.begin,
                  "an area begins inside another one");
    };
    areas.check(first, pair_.rngBytes().size(), areaOverlap,
                [&](std::uint64_t begin, std::uint64_t end) { reportGap("area", begin, end); });
    if (report_.count(RuleId::RangeGap) > 0) return;
    for (const Piece& piece : pieces_) pieces.add(piece.rba, piece.rba + piece.bytes, 0);
    pieces.check(first, pair_.rngBytes().size(), none, [&](std::uint64_t begin, std::uint64_t end) {
      reportGap("partition", begin, end);
    });
  }

 private:
  struct Piece {
    std::uint64_t rba;
    std::uint64_t bytes;
    const char* kind;
    std::uint64_t key;
    std::uint64_t fieldAt;  // in the reference file
  };

  static std::string nameOf(const Piece& piece) {
    return std::string(piece.kind) + " key " + std::to_string(piece.key);
  }
  // Records of one multi-ZIP key share its partition.
  static bool same(const Piece& a, const Piece& b) {
    return a.kind == b.kind && a.key == b.key && a.rba == b.rba;
  }

  template <typename MakeText>
  void report(const Piece& piece, MakeText&& how) {
    report_.add(RuleId::RangeLayout, File::Reference, kNoRecord, piece.fieldAt,
                [&] { return "partition of " + nameOf(piece) + how(); });
  }

  void add(const Piece& piece) {
    if (piece.bytes == 0 || piece.rba < G::size ||
        piece.rba + piece.bytes > pair_.rngBytes().size())
      return;
    pieces_.push_back(piece);
    if (piece.rba < areaBegin_ || piece.rba + piece.bytes > areaEnd_)
      report(piece, [&] {
        return " lies outside its area, bytes " + std::to_string(areaBegin_) + " to " +
               std::to_string(areaEnd_);
      });
  }

  const Pair& pair_;
  Report& report_;
  std::uint64_t areaBegin_ = 0;
  std::uint64_t areaEnd_ = 0;
  struct Area {
    std::uint64_t begin;
    std::uint64_t end;
  };
  std::vector<Piece> pieces_;
  std::vector<Area> areas_;
};

}  // namespace

void checkRangeLayout(const Pair& pair, Report& report) {
  // A cut has no sizes. Sizes that can't be found are findings of their own.
  if (pair.isCut() || report.count(RuleId::RangeAreas) > 0 ||
      report.count(RuleId::MultiZipOrder) > 0)
    return;
  constexpr const char* kSfhMulti = "SFH multi-ZIP";
  RangeLayout layout(pair, report);
  layout.beginArea(G::sfhZipStart, G::sfhZipBytes);
  layout.addZips("SFH ZIP", ZipDataRow::sfhRba, ZipBytesRow::sfhBytes);
  layout.beginArea(G::sfhMultiZipStart, G::sfhMultiZipBytes);
  layout.addMultiZips<M>(kSfhMulti, TableId::CityMultiZipRbas, TableId::SfhMultiZipBytes,
                         MultiZipForm::Long, M::sfhZipCount, M::sfhKey, M::sfhRba);
  layout.addMultiZips<F>(kSfhMulti, TableId::FinMultiZipRbas, TableId::SfhMultiZipBytes,
                         MultiZipForm::Short, F::zipCount, F::key, F::rba);
  layout.beginArea(G::pobZipStart, G::pobZipBytes);
  layout.addZips("POB ZIP", ZipDataRow::pobRba, ZipBytesRow::pobBytes);
  layout.beginArea(G::pobMultiZipStart, G::pobMultiZipBytes);
  layout.addMultiZips<M>("POB multi-ZIP", TableId::CityMultiZipRbas, TableId::PobMultiZipBytes,
                         MultiZipForm::Short, M::pobZipCount, M::pobKey, M::pobRba);
  layout.beginArea(G::rrZipStart, G::rrZipBytes);
  layout.addZips("RR ZIP", ZipDataRow::rrRba, ZipBytesRow::rrBytes);
  layout.beginArea(G::rrMultiZipStart, G::rrMultiZipBytes);
  layout.addMultiZips<M>("RR multi-ZIP", TableId::CityMultiZipRbas, TableId::RrMultiZipBytes,
                         MultiZipForm::Short, M::rrZipCount, M::rrKey, M::rrRba);
  layout.checkOverlap();
  // A link to a wrong place leaves its own place untold.
  for (const RuleId id :
       {RuleId::RangeBounds, RuleId::RangeLayout, RuleId::TableBounds, RuleId::MultiZipLink,
        RuleId::MultiZipKey, RuleId::MultiZipLists, RuleId::MultiZipBytes, RuleId::MultiZipBounds})
    if (report.count(id) > 0) return;
  layout.checkGaps();
}

}  // namespace statecut::verify
