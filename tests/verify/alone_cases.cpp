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

template <typename RowType>
RowType& row(PairBytes& pair, std::size_t rbaAt, std::size_t i) {
  return *reinterpret_cast<RowType*>(pair.table(rbaAt) + i * RowType::size);
}

void setRangeWord(PairBytes& pair, std::size_t at, std::uint32_t value) {
  le::put<4>(pair.rng.data() + at, value);
}

// First city multi-ZIP record with an SFH entry.
CityMultiZipRow& sfhRecord(PairBytes& pair) {
  std::size_t i = 1;
  const std::size_t count = pair.word(R::cityMultiZipRbasCount.at);
  const auto at = [&](std::size_t n) -> CityMultiZipRow& {
    return row<CityMultiZipRow>(pair, R::cityMultiZipRbasRba.at, n);
  };
  while (i + 1 < count &&
         (at(i).get(CityMultiZipRow::sfhZipCount) < 2 || at(i).get(CityMultiZipRow::sfhRba) == 0))
    ++i;
  return at(i);
}

// First hash slot of that many names or more.
HashSlotRow& slotOf(PairBytes& pair, std::uint32_t least, std::uint32_t most) {
  std::size_t i = 0;
  const std::size_t count = pair.word(R::hashTableCount.at);
  const auto at = [&](std::size_t n) -> HashSlotRow& {
    return row<HashSlotRow>(pair, R::hashTableRba.at, n);
  };
  while (i + 1 < count &&
         (at(i).get(HashSlotRow::count) < least || at(i).get(HashSlotRow::count) > most))
    ++i;
  return at(i);
}

void swapCityNames(Model& model) {
  std::size_t i = 1;
  while (model.cityNames[i].state != model.cityNames[i + 1].state ||
         model.cityNames[i].name == model.cityNames[i + 1].name)
    ++i;
  std::swap(model.cityNames[i], model.cityNames[i + 1]);
  const auto follow = [&](std::uint32_t& link) {
    if (link == i)
      link = static_cast<std::uint32_t>(i + 1);
    else if (link == i + 1)
      link = static_cast<std::uint32_t>(i);
  };
  for (auto& city : model.cityData) {
    follow(city.nameUsps);
    follow(city.nameStandard);
  }
}

void lengthenLastFirm(PairBytes& pair) {
  unsigned char* firms = pair.table(R::firmsRba.at);
  std::size_t last = 0;
  for (std::size_t at = 0; at < pair.word(R::firmsBytes.at); at += firms[at] + 1U) last = at;
  ++firms[last];
}

void swapPobSizes(PairBytes& pair) {
  unsigned char* sizes = pair.table(R::pobMultiZipBytesRba.at);
  std::swap_ranges(sizes, sizes + 6, sizes + 6);
}

// Six slots of 7 bytes become seven overflow entries of 6.
void giveSlotsToOverflow(PairBytes& pair) {
  pair.setWord(R::hashTableCount.at, pair.word(R::hashTableCount.at) - 6);
  pair.setWord(R::hashOverflowRba.at, pair.word(R::hashOverflowRba.at) - 42);
  pair.setWord(R::hashOverflowCount.at, pair.word(R::hashOverflowCount.at) + 7);
}

// The second and the third table in each other's place.
void swapPatterns(PairBytes& pair) {
  const std::uint32_t begin = pair.word(R::pobPatternsRba.at);
  const std::uint32_t middle = pair.word(R::rrPatternsRba.at);
  const std::uint32_t rrBytes = 18 * pair.word(R::rrPatternsCount.at);
  unsigned char* file = pair.ref.data();
  std::rotate(file + begin, file + middle, file + middle + rrBytes);
  pair.setWord(R::rrPatternsRba.at, begin);
  pair.setWord(R::pobPatternsRba.at, begin + rrBytes);
}

// The first list without its last entry, which belongs to no list then.
void shortenList(PairBytes& pair) {
  unsigned char* list = pair.table(R::streetPhoneticAmbDataRba.at);
  le::put<2>(list, le::get<2>(list) - 1U);
}

// The first city for which `is` holds.
template <typename Is>
CityDataRow& cityWith(PairBytes& pair, Is&& is) {
  std::size_t i = 1;
  while (!is(row<CityDataRow>(pair, R::cityDataRba.at, i))) ++i;
  return row<CityDataRow>(pair, R::cityDataRba.at, i);
}

