// Control records, the order of the tables, and the tables that a cut copies.

#include <algorithm>
#include <cstring>
#include <string>

#include "verify/cutchecks.h"

namespace statecut::verify {

namespace {

using R = RefControlRec;
using G = RngControlRec;

// The tables of a cut in their order in the file: those that it copies ...
constexpr TableId kCopied[] = {TableId::StreetPatterns,
                               TableId::PobPatterns,
                               TableId::RrPatterns,
                               TableId::StreetNames,
                               TableId::Firms,
                               TableId::CityMultiZipLists,
                               TableId::CityMultiFinanceLists,
                               TableId::ZipMultiCityLists,
                               TableId::UniqueZips,
                               TableId::Counties,
                               TableId::Urbs,
                               TableId::UrbMultiZipLists,
                               TableId::UrbVariations,
                               TableId::StreetPhoneticAmbData,
                               TableId::StreetPhonetics,
                               TableId::StreetPhoneticsRbos,
                               TableId::StreetStandardAmbData,
                               TableId::StreetStandards,
                               TableId::StreetStandardsRbos,
                               TableId::GeneralDelivery,
                               TableId::MultiZipLists};
// ... those that it rewrites ...
constexpr TableId kRewritten[] = {TableId::CityData,         TableId::CityMultiZipRbas,
                                  TableId::FinMultiZipRbas,  TableId::CityNames,
                                  TableId::CityNamesByState, TableId::CityPhonetics,
                                  TableId::ZipData,          TableId::ZipIndex,
                                  TableId::HashTable,        TableId::HashOverflow};
// ... and two more copies.
constexpr TableId kCopiedLast[] = {TableId::Military, TableId::PobZones};

// Fields of the reference control record that a cut sets to 0: tables that it leaves out.
constexpr std::size_t kZeroed[] = {R::scfsCount.at,
                                   R::scfsRba.at,
                                   R::zipBytesRba.at,
                                   R::sfhMultiZipBytesRba.at,
                                   R::pobMultiZipBytesRba.at,
                                   R::rrMultiZipBytesRba.at,
                                   R::sfhMultiZipBytesCount.at,
                                   R::pobMultiZipBytesCount.at,
                                   R::rrMultiZipBytesCount.at};

template <std::size_t N>
bool contains(const std::size_t (&list)[N], std::size_t value) {
  return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

// The RBA fields of the tables above; those that are 0 say that there is no table.
bool isPlacedRba(const CutCase& cut, std::size_t at) {
  const auto places = [&](TableId id) {
    return tableDef(id).rbaAt == at && cut.source.place(id).carried;
  };
  return std::any_of(std::begin(kCopied), std::end(kCopied), places) ||
         std::any_of(std::begin(kRewritten), std::end(kRewritten), places) ||
         std::any_of(std::begin(kCopiedLast), std::end(kCopiedLast), places);
}

RefControlRec expectedControl(const CutCase& cut) {
  RefControlRec expected = cut.source.ref();
  expected.set(R::typeFlags, expected.get(R::typeFlags) | kTypeStateCut);
  expected.set(R::stateCutTimeStamp, cut.cut.ref().get(R::stateCutTimeStamp));
  expected.set(R::cityNamesCount, keptCount(cut.nameMap));
  expected.set(R::cityPhoneticsCount, keptCount(cut.phoneticMap));
  for (const std::size_t at : kZeroed) le::put<4>(expected.bytes.data() + at, 0);
  return expected;
}

// Reports each field that differs, but for those that skip(offset) names.
template <typename RowType, typename Skip>
void compareControl(const RowType& cut, const RowType& expected, File file, RuleId ruleId,
                    Skip&& skip, Report& report) {
  forEachField<RowType>([&](const auto& field) {
    if (skip(field.at)) return;
    const auto a = cut.bytes.begin() + static_cast<std::ptrdiff_t>(field.at);
    const auto b = expected.bytes.begin() + static_cast<std::ptrdiff_t>(field.at);
    const auto differ = std::mismatch(a, a + static_cast<std::ptrdiff_t>(field.width), b).first;
    if (differ != a + static_cast<std::ptrdiff_t>(field.width))
      report.add(ruleId, file, kNoRecord, static_cast<std::uint64_t>(differ - cut.bytes.begin()),
                 std::string(field.name) + " is not what the source leads to");
  });
}

std::uint64_t bytesInCut(const DerivedCut& cut, TableId id) {
  const TablePlace& place = cut.source.place(id);
  const TableDef& def = tableDef(id);
  if (!place.carried) return 0;
  if (id == TableId::CityNames) return std::uint64_t{keptCount(cut.nameMap)} * def.cutWidth;
  if (id == TableId::CityNamesByState) {
    const std::uint64_t kept = keptCount(cut.nameMap);
    return kept == 0 ? 0 : (kept - 1) * def.cutWidth;
  }
  if (id == TableId::CityPhonetics) return std::uint64_t{keptCount(cut.phoneticMap)} * def.cutWidth;
  return def.sizing == Sizing::OwnHeader ? place.bytes : place.count * def.cutWidth;
}

class LayoutWalk {
 public:
  LayoutWalk(const CutCase& cut, Report& report) : cut_(cut.cut), report_(report) {}

  void next(TableId id) {
    const TablePlace& place = cut_.place(id);
    if (place.carried && place.bytes > 0) {
      if (place.fits && place.rba != at_)
        report_.add(RuleId::CutLayout, File::Reference, kNoRecord, tableDef(id).rbaAt,
                    std::string(tableDef(id).name) + " begins at " + std::to_string(place.rba) +
                        ", its place is " + std::to_string(at_));
      allFit_ = allFit_ && place.fits;
      at_ += place.bytes;
    }
  }

  void end() {
    if (allFit_ && at_ != cut_.refBytes().size())
      report_.add(
          RuleId::CutLayout, File::Reference, kNoRecord, at_,
          "the tables end here, the file has " + std::to_string(cut_.refBytes().size()) + " bytes");
  }

 private:
  const Pair& cut_;
  Report& report_;
  std::uint64_t at_ = R::size;
  bool allFit_ = true;
};

void compareTable(const CutCase& cut, TableId id, Report& report) {
  if (!cut.cut.usable(id) || !cut.source.usable(id)) return;
  const auto copy = cut.cut.table(id);
  const auto original = cut.source.table(id);
  // A count that differs is a finding of the control record.
  if (copy.size() > original.size() || cut.cut.place(id).count != cut.source.place(id).count)
    return;
  if (copy.empty() || std::memcmp(copy.data(), original.data(), copy.size()) == 0) return;
  const auto at = static_cast<std::uint64_t>(
      std::mismatch(copy.begin(), copy.end(), original.begin()).first - copy.begin());
  report.add(RuleId::CutTables, File::Reference,
             static_cast<std::int64_t>(at / std::max<std::uint64_t>(1, tableDef(id).cutWidth)),
             cut.cut.place(id).rba + at, std::string(tableDef(id).name) + " differs");
}

}  // namespace

std::uint64_t cutReferenceBytes(const DerivedCut& cut) {
  std::uint64_t total = R::size;
  for (const TableId id : kCopied) total += bytesInCut(cut, id);
  for (const TableId id : kRewritten) total += bytesInCut(cut, id);
  for (const TableId id : kCopiedLast) total += bytesInCut(cut, id);
  return total;
}

void checkCutControl(const CutCase& cut, Report& report) {
  compareControl(
      cut.cut.ref(), expectedControl(cut), File::Reference, RuleId::CutControl,
      [&](std::size_t at) { return isPlacedRba(cut, at); }, report);
}

void checkCutLayout(const CutCase& cut, Report& report) {
  LayoutWalk walk(cut, report);
  for (const TableId id : kCopied) walk.next(id);
  for (const TableId id : kRewritten) walk.next(id);
  for (const TableId id : kCopiedLast) walk.next(id);
  walk.end();
}

void checkCutTables(const CutCase& cut, Report& report) {
  for (const TableId id : kCopied) compareTable(cut, id, report);
  for (const TableId id : kCopiedLast) compareTable(cut, id, report);
}

void checkCutRangeControl(const CutCase& cut, Report& report) {
  RngControlRec expected = cut.source.rng();
  expected.set(G::typeFlags, expected.get(G::typeFlags) | kTypeStateCut);
  expected.set(G::stateCutTimeStamp, cut.cut.rng().get(G::stateCutTimeStamp));
  compareControl(
      cut.cut.rng(), expected, File::Range, RuleId::CutRangeControl,
      [](std::size_t) { return false; }, report);
}

}  // namespace statecut::verify
