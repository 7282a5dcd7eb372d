// Types, stamps, and where the tables stand.

#include <algorithm>
#include <string>
#include <vector>

#include "verify/pairrules.h"

namespace statecut::verify {

namespace {

using R = RefControlRec;
using G = RngControlRec;

std::string span(std::uint64_t rba, std::uint64_t bytes) {
  return "bytes " + std::to_string(rba) + " to " + std::to_string(rba + bytes);
}

void checkOverlap(const Pair& pair, Report& report) {
  std::vector<TableId> order;
  for (std::size_t i = 0; i < kTables; ++i) {
    const auto id = static_cast<TableId>(i);
    if (pair.usable(id) && pair.place(id).bytes > 0) order.push_back(id);
  }
  std::sort(order.begin(), order.end(),
            [&](TableId a, TableId b) { return pair.place(a).rba < pair.place(b).rba; });
  const TablePlace* reach = nullptr;  // the table that ends last so far
  const char* reachName = "";
  for (const TableId id : order) {
    const TablePlace& place = pair.place(id);
    if (reach != nullptr && place.rba < reach->rba + reach->bytes)
      report.add(RuleId::TableOverlap, File::Reference, kNoRecord, place.rba,
                 std::string(tableDef(id).name) + " begins inside " + reachName);
    if (reach == nullptr || place.rba + place.bytes > reach->rba + reach->bytes) {
      reach = &place;
      reachName = tableDef(id).name;
    }
  }
}

// What a cut leaves out has no place, but for the offsets of streets and firms, whose fields stay.
void checkLeftOut(const Pair& pair, Report& report) {
  for (std::size_t i = 0; i < kTables; ++i) {
    const auto id = static_cast<TableId>(i);
    if (pair.place(id).carried || pair.place(id).rba == 0 || id == TableId::StreetRbos ||
        id == TableId::FirmRbos)
      continue;
    report.add(RuleId::TableBounds, File::Reference, kNoRecord, tableDefs()[i].rbaAt,
               std::string(tableDefs()[i].name) + " at " + std::to_string(pair.place(id).rba) +
                   ", a state cut does not hold it");
  }
}

}  // namespace

bool checkTypes(const Pair& pair, Report& report) {
  if (pair.refBytes().size() < R::size)
    report.add(RuleId::FileShort, File::Reference, kNoRecord, 0,
               std::to_string(pair.refBytes().size()) + " bytes, less than its control record");
  if (pair.rngBytes().size() < G::size)
    report.add(RuleId::FileShort, File::Range, kNoRecord, 0,
               std::to_string(pair.rngBytes().size()) + " bytes, less than its control record");
  if (!pair.holdsControlRecords()) return false;
  const std::uint32_t kBoth = kTypeReference | kTypeRange;
  const bool refOk = (pair.ref().get(R::typeFlags) & kBoth) == kTypeReference;
  const bool rngOk = (pair.rng().get(G::typeFlags) & kBoth) == kTypeRange;
  if (!refOk)
    report.add(RuleId::TypeFlags, File::Reference, kNoRecord, R::typeFlags.at,
               "not flagged as a reference database");
  if (!rngOk)
    report.add(RuleId::TypeFlags, File::Range, kNoRecord, G::typeFlags.at,
               "not flagged as a range database");
  return refOk && rngOk;
}

void checkStamps(const Pair& pair, Report& report) {
  if (pair.ref().get(R::buildTimeStamp) != pair.rng().get(G::buildTimeStamp))
    report.add(RuleId::StampBuild, File::Range, kNoRecord, G::buildTimeStamp.at,
               "build stamp " + std::to_string(pair.rng().get(G::buildTimeStamp)) +
                   ", the reference file has " + std::to_string(pair.ref().get(R::buildTimeStamp)));
  const bool rangeIsCut = (pair.rng().get(G::typeFlags) & kTypeStateCut) != 0;
  const std::uint32_t refStamp = pair.ref().get(R::stateCutTimeStamp);
  const std::uint32_t rngStamp = pair.rng().get(G::stateCutTimeStamp);
  if (pair.isCut() != rangeIsCut)
    report.add(RuleId::StampCut, File::Range, kNoRecord, G::typeFlags.at,
               rangeIsCut ? "a state cut, the reference file is not"
                          : "not a state cut, the reference file is");
  else if (refStamp != rngStamp)
    report.add(RuleId::StampCut, File::Range, kNoRecord, G::stateCutTimeStamp.at,
               "cut stamp " + std::to_string(rngStamp) + ", the reference file has " +
                   std::to_string(refStamp));
  else if (!rangeIsCut && refStamp != 0)
    report.add(RuleId::StampCut, File::Reference, kNoRecord, R::stateCutTimeStamp.at,
               "cut stamp " + std::to_string(refStamp) + " without the state cut flag");
}

void checkTables(const Pair& pair, Report& report) {
  for (std::size_t i = 0; i < kTables; ++i) {
    const TablePlace& place = pair.place(static_cast<TableId>(i));
    if (place.carried && !place.fits)
      report.add(RuleId::TableBounds, File::Reference, kNoRecord, tableDefs()[i].rbaAt,
                 std::string(tableDefs()[i].name) + ": " + span(place.rba, place.bytes) +
                     " of a file of " + std::to_string(pair.refBytes().size()));
  }
  checkOverlap(pair, report);
  if (pair.isCut()) checkLeftOut(pair, report);
}

void checkRangeAreas(const Pair& pair, Report& report) {
  // A cut keeps the source's areas.
  if (pair.isCut()) return;
  const RngControlRec& rng = pair.rng();
  const auto check = [&](const char* name, auto startField, auto bytesField) {
    const std::uint64_t start = rng.get(startField);
    const std::uint64_t bytes = rng.get(bytesField);
    if (bytes > 0 && (start < G::size || start + bytes > pair.rngBytes().size()))
      report.add(RuleId::RangeAreas, File::Range, kNoRecord, startField.at,
                 std::string(name) + ": " + span(start, bytes) + " of a file of " +
                     std::to_string(pair.rngBytes().size()));
  };
  check("SFH ZIP area", G::sfhZipStart, G::sfhZipBytes);
  check("SFH multi-ZIP area", G::sfhMultiZipStart, G::sfhMultiZipBytes);
  check("POB ZIP area", G::pobZipStart, G::pobZipBytes);
  check("POB multi-ZIP area", G::pobMultiZipStart, G::pobMultiZipBytes);
  check("RR ZIP area", G::rrZipStart, G::rrZipBytes);
  check("RR multi-ZIP area", G::rrMultiZipStart, G::rrMultiZipBytes);
}

}  // namespace statecut::verify
