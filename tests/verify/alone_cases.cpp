#include <algorithm>

#include "cases.h"
#include "dbfiles/controlrec.h"
#include "tables/rows.h"

namespace statecut::test {

namespace {

using builder::Model;
using verify::RuleId;
using R = RefControlRec;
using G = RngControlRec;

void setRangeWord(PairBytes& pair, std::size_t at, std::uint32_t value) {
  le::put<4>(pair.rng.data() + at, value);
}

// First city multi-ZIP record with an SFH entry.
std::size_t sfhRecord(PairBytes& pair) {
  std::size_t i = 1;
  const std::size_t count = pair.word(R::cityMultiZipRbasCount.at);
  const auto at = [&](std::size_t n) -> CityMultiZipRow& {
    return row<CityMultiZipRow>(pair, R::cityMultiZipRbasRba.at, n);
  };
  while (i + 1 < count &&
         (at(i).get(CityMultiZipRow::sfhZipCount) < 2 || at(i).get(CityMultiZipRow::sfhRba) == 0))
    ++i;
  return i;
}

Spot sfhSpot(PairBytes& pair, std::size_t i) {
  return inRecord(pair, R::cityMultiZipRbasRba.at, CityMultiZipRow::size, i,
                  CityMultiZipRow::sfhZipCount.at);
}

Spot swapPobSizes(PairBytes& pair) {
  unsigned char* sizes = pair.table(R::pobMultiZipBytesRba.at);
  std::swap_ranges(sizes, sizes + 6, sizes + 6);
  return inRecord(pair, R::pobMultiZipBytesRba.at, 6, 1);
}

// The first POB size without its key, which the first record that has it misses.
Spot dropPobSize(PairBytes& pair) {
  unsigned char* size = pair.table(R::pobMultiZipBytesRba.at);
  const std::uint32_t key = le::get<2>(size);
  le::put<2>(size, 0);
  const auto at = [&](std::size_t n) -> CityMultiZipRow& {
    return row<CityMultiZipRow>(pair, R::cityMultiZipRbasRba.at, n);
  };
  std::size_t i = 1;
  while (at(i).get(CityMultiZipRow::pobZipCount) < 2 || at(i).get(CityMultiZipRow::pobRba) == 0 ||
         at(i).get(CityMultiZipRow::pobKey) != key)
    ++i;
  return inRecord(pair, R::cityMultiZipRbasRba.at, CityMultiZipRow::size, i,
                  CityMultiZipRow::pobZipCount.at);
}

// The second and the third table in each other's place.
Spot swapPatterns(PairBytes& pair) {
  const std::uint32_t begin = pair.word(R::pobPatternsRba.at);
  const std::uint32_t middle = pair.word(R::rrPatternsRba.at);
  const std::uint32_t rrBytes = 18 * pair.word(R::rrPatternsCount.at);
  unsigned char* file = pair.ref.data();
  std::rotate(file + begin, file + middle, file + middle + rrBytes);
  pair.setWord(R::rrPatternsRba.at, begin);
  pair.setWord(R::pobPatternsRba.at, begin + rrBytes);
  return {R::pobPatternsRba.at};
}

// The first partition with bytes, one byte on: the last byte is then the first of the next one.
Spot moveFirstPartition(PairBytes& pair) {
  std::size_t i = 1;
  while (row<ZipBytesRow>(pair, R::zipBytesRba.at, i).get(ZipBytesRow::sfhBytes) == 0) ++i;
  auto& zip = row<ZipDataRow>(pair, R::zipDataRba.at, i);
  const std::uint32_t end = zip.get(ZipDataRow::sfhRba) +
                            row<ZipBytesRow>(pair, R::zipBytesRba.at, i).get(ZipBytesRow::sfhBytes);
  zip.set(ZipDataRow::sfhRba, zip.get(ZipDataRow::sfhRba) + 1);
  while (row<ZipDataRow>(pair, R::zipDataRba.at, i).get(ZipDataRow::sfhRba) != end) ++i;
  return {inRecord(pair, R::zipDataRba.at, ZipDataRow::size, i, ZipDataRow::sfhRba.at).offset};
}

std::vector<Case> fileCases() {
  return {
      {RuleId::FileShort,
       {},
       [](PairBytes& p) {
         p.ref.resize(R::size - 1);
         return Spot{};
       }},
      {RuleId::TypeFlags,
       {},
       [](PairBytes& p) {
         p.setWord(R::typeFlags.at, kTypeRange);
         return Spot{R::typeFlags.at};
       }},
      {RuleId::HeaderForm,
       {},
       [](PairBytes& p) {
         p.rng[G::endianType.at] = 0;
         return inRange(G::endianType.at);
       }},
      {RuleId::StampBuild,
       {},
       [](PairBytes& p) {
         p.rng[G::buildTimeStamp.at] ^= 1;
         return inRange(G::buildTimeStamp.at);
       }},
      {RuleId::StampCut,
       {},
       [](PairBytes& p) {
         setRangeWord(p, G::stateCutTimeStamp.at, 5);
         return inRange(G::stateCutTimeStamp.at);
       }},
      {RuleId::TableBounds,
       {},
       [](PairBytes& p) {
         p.setWord(R::countiesRba.at, static_cast<std::uint32_t>(p.ref.size()) - 1);
         return Spot{R::countiesRba.at};
       }},
      {RuleId::TableOverlap,
       {},
       [](PairBytes& p) {
         p.setWord(R::countiesRba.at, p.word(R::countiesRba.at) - 1);
         return Spot{p.word(R::countiesRba.at)};
       }},
      {RuleId::TableFirst, {}, swapPatterns},
      {RuleId::TableGap,
       {},
       [](PairBytes& p) {
         p.ref.push_back(0);
         return Spot{p.ref.size() - 1};
       }},
      {RuleId::RangeAreas,
       {},
       [](PairBytes& p) {
         setRangeWord(p, G::sfhZipBytes.at, 0x7FFFFFFF);
         return inRange(G::sfhZipStart.at);
       }},
      {RuleId::RangeLayout, {}, moveFirstPartition},
      {RuleId::RangeGap,
       {},
       [](PairBytes& p) {
         p.rng.push_back(0);
         return inRange(p.rng.size() - 1);
       }},
  };
}

Spot inZip(PairBytes& pair, std::size_t key, std::size_t at = 0) {
  return inRecord(pair, R::zipDataRba.at, ZipDataRow::size, key, at);
}

std::vector<Case> zipCases() {
  return {
      {RuleId::ZipIndex,
       {},
       [](PairBytes& p) {
         le::put<2>(p.table(R::zipIndexRba.at), 1);
         return inRecord(p, R::zipIndexRba.at, 2, 0);
       }},
      {RuleId::ZipRecord,
       {},
       [](PairBytes& p) {
         const auto& zip = row<ZipDataRow>(p, R::zipDataRba.at, 1);
         le::put<2>(p.table(R::zipIndexRba.at) + 2 * zip.get(ZipDataRow::zip), 0);
         return inZip(p, 1);
       }},
      {RuleId::ZipCities,
       {},
       [](PairBytes& p) {
         std::size_t i = 1;
         while (row<ZipDataRow>(p, R::zipDataRba.at, i).get(ZipDataRow::cityKeysCount) != 1) ++i;
         row<ZipDataRow>(p, R::zipDataRba.at, i).set(ZipDataRow::cityKey, 0xFFFF);
         return inZip(p, i);
       }},
      {RuleId::ZipState,
       {},
       [](PairBytes& p) {
         row<ZipBytesRow>(p, R::zipBytesRba.at, 1).text(ZipBytesRow::state)[0] = 'Z';
         return inRecord(p, R::zipBytesRba.at, ZipBytesRow::size, 1);
       }},
      {RuleId::RangeBounds,
       {},
       [](PairBytes& p) {
         row<ZipDataRow>(p, R::zipDataRba.at, 1).set(ZipDataRow::sfhRba, 0xFFFFFF00);
         return inZip(p, 1, ZipDataRow::sfhRba.at);
       }},
  };
}

std::vector<Case> multiZipCases() {
  return {
      {RuleId::MultiZipLink,
       {},
       [](PairBytes& p) {
         row<CityDataRow>(p, R::cityDataRba.at, 1).set(CityDataRow::multiZipRbaKey, 0xFFFF);
         return inRecord(p, R::cityDataRba.at, CityDataRow::size, 1,
                         CityDataRow::multiZipRbaKey.at);
       }},
      {RuleId::MultiZipKey,
       {},
       [](PairBytes& p) {
         const std::size_t i = sfhRecord(p);
         row<CityMultiZipRow>(p, R::cityMultiZipRbasRba.at, i)
             .set(CityMultiZipRow::sfhKey, p.word(R::multiZipListsCount.at));
         return sfhSpot(p, i);
       }},
      {RuleId::MultiZipOrder, {}, swapPobSizes},
      {RuleId::MultiZipLists,
       {},
       [](PairBytes& p) {
         const std::size_t i = sfhRecord(p);
         const std::uint32_t key =
             row<CityMultiZipRow>(p, R::cityMultiZipRbasRba.at, i).get(CityMultiZipRow::sfhKey);
         le::put<2>(p.table(R::multiZipListsRba.at) + 2UL * key, 0xFFFF);
         return sfhSpot(p, i);
       }},
      {RuleId::MultiZipEntries, [](Model& m) { m.multiZipLists[0] = 1; },
       [](PairBytes& p) { return inRecord(p, R::multiZipListsRba.at, 2, 0); }},
      {RuleId::MultiZipOwner,
       {},
       [](PairBytes& p) {
         std::size_t i = 1;
         while (row<CityDataRow>(p, R::cityDataRba.at, i).get(CityDataRow::multiZipRbaKey) == 0)
           ++i;
         auto& city = row<CityDataRow>(p, R::cityDataRba.at, i);
         const std::size_t key = city.get(CityDataRow::multiZipRbaKey);
         city.set(CityDataRow::multiZipRbaKey, 0);
         return inRecord(p, R::cityMultiZipRbasRba.at, CityMultiZipRow::size, key);
       }},
      {RuleId::MultiZipBytes, {}, dropPobSize},
      {RuleId::MultiZipBounds,
       {},
       [](PairBytes& p) {
         const std::size_t i = sfhRecord(p);
         row<CityMultiZipRow>(p, R::cityMultiZipRbasRba.at, i)
             .set(CityMultiZipRow::sfhRba, 0xFFFFFFF0);
         return sfhSpot(p, i);
       }},
  };
}

}  // namespace

std::uint32_t PairBytes::word(std::size_t at) const { return le::get<4>(ref.data() + at); }

Spot inRecord(const PairBytes& pair, std::size_t rbaAt, std::size_t width, std::size_t i,
              std::size_t at) {
  return {pair.word(rbaAt) + i * width + at, static_cast<std::int64_t>(i)};
}

void PairBytes::setWord(std::size_t at, std::uint32_t value) { le::put<4>(ref.data() + at, value); }

const std::vector<Case>& aloneCases() {
  static const std::vector<Case> cases = [] {
    std::vector<Case> all;
    for (const auto& family : {fileCases(), zipCases(), multiZipCases(), cityCases(), nameCases()})
      all.insert(all.end(), family.begin(), family.end());
    return all;
  }();
  return cases;
}

}  // namespace statecut::test
