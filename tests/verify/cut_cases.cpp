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

ZipDataRow& keptRecord(PairBytes& pair) {
  const std::size_t key = le::get<2>(pair.table(R::zipIndexRba.at) + 2 * firstKeptZip(pair));
  return *reinterpret_cast<ZipDataRow*>(pair.table(R::zipDataRba.at) + key * ZipDataRow::size);
}

// Two neighbours in each other's place.
void swapCountiesAndUrbs(PairBytes& pair) {
  unsigned char* counties = pair.table(R::countiesRba.at);
  unsigned char* urbs = pair.table(R::urbsRba.at);
  const std::uint32_t urbBytes = 32 * pair.word(R::urbsCount.at);
  std::rotate(counties, urbs, urbs + urbBytes);
  const std::uint32_t begin = pair.word(R::countiesRba.at);
  pair.setWord(R::urbsRba.at, begin);
  pair.setWord(R::countiesRba.at, begin + urbBytes);
}

// The place of an area that shares no partition.
void setUnusedArea(PairBytes& pair) {
  unsigned char* area = pair.table(R::finMultiZipRbasRba.at) + FinMultiZipRow::size;
  while (le::get<2>(area + FinMultiZipRow::zipCount.at) != 1) area += FinMultiZipRow::size;
  le::put<4>(area + FinMultiZipRow::rba.at, 1);
}

// The value of a name, in both tables that hold it.
void changeName(PairBytes& pair) {
  unsigned char* name = pair.table(R::cityNamesRba.at) + CityNameRow::size;
  unsigned char* byState = pair.table(R::cityNamesByStateRba.at);
  while (!std::equal(name + CityNameRow::name.at, name + CityNameRow::size,
                     byState + CityByStateRow::name.at))
    byState += CityByStateRow::size;
  name[CityNameRow::value.at] ^= 1;
  byState[CityByStateRow::value.at] ^= 1;
}

// A cut fills up with blank records.
void blankLastByState(PairBytes& pair) {
  unsigned char* table = pair.table(R::cityNamesByStateRba.at);
  const std::size_t count = pair.word(R::cityNamesCount.at) - 1;
  std::fill_n(table + (count - 1) * CityByStateRow::size, CityByStateRow::size, 0);
}

// An empty hash slot has bytes that no search reads.
void fillEmptySlot(PairBytes& pair) {
  unsigned char* slot = pair.table(R::hashTableRba.at);
  while (slot[0] != 0) slot += HashSlotRow::size;
  slot[HashSlotRow::number.at] ^= 1;
}

}  // namespace

const std::vector<Case>& cutCases() {
  static const std::vector<Case> cases = {
      {RuleId::CutControl, {}, [](PairBytes& p) { p.ref[R::trailing.at + 7] ^= 1; }},
      {RuleId::CutLayout, {}, swapCountiesAndUrbs},
      {RuleId::CutTables, {}, [](PairBytes& p) { p.table(R::countiesRba.at)[40] ^= 1; }},
      {RuleId::CutRangeControl,
       {},
       [](PairBytes& p) { p.rng[RngControlRec::trailing.at + 7] ^= 1; }},
      {RuleId::CutRangeLayout, {}, [](PairBytes& p) { p.rng.push_back(0); }},
      {RuleId::CutZips,
       {},
       [](PairBytes& p) { le::put<2>(p.table(R::zipIndexRba.at) + 2 * firstKeptZip(p), 0); }},
      {RuleId::CutZipRecords,
       {},
       [](PairBytes& p) { keptRecord(p).text(ZipDataRow::reserved40)[3] ^= 1; }},
      {RuleId::CutPartitions,
       {},
       [](PairBytes& p) { p.rng[keptRecord(p).get(ZipDataRow::sfhRba)] ^= 1; }},
      {RuleId::CutCityData,
       {},
       [](PairBytes& p) { p.table(R::cityDataRba.at)[36 + CityDataRow::reserved8.at] ^= 1; }},
      {RuleId::CutCityMultiZip,
       {},
       [](PairBytes& p) {
         p.table(R::cityMultiZipRbasRba.at)[28 + CityMultiZipRow::reserved2.at] ^= 1;
       }},
      {RuleId::CutFinance, {}, setUnusedArea},
      {RuleId::CutMultiZipPartitions, {}, [](PairBytes& p) { p.rng.back() ^= 1; }},
      {RuleId::CutNames, {}, changeName, {RuleId::CutByState}},
      {RuleId::CutByState, {}, blankLastByState},
      {RuleId::CutPhonetics, {}, [](PairBytes& p) { p.table(R::cityPhoneticsRba.at)[26] ^= 1; }},
      {RuleId::CutHash, {}, fillEmptySlot},
  };
  return cases;
}

}  // namespace statecut::test
