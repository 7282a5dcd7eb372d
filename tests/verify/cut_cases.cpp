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

// The same table, once more at the end of the file.
void moveCounties(PairBytes& pair) {
  const unsigned char* from = pair.table(R::countiesRba.at);
  const Bytes copy(from, from + 32UL * pair.word(R::countiesCount.at));
  pair.setWord(R::countiesRba.at, static_cast<std::uint32_t>(pair.ref.size()));
  pair.ref.insert(pair.ref.end(), copy.begin(), copy.end());
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
      {RuleId::CutLayout, {}, moveCounties},
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
      {RuleId::CutFinance, {}, [](PairBytes& p) { p.table(R::finMultiZipRbasRba.at)[0] ^= 1; }},
      {RuleId::CutMultiZipPartitions, {}, [](PairBytes& p) { p.rng.back() ^= 1; }},
      {RuleId::CutNames,
       {},
       [](PairBytes& p) { p.table(R::cityNamesRba.at)[34 + CityNameRow::value.at] ^= 1; }},
      {RuleId::CutByState,
       {},
       [](PairBytes& p) { p.table(R::cityNamesByStateRba.at)[CityByStateRow::value.at] ^= 1; }},
      {RuleId::CutPhonetics, {}, [](PairBytes& p) { p.table(R::cityPhoneticsRba.at)[26] ^= 1; }},
      {RuleId::CutHash, {}, fillEmptySlot},
  };
  return cases;
}

}  // namespace statecut::test