// The first partition with bytes, one byte on: its last byte is then another's first.
void moveFirstPartition(PairBytes& pair) {
  std::size_t i = 1;
  while (row<ZipBytesRow>(pair, R::zipBytesRba.at, i).get(ZipBytesRow::sfhBytes) == 0) ++i;
  auto& zip = row<ZipDataRow>(pair, R::zipDataRba.at, i);
  zip.set(ZipDataRow::sfhRba, zip.get(ZipDataRow::sfhRba) + 1);
}

std::vector<Case> fileCases() {
  return {
      {RuleId::FileShort, {}, [](PairBytes& p) { p.ref.resize(R::size - 1); }},
      {RuleId::TypeFlags, {}, [](PairBytes& p) { p.setWord(R::typeFlags.at, kTypeRange); }},
      {RuleId::HeaderForm, {}, [](PairBytes& p) { p.rng[G::endianType.at] = 0; }},
      {RuleId::StampBuild, {}, [](PairBytes& p) { p.rng[G::buildTimeStamp.at] ^= 1; }},
      {RuleId::StampCut, {}, [](PairBytes& p) { setRangeWord(p, G::stateCutTimeStamp.at, 5); }},
      {RuleId::TableBounds,
       {},
       [](PairBytes& p) {
         p.setWord(R::countiesRba.at, static_cast<std::uint32_t>(p.ref.size()) - 1);
       }},
      {RuleId::TableOverlap,
       {},
       [](PairBytes& p) { p.setWord(R::countiesRba.at, p.word(R::countiesRba.at) - 1); }},
      {RuleId::TableFirst, {}, swapPatterns},
      {RuleId::TableGap, {}, [](PairBytes& p) { p.ref.push_back(0); }},
      {RuleId::RangeAreas,
       {},
       [](PairBytes& p) { setRangeWord(p, G::sfhZipBytes.at, 0x7FFFFFFF); }},
  };
}

std::vector<Case> zipCases() {
  return {
      {RuleId::ZipIndex, {}, [](PairBytes& p) { le::put<2>(p.table(R::zipIndexRba.at), 1); }},
      {RuleId::ZipRecord,
       {},
       [](PairBytes& p) {
         const auto& zip = row<ZipDataRow>(p, R::zipDataRba.at, 1);
         le::put<2>(p.table(R::zipIndexRba.at) + 2 * zip.get(ZipDataRow::zip), 0);
       }},
      {RuleId::ZipCities,
       {},
       [](PairBytes& p) {
         std::size_t i = 1;
         while (row<ZipDataRow>(p, R::zipDataRba.at, i).get(ZipDataRow::cityKeysCount) != 1) ++i;
         row<ZipDataRow>(p, R::zipDataRba.at, i).set(ZipDataRow::cityKey, 0xFFFF);
       }},
      {RuleId::ZipState,
       {},
       [](PairBytes& p) {
         row<ZipBytesRow>(p, R::zipBytesRba.at, 1).text(ZipBytesRow::state)[0] = 'Z';
       }},
      {RuleId::RangeBounds,
       {},
       [](PairBytes& p) {
         row<ZipDataRow>(p, R::zipDataRba.at, 1).set(ZipDataRow::sfhRba, 0xFFFFFF00);
       }},
      {RuleId::MultiZipLink,
       {},
       [](PairBytes& p) {
         row<CityDataRow>(p, R::cityDataRba.at, 1).set(CityDataRow::multiZipRbaKey, 0xFFFF);
       }},
      {RuleId::MultiZipKey,
       {},
       [](PairBytes& p) {
         sfhRecord(p).set(CityMultiZipRow::sfhKey, p.word(R::multiZipListsCount.at));
       }},
      {RuleId::MultiZipOrder, {}, swapPobSizes},
      {RuleId::MultiZipLists,
       {},
       [](PairBytes& p) {
         const std::uint32_t key = sfhRecord(p).get(CityMultiZipRow::sfhKey);
         le::put<2>(p.table(R::multiZipListsRba.at) + 2UL * key, 0xFFFF);
       }},
      {RuleId::MultiZipEntries, [](Model& m) { m.multiZipLists[0] = 1; }, {}},
      {RuleId::MultiZipOwner,
       {},
       [](PairBytes& p) {
         cityWith(p, [](const CityDataRow& city) {
           return city.get(CityDataRow::multiZipRbaKey) != 0;
         }).set(CityDataRow::multiZipRbaKey, 0);
       }},
      {RuleId::RangeLayout, {}, moveFirstPartition},
      {RuleId::RangeGap, {}, [](PairBytes& p) { p.rng.push_back(0); }},
      {RuleId::MultiZipBytes,
       {},
       [](PairBytes& p) { le::put<2>(p.table(R::pobMultiZipBytesRba.at), 0); }},
      {RuleId::MultiZipBounds,
       {},
       [](PairBytes& p) { sfhRecord(p).set(CityMultiZipRow::sfhRba, 0xFFFFFFF0); }},
  };
}

