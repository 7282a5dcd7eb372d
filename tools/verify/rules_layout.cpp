// The form of the files, the tables that stand first, and bytes between tables.

#include <string>

#include "verify/pairrules.h"
#include "verify/tiling.h"

namespace statecut::verify {

namespace {

using R = RefControlRec;

// A cut copies these first and keeps their RBAs.
void checkFirst(const Pair& pair, Report& report) {
  std::uint64_t at = R::size;
  for (const TableId id :
       {TableId::StreetPatterns, TableId::PobPatterns, TableId::RrPatterns, TableId::StreetNames}) {
    const TablePlace& place = pair.place(id);
    if (place.bytes == 0) continue;
    if (place.rba != at)
      report.add(RuleId::TableFirst, File::Reference, kNoRecord, tableDef(id).rbaAt, [&] {
        return std::string(tableDef(id).name) + " at " + std::to_string(place.rba) +
               ", its place is " + std::to_string(at);
      });
    at += place.bytes;
  }
}

void checkGaps(const Pair& pair, Report& report) {
  Tiling tiling;
  for (std::size_t i = 0; i < kTables; ++i) {
    const TablePlace& place = pair.place(static_cast<TableId>(i));
    if (place.carried) tiling.add(place.rba, place.rba + place.bytes, i);
  }
  tiling.check(
      R::size, pair.refBytes().size(), [](const Tiling::Piece&) {},
      [&](std::uint64_t begin, std::uint64_t end) {
        report.add(RuleId::TableGap, File::Reference, kNoRecord, begin,
                   [&] { return std::to_string(end - begin) + " bytes belong to no table"; });
      });
}

}  // namespace

void checkTableLayout(const Pair& pair, Report& report) {
  // A table in a wrong place leaves its own place empty.
  if (report.count(RuleId::TableBounds) > 0 || report.count(RuleId::TableOverlap) > 0) return;
  checkFirst(pair, report);
  if (report.count(RuleId::TableFirst) == 0) checkGaps(pair, report);
}

void checkForm(const Pair& pair, Report& report) {
  const auto check = [&](File file, const auto& record, auto field, const char* form) {
    if (record.get(field) != 1)
      report.add(RuleId::HeaderForm, file, kNoRecord, field.at,
                 [&] { return std::string(field.name) + " is not that of " + form; });
  };
  using G = RngControlRec;
  check(File::Reference, pair.ref(), R::characterType, "ASCII");
  check(File::Reference, pair.ref(), R::endianType, "little-endian numbers");
  check(File::Range, pair.rng(), G::characterType, "ASCII");
  check(File::Range, pair.rng(), G::endianType, "little-endian numbers");
}

}  // namespace statecut::verify
