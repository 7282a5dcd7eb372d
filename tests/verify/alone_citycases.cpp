#include <algorithm>

#include "cases.h"
#include "dbfiles/controlrec.h"
#include "format/names.h"
#include "tables/rows.h"

namespace statecut::test {

namespace {

using builder::Model;
using verify::RuleId;
using R = RefControlRec;

Spot inCity(PairBytes& pair, std::size_t city, std::size_t at) {
  return inRecord(pair, R::cityDataRba.at, CityDataRow::size, city, at);
}

// Two names of a state in each other's place, and the links with them.
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

// The second of the two.
Spot swappedName(PairBytes& pair) {
  const auto less = [&](std::size_t i) {
    const auto text = [&](std::size_t n) {
      return row<CityNameRow>(pair, R::cityNamesRba.at, n).bytes.begin() + CityNameRow::state.at;
    };
    return std::lexicographical_compare(text(i), text(i) + 30, text(i - 1), text(i - 1) + 30);
  };
  std::size_t i = 2;
  while (!less(i)) ++i;
  return inRecord(pair, R::cityNamesRba.at, CityNameRow::size, i);
}

Spot lengthenLastFirm(PairBytes& pair) {
  unsigned char* firms = pair.table(R::firmsRba.at);
  std::size_t last = 0;
  std::int64_t record = -1;
  for (std::size_t at = 0; at < pair.word(R::firmsBytes.at); at += firms[at] + 1U, ++record)
    last = at;
  ++firms[last];
  return {pair.word(R::firmsRba.at) + last, record};
}

// Six slots of 7 bytes become seven overflow entries of 6.
Spot giveSlotsToOverflow(PairBytes& pair) {
  pair.setWord(R::hashTableCount.at, pair.word(R::hashTableCount.at) - 6);
  pair.setWord(R::hashOverflowRba.at, pair.word(R::hashOverflowRba.at) - 42);
  pair.setWord(R::hashOverflowCount.at, pair.word(R::hashOverflowCount.at) + 7);
  return {R::hashTableCount.at};
}

// The first list without its last entry, which belongs to no list then.
Spot shortenList(PairBytes& pair) {
  unsigned char* list = pair.table(R::streetPhoneticAmbDataRba.at);
  const std::uint32_t entries = le::get<2>(list) - 1U;
  le::put<2>(list, entries);
  std::size_t at = 2;
  for (std::uint32_t i = 0; i < entries; ++i) at += 5 + 2UL * list[at + 4];
  return {pair.word(R::streetPhoneticAmbDataRba.at) + at};
}

// First hash slot of that many names.
std::size_t slotOf(PairBytes& pair, std::uint32_t least, std::uint32_t most) {
  std::size_t i = 0;
  const auto count = [&] {
    return row<HashSlotRow>(pair, R::hashTableRba.at, i).get(HashSlotRow::count);
  };
  while (count() < least || count() > most) ++i;
  return i;
}

Spot inSlot(PairBytes& pair, std::size_t slot) {
  return inRecord(pair, R::hashTableRba.at, HashSlotRow::size, slot);
}

// A slot of one firm without it.
Spot dropFirm(PairBytes& pair) {
  const unsigned char* firm = pair.table(R::firmsRba.at);
  const auto slots = pair.word(R::hashTableCount.at);
  const auto slotAt = [&](std::size_t at) -> HashSlotRow& {
    const std::string_view name(reinterpret_cast<const char*>(firm + at + 1), firm[at]);
    return row<HashSlotRow>(pair, R::hashTableRba.at, format::nameHash(name, 0) & (slots - 1));
  };
  std::size_t at = 0;
  while (slotAt(at).get(HashSlotRow::count) != 1) at += firm[at] + 1U;
  slotAt(at).set(HashSlotRow::count, 0);
  return {pair.word(R::firmsRba.at) + at, static_cast<std::int64_t>(at)};
}

constexpr const char* kNoStreet = "NO SUCH STREET";

// Where the hash holds that street, at number 0.
Spot noStreet(PairBytes& pair) {
  const std::span<const unsigned char> ref(pair.ref);
  const format::HashView hash{
      ref.subspan(pair.word(R::hashTableRba.at), 7UL * pair.word(R::hashTableCount.at)),
      ref.subspan(pair.word(R::hashOverflowRba.at), 6UL * pair.word(R::hashOverflowCount.at))};
  const std::uint32_t value = format::nameHash(kNoStreet, 1);
  const std::uint32_t slot = hash.slotOf(value);
  Spot spot;
  format::forEachEntry(hash, slot, [&](const format::HashEntry& entry) {
    if (entry.number != 0 || entry.check != hash.checkOf(value, 1)) return false;
    spot.offset =
        entry.numberAt + pair.word(entry.inOverflow ? R::hashOverflowRba.at : R::hashTableRba.at);
    return true;
  });
  spot.record = slot;
  return spot;
}

}  // namespace

std::vector<Case> cityCases() {
  return {
      {RuleId::CityName,
       {},
       [](PairBytes& p) {
         row<CityNameRow>(p, R::cityNamesRba.at, 3).set(CityNameRow::nameLength, 29);
         return inRecord(p, R::cityNamesRba.at, CityNameRow::size, 3, CityNameRow::nameLength.at);
       }},
      {RuleId::CityOrder, swapCityNames, swappedName},
      {RuleId::CityKey, [](Model& m) { m.cityNames[2].cityKey = 60000; },
       [](PairBytes& p) { return inRecord(p, R::cityNamesRba.at, CityNameRow::size, 2); }},
      {RuleId::CityLinks,
       {},
       [](PairBytes& p) {
         const auto& other = row<CityDataRow>(p, R::cityDataRba.at, 2);
         row<CityDataRow>(p, R::cityDataRba.at, 1)
             .set(CityDataRow::nameUsps, other.get(CityDataRow::nameUsps));
         return inCity(p, 1, CityDataRow::nameUsps.at);
       }},
      {RuleId::CityZips,
       {},
       [](PairBytes& p) {
         auto& city = row<CityDataRow>(p, R::cityDataRba.at, 1);
         city.set(CityDataRow::zipCount, city.get(CityDataRow::zipCount) + 1U);
         return inCity(p, 1, CityDataRow::zipCount.at);
       }},
      {RuleId::CityFinance,
       {},
       [](PairBytes& p) {
         std::size_t i = 1;
         const auto city = [&]() -> CityDataRow& {
           return row<CityDataRow>(p, R::cityDataRba.at, i);
         };
         while (city().get(CityDataRow::finMultiZipFlag) != 1) ++i;
         city().set(CityDataRow::finMultiZipFlag, 0);
         return inCity(p, i, CityDataRow::finMultiZipFlag.at);
       }},
      {RuleId::ByStateOrder,
       [](Model& m) { m.byState.emplace(m.cityNames.rbegin(), m.cityNames.rend() - 1); },
       [](PairBytes& p) {
         return inRecord(p, R::cityNamesByStateRba.at, CityByStateRow::size, 1);
       }},
      {RuleId::ByStateNames,
       {},
       [](PairBytes& p) {
         ++*p.table(R::cityNamesByStateRba.at);
         return inRecord(p, R::cityNamesByStateRba.at, CityByStateRow::size, 0);
       }},
      {RuleId::PhoneticKey,
       {},
       [](PairBytes& p) {
         row<CityPhoneticRow>(p, R::cityPhoneticsRba.at, 2).set(CityPhoneticRow::keyLength, 20);
         return inRecord(p, R::cityPhoneticsRba.at, CityPhoneticRow::size, 2,
                         CityPhoneticRow::keyLength.at);
       }},
      {RuleId::PhoneticOrder,
       [](Model& m) { std::swap(m.cityPhonetics[1], m.cityPhonetics.back()); },
       [](PairBytes& p) { return inRecord(p, R::cityPhoneticsRba.at, CityPhoneticRow::size, 2); }},
  };
}

std::vector<Case> nameCases() {
  return {
      {RuleId::NamePacking, {}, lengthenLastFirm},
      {RuleId::StreetLinks, [](Model& m) { m.streetPhonetics[0].value = 1; },
       [](PairBytes& p) { return inRecord(p, R::streetPhoneticsRba.at, 0, 0); }},
      {RuleId::StreetLists, {}, shortenList},
      {RuleId::HashSize, {}, giveSlotsToOverflow},
      {RuleId::HashChain,
       {},
       [](PairBytes& p) {
         const std::size_t slot = slotOf(p, 2, 255);
         row<HashSlotRow>(p, R::hashTableRba.at, slot)
             .set(HashSlotRow::number, p.word(R::hashOverflowCount.at));
         return inSlot(p, slot);
       }},
      {RuleId::HashMissing, {}, dropFirm},
      {RuleId::HashWrong,
       [](Model& m) {
         m.hash.extra.push_back({1, kNoStreet, 0});
       },
       noStreet},
  };
}

}  // namespace statecut::test
