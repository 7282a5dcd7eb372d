#include <algorithm>

#include "cases.h"
#include "dbfiles/controlrec.h"
#include "tables/rows.h"

namespace statecut::test {

namespace {

using verify::RuleId;
using R = RefControlRec;

// The first ZIP record that the index of the cut leads to.
std::size_t firstKeptZip(PairBytes& pair) {
  const unsigned char* index = pair.table(R::zipIndexRba.at);
  std::size_t zip = 0;
  while (zip + 1 < 100000 && le::get<2>(index + 2 * zip) == 0) ++zip;
  return zip;
}

std::size_t keptKey(PairBytes& pair) {
  return le::get<2>(pair.table(R::zipIndexRba.at) + 2 * firstKeptZip(pair));
}
ZipDataRow& keptRecord(PairBytes& pair) {
  return row<ZipDataRow>(pair, R::zipDataRba.at, keptKey(pair));
}

// Two neighbours in each other's place.
Spot swapCountiesAndUrbs(PairBytes& pair) {
  unsigned char* counties = pair.table(R::countiesRba.at);
  unsigned char* urbs = pair.table(R::urbsRba.at);
  const std::uint32_t urbBytes = 32 * pair.word(R::urbsCount.at);
  std::rotate(counties, urbs, urbs + urbBytes);
  const std::uint32_t begin = pair.word(R::countiesRba.at);
  pair.setWord(R::urbsRba.at, begin);
  pair.setWord(R::countiesRba.at, begin + urbBytes);
  return {R::countiesRba.at};
}

// The place of an area that shares no partition.
Spot setUnusedArea(PairBytes& pair) {
  std::size_t i = 1;
  const auto area = [&]() -> FinMultiZipRow& {
    return row<FinMultiZipRow>(pair, R::finMultiZipRbasRba.at, i);
  };
  while (area().get(FinMultiZipRow::zipCount) != 1) ++i;
  area().set(FinMultiZipRow::rba, 1);
  return inRecord(pair, R::finMultiZipRbasRba.at, FinMultiZipRow::size, i, FinMultiZipRow::rba.at);
}

// The value of a name, in both tables that hold it.
Spot changeName(PairBytes& pair) {
  unsigned char* name = pair.table(R::cityNamesRba.at) + CityNameRow::size;
  unsigned char* byState = pair.table(R::cityNamesByStateRba.at);
  while (!std::equal(name + CityNameRow::name.at, name + CityNameRow::size,
                     byState + CityByStateRow::name.at))
    byState += CityByStateRow::size;
  name[CityNameRow::value.at] ^= 1;
  byState[CityByStateRow::value.at] ^= 1;
  return inRecord(pair, R::cityNamesRba.at, CityNameRow::size, 1, CityNameRow::value.at);
}

// A cut fills up with blank records.
Spot blankLastByState(PairBytes& pair) {
  unsigned char* table = pair.table(R::cityNamesByStateRba.at);
  const std::size_t count = pair.word(R::cityNamesCount.at) - 1;
  std::fill_n(table + (count - 1) * CityByStateRow::size, CityByStateRow::size, 0);
  return {pair.word(R::cityNamesByStateRba.at)};
}

// An empty hash slot has bytes that no search reads.
Spot fillEmptySlot(PairBytes& pair) {
  std::size_t i = 0;
  const unsigned char* slots = pair.table(R::hashTableRba.at);
  while (slots[i * HashSlotRow::size] != 0) ++i;
  pair.table(R::hashTableRba.at)[i * HashSlotRow::size + HashSlotRow::number.at] ^= 1;
  return inRecord(pair, R::hashTableRba.at, HashSlotRow::size, i);
}

// One bit of a record.
Spot flip(PairBytes& pair, std::size_t rbaAt, std::size_t width, std::size_t i, std::size_t at) {
  pair.table(rbaAt)[i * width + at] ^= 1;
  return inRecord(pair, rbaAt, width, i, at);
}

// The last byte of the range file is in the partition of the RR key that is the highest.
Spot damageLastPartition(PairBytes& pair) {
  pair.rng.back() ^= 1;
  std::size_t last = 0;
  std::uint32_t rba = 0;
  for (std::size_t i = 1; i < pair.word(R::cityMultiZipRbasCount.at); ++i) {
    const auto& one = row<CityMultiZipRow>(pair, R::cityMultiZipRbasRba.at, i);
    const std::uint32_t at = one.get(CityMultiZipRow::rrRba);
    if (one.get(CityMultiZipRow::rrZipCount) < 2 || at <= rba || at >= pair.rng.size()) continue;
    last = i;
    rba = at;
  }
  return {pair.rng.size() - 1, static_cast<std::int64_t>(last), verify::File::Range};
}

}  // namespace

const std::vector<Case>& cutCases() {
  static const std::vector<Case> cases = {
      {RuleId::CutControl,
       {},
       [](PairBytes& p) {
         p.ref[R::trailing.at + 7] ^= 1;
         return Spot{R::trailing.at + 7};
       }},
      {RuleId::CutLayout, {}, swapCountiesAndUrbs},
      {RuleId::CutTables, {}, [](PairBytes& p) { return flip(p, R::countiesRba.at, 32, 1, 8); }},
      {RuleId::CutRangeControl,
       {},
       [](PairBytes& p) {
         p.rng[RngControlRec::trailing.at + 7] ^= 1;
         return inRange(RngControlRec::trailing.at + 7);
       }},
      {RuleId::CutRangeLayout,
       {},
       [](PairBytes& p) {
         p.rng.push_back(0);
         return inRange(p.rng.size() - 1);
       }},
      {RuleId::CutZips,
       {},
       [](PairBytes& p) {
         const std::size_t zip = firstKeptZip(p);
         le::put<2>(p.table(R::zipIndexRba.at) + 2 * zip, 0);
         return inRecord(p, R::zipIndexRba.at, 2, zip);
       }},
      {RuleId::CutZipRecords,
       {},
       [](PairBytes& p) {
         return flip(p, R::zipDataRba.at, ZipDataRow::size, keptKey(p),
                     ZipDataRow::reserved40.at + 3);
       }},
      {RuleId::CutPartitions,
       {},
       [](PairBytes& p) {
         const std::uint32_t at = keptRecord(p).get(ZipDataRow::sfhRba);
         p.rng[at] ^= 1;
         return Spot{at, static_cast<std::int64_t>(keptKey(p)), verify::File::Range};
       }},
      {RuleId::CutCityData,
       {},
       [](PairBytes& p) {
         return flip(p, R::cityDataRba.at, CityDataRow::size, 1, CityDataRow::reserved8.at);
       }},
      {RuleId::CutCityMultiZip,
       {},
       [](PairBytes& p) {
         return flip(p, R::cityMultiZipRbasRba.at, CityMultiZipRow::size, 1,
                     CityMultiZipRow::reserved2.at);
       }},
      {RuleId::CutFinance, {}, setUnusedArea},
      {RuleId::CutMultiZipPartitions, {}, damageLastPartition},
      {RuleId::CutNames, {}, changeName, {RuleId::CutByState}},
      {RuleId::CutByState, {}, blankLastByState},
      {RuleId::CutPhonetics,
       {},
       [](PairBytes& p) { return flip(p, R::cityPhoneticsRba.at, CityPhoneticRow::size, 1, 0); }},
      {RuleId::CutHash, {}, fillEmptySlot},
  };
  return cases;
}

}  // namespace statecut::test