std::vector<Case> cityCases() {
  return {
      {RuleId::CityName,
       {},
       [](PairBytes& p) {
         row<CityNameRow>(p, R::cityNamesRba.at, 3).set(CityNameRow::nameLength, 29);
       }},
      {RuleId::CityOrder, swapCityNames, {}},
      {RuleId::CityKey, [](Model& m) { m.cityNames[2].cityKey = 60000; }, {}},
      {RuleId::CityLinks,
       {},
       [](PairBytes& p) {
         auto& city = row<CityDataRow>(p, R::cityDataRba.at, 1);
         const auto& other = row<CityDataRow>(p, R::cityDataRba.at, 2);
         city.set(CityDataRow::nameUsps, other.get(CityDataRow::nameUsps));
       }},
      {RuleId::CityZips,
       {},
       [](PairBytes& p) {
         auto& city = row<CityDataRow>(p, R::cityDataRba.at, 1);
         city.set(CityDataRow::zipCount, city.get(CityDataRow::zipCount) + 1U);
       }},
      {RuleId::CityFinance,
       {},
       [](PairBytes& p) {
         cityWith(p, [](const CityDataRow& city) {
           return city.get(CityDataRow::finMultiZipFlag) == 1;
         }).set(CityDataRow::finMultiZipFlag, 0);
       }},
      {RuleId::ByStateOrder,
       [](Model& m) { m.byState.emplace(m.cityNames.rbegin(), m.cityNames.rend() - 1); },
       {}},
      {RuleId::ByStateNames, {}, [](PairBytes& p) { ++*p.table(R::cityNamesByStateRba.at); }},
      {RuleId::PhoneticKey,
       {},
       [](PairBytes& p) {
         row<CityPhoneticRow>(p, R::cityPhoneticsRba.at, 2).set(CityPhoneticRow::keyLength, 20);
       }},
      {RuleId::PhoneticOrder,
       [](Model& m) { std::swap(m.cityPhonetics[1], m.cityPhonetics.back()); },
       {}},
  };
}

std::vector<Case> nameCases() {
  return {
      {RuleId::NamePacking, {}, lengthenLastFirm},
      {RuleId::StreetLinks, [](Model& m) { m.streetPhonetics[0].value = 1; }, {}},
      {RuleId::StreetLists, {}, shortenList},
      {RuleId::HashSize, {}, giveSlotsToOverflow},
      {RuleId::HashChain,
       {},
       [](PairBytes& p) {
         slotOf(p, 2, 255).set(HashSlotRow::number, p.word(R::hashOverflowCount.at));
       }},
      {RuleId::HashMissing, {}, [](PairBytes& p) { slotOf(p, 1, 1).set(HashSlotRow::count, 0); }},
      {RuleId::HashWrong,
       [](Model& m) {
         m.hash.extra.push_back({1, "NO SUCH STREET", 0});
       },
       {}},
  };
}

}  // namespace

std::uint32_t PairBytes::word(std::size_t at) const { return le::get<4>(ref.data() + at); }

void PairBytes::setWord(std::size_t at, std::uint32_t value) { le::put<4>(ref.data() + at, value); }

const std::vector<Case>& aloneCases() {
  static const std::vector<Case> cases = [] {
    std::vector<Case> all;
    for (const auto& family : {fileCases(), zipCases(), cityCases(), nameCases()})
      all.insert(all.end(), family.begin(), family.end());
    return all;
  }();
  return cases;
}

}  // namespace statecut::test
