// Laws of what the files of a cut hold.

#include <algorithm>
#include <array>
#include <set>

#include "laws/comparing.h"
#include "laws/laws.h"
#include "tables/rows.h"

namespace statecut::test {

namespace {

using namespace builder;
using Ref = RefControlRec;

constexpr std::uint32_t kZipCodes = 100000;

template <typename RowType, std::size_t... At>
RowType without(RowType row, Num<At, 4>... fields) {
  (row.set(fields, 0), ...);
  return row;
}

// The bytes that a cut carries of a table.
struct Carried {
  const char* name;
  std::uint32_t (*rba)(const Pair&);
  std::uint64_t (*bytes)(const Pair&);
};

#define CARRIED(table, width, count)                              \
  {                                                               \
#table, [](const Pair& pair) { return pair.word(Ref::table); }, \
        [](const Pair& pair) { return std::uint64_t{width} * pair.word(Ref::count); } \
  }

const std::array<Carried, 23> kCarried = {{
    CARRIED(streetPatternsRba, 18, streetPatternsCount),
    CARRIED(pobPatternsRba, 18, pobPatternsCount),
    CARRIED(rrPatternsRba, 18, rrPatternsCount),
    CARRIED(streetNamesRba, 1, streetNamesBytes),
    CARRIED(firmsRba, 1, firmsBytes),
    CARRIED(cityMultiZipListsRba, 6, cityMultiZipListsCount),
    CARRIED(cityMultiFinanceListsRba, 2, cityMultiFinanceListsCount),
    CARRIED(zipMultiCityListsRba, 2, zipMultiCityListsCount),
    CARRIED(uniqueZipsRba, 12, uniqueZipsCount),
    CARRIED(countiesRba, 32, countiesCount),
    CARRIED(urbsRba, 32, urbsCount),
    CARRIED(urbMultiZipListsRba, 2, urbMultiZipListsCount),
    CARRIED(urbVariationsRba, 32, urbVariationsCount),
    CARRIED(streetPhoneticAmbDataRba, 1, streetPhoneticAmbDataBytes),
    CARRIED(streetPhoneticsRba, 1, streetPhoneticsBytes),
    CARRIED(streetPhoneticsRbosRba, 4, streetPhoneticsCount),
    CARRIED(streetStandardAmbDataRba, 1, streetStandardAmbDataBytes),
    CARRIED(streetStandardsRba, 1, streetStandardsBytes),
    CARRIED(streetStandardsRbosRba, 4, streetStandardsCount),
    CARRIED(generalDeliveryRba, 4, generalDeliveryCount),
    CARRIED(multiZipListsRba, 2, multiZipListsCount),
    // With all states these are as they were too: no name moves.
    CARRIED(hashTableRba, 7, hashTableCount),
    CARRIED(hashOverflowRba, 6, hashOverflowCount),
}};

#undef CARRIED

template <typename RowType, std::size_t RbaAt, std::size_t CountAt>
void sameBehindRecordZero(const Pair& from, const Pair& made, Num<RbaAt, 4> rba,
                          Num<CountAt, 4> count, const std::string& what, Breaches& breaches) {
  breaches.unless(made.word(count) == from.word(count), what + ": another count");
  const RowType blank{};
  if (from.row<RowType>(from.word(rba), 0).bytes != blank.bytes) occurred(Exception::kBlankRecord);
  breaches.unless(made.row<RowType>(made.word(rba), 0).bytes == blank.bytes, what + ": record 0");
  for (std::uint32_t i = 1; i < from.word(count); ++i)
    breaches.unless(
        made.row<RowType>(made.word(rba), i).bytes == from.row<RowType>(from.word(rba), i).bytes,
        numbered((what + ": record").c_str(), i));
}

template <typename RowType>
std::set<std::vector<unsigned char>> rows(const Pair& pair, std::uint32_t rba,
                                          std::uint32_t count) {
  std::set<std::vector<unsigned char>> found;
  for (std::uint32_t i = 0; i < count; ++i) {
    const RowType row = pair.row<RowType>(rba, i);
    found.emplace(row.bytes.begin(), row.bytes.end());
  }
  return found;
}

template <typename RowType, std::size_t RbaAt, std::size_t CountAt>
void compareUnion(const Pair& a, const Pair& b, const Pair& both, Num<RbaAt, 4> rba,
                  Num<CountAt, 4> count, std::uint32_t fewer, const char* what,
                  Breaches& breaches) {
  const auto of = [&](const Pair& pair) {
    return rows<RowType>(pair, pair.word(rba), pair.word(count) - fewer);
  };
  auto expected = of(a);
  expected.merge(of(b));
  breaches.unless(expected == of(both), what);
}

}  // namespace

std::string allStatesKeepEverything(const Source& source) {
  Breaches breaches;
  const CutRun run = cut(source.pair, States{});
  const Pair& made = run.made;
  breaches.unless(run.status == 0 && run.harm.empty(), numbered("status", run.status) + run.harm);
  if (run.status != 0) return breaches.text() + run.log;
  for (const Carried& table : kCarried) {
    const std::uint64_t bytes = table.bytes(source.pair);
    breaches.unless(table.bytes(made) == bytes, std::string(table.name) + ": another size");
    breaches.unless(made.refBytes(table.rba(made), bytes) ==
                        source.pair.refBytes(table.rba(source.pair), bytes),
                    std::string(table.name) + ": other bytes");
  }
  sameBehindRecordZero<CityNameRow>(source.pair, made, Ref::cityNamesRba, Ref::cityNamesCount,
                                    "city names", breaches);
  sameBehindRecordZero<CityPhoneticRow>(source.pair, made, Ref::cityPhoneticsRba,
                                        Ref::cityPhoneticsCount, "city phonetic keys", breaches);
  breaches.unless(namesByState(made) == namesByState(source.pair), "the names by state differ");
  const Selection all(source, {});
  for (std::uint32_t zip = 0; zip < kZipCodes; ++zip) {
    const std::uint32_t key = source.pair.zipKey(zip);
    const std::uint32_t expected = all.zipKept(key) ? key : 0;
    if (expected != key) occurred(Exception::kUnreachableZip);
    if (made.zipKey(zip) != expected) breaches.add(numbered("index of ZIP code", zip));
  }
  return breaches.text() + keptZipCodesKeepTheirPartitions(all, made) +
         sharedPartitionsAreKept(all, made) + namesAreThoseOfTheStates(all, made);
}

std::string cutIsNotCutAgain(const Pair& made, const States& list) {
  Breaches breaches;
  const CutRun again = cut(made, list);
  const bool without = made.word(Ref::zipDataCount) == 0;
  if (without) occurred(Exception::kCutAgain);
  breaches.unless(again.status == (without ? 0 : 255), numbered("status", again.status));
  const bool said =
      again.log.find("Could not read Reference db partition: Zip Bytes Table") != std::string::npos;
  breaches.unless(said != without, "the log:\n" + again.log);
  if (without) breaches.unless(again.made.rng.size() == RngControlRec::size, "other ranges");
  return breaches.text();
}

std::string keptZipCodesKeepTheirPartitions(const Selection& chosen, const Pair& made) {
  Breaches breaches;
  const Pair& from = chosen.source.pair;
  const std::vector<ZipRecord>& zips = chosen.source.model.zips;
  for (std::size_t key = 0; key < zips.size(); ++key) {
    const std::string what = numbered("ZIP key", key);
    const auto source = from.row<ZipDataRow>(from.word(Ref::zipDataRba), key);
    const auto copy = made.row<ZipDataRow>(made.word(Ref::zipDataRba), key);
    if (!chosen.zipKept(key)) {
      if (key == 0 && zips[key].zip != 0) occurred(Exception::kRecordZero);
      breaches.unless(copy.bytes == source.bytes, what + " is dropped and differs");
      if (key != 0) breaches.unless(made.zipKey(zips[key].zip) == 0, what + " is in the index");
      continue;
    }
    breaches.unless(made.zipKey(zips[key].zip) == key, what + " is not in the index");
    using Zip = ZipDataRow;
    breaches.unless(without(copy, Zip::sfhRba, Zip::pobRba, Zip::rrRba).bytes ==
                        without(source, Zip::sfhRba, Zip::pobRba, Zip::rrRba).bytes,
                    what + " has another record");
    const auto sizes = from.row<ZipBytesRow>(from.word(Ref::zipBytesRba), key);
    const auto compare = [&](auto rba, std::uint32_t bytes, const char* kind) {
      if (source.get(rba) == 0) return breaches.unless(copy.get(rba) == 0, what + kind + ": none");
      comparePartition(from, made, source, copy, rba, bytes, what + kind, breaches);
    };
    compare(Zip::sfhRba, sizes.get(ZipBytesRow::sfhBytes), " SFH");
    compare(Zip::pobRba, sizes.get(ZipBytesRow::pobBytes), " POB");
    compare(Zip::rrRba, sizes.get(ZipBytesRow::rrBytes), " RR");
  }
  return breaches.text();
}

std::string namesAreThoseOfTheStates(const Selection& chosen, const Pair& made) {
  Breaches breaches;
  const Pair& from = chosen.source.pair;
  std::uint32_t names = 1;
  for (std::size_t i = 0; i < chosen.names.size(); ++i) {
    if (chosen.names[i] == 0) continue;
    ++names;
    breaches.unless(made.row<CityNameRow>(made.word(Ref::cityNamesRba), chosen.names[i]).bytes ==
                        from.row<CityNameRow>(from.word(Ref::cityNamesRba), i).bytes,
                    numbered("city name", i));
  }
  breaches.unless(made.word(Ref::cityNamesCount) == names, "another count of city names");
  breaches.unless(namesByState(made) == namesByStateWithRepeats(from, chosen.states, names),
                  "other names by state");
  std::uint32_t phonetics = 1;
  for (std::size_t i = 0; i < chosen.phonetics.size(); ++i) {
    if (chosen.phonetics[i] == 0) continue;
    ++phonetics;
    breaches.unless(
        made.row<CityPhoneticRow>(made.word(Ref::cityPhoneticsRba), chosen.phonetics[i]).bytes ==
            from.row<CityPhoneticRow>(from.word(Ref::cityPhoneticsRba), i).bytes,
        numbered("city phonetic key", i));
  }
  breaches.unless(made.word(Ref::cityPhoneticsCount) == phonetics, "another count of phonetics");
  for (std::size_t c = 0; c < chosen.source.model.cityData.size(); ++c) {
    auto expected = from.row<CityDataRow>(from.word(Ref::cityDataRba), c);
    const auto copy = made.row<CityDataRow>(made.word(Ref::cityDataRba), c);
    for (const auto& field : {CityDataRow::nameUsps.at, CityDataRow::nameStandard.at}) {
      unsigned char* at = expected.bytes.data() + field;
      const std::uint32_t name = le::get<4>(at);
      const std::uint32_t moved = chosen.cityKept(c) ? chosen.names[name] : 0;
      if (moved == 0 && name != 0)
        occurred(chosen.cityKept(c) ? Exception::kNameOfDroppedState
                                    : Exception::kCityWithoutNames);
      le::put<4>(at, moved);
    }
    breaches.unless(copy.bytes == expected.bytes, numbered("city", c));
  }
  return breaches.text();
}

std::string unionKeepsWhatEitherKeeps(const Baseline& base, const States& others) {
  Breaches breaches;
  States all = base.list;
  for (const std::string& state : others)
    if (std::find(all.begin(), all.end(), state) == all.end()) all.push_back(state);
  const CutRun& first = base.run;
  const CutRun second = cut(base.pair, others);
  const CutRun both = cut(base.pair, all);
  for (const CutRun* run : {&first, &second, &both})
    if (run->status != 0) return numbered("  status", run->status) + "\n" + run->log;
  for (std::uint32_t zip = 0; zip < kZipCodes; ++zip)
    if (both.made.zipKey(zip) != std::max(first.made.zipKey(zip), second.made.zipKey(zip)))
      breaches.add(numbered("index of ZIP code", zip));
  compareUnion<CityNameRow>(first.made, second.made, both.made, Ref::cityNamesRba,
                            Ref::cityNamesCount, 0, "city names", breaches);
  compareUnion<CityByStateRow>(first.made, second.made, both.made, Ref::cityNamesByStateRba,
                               Ref::cityNamesCount, 1, "names by state", breaches);
  compareUnion<CityPhoneticRow>(first.made, second.made, both.made, Ref::cityPhoneticsRba,
                                Ref::cityPhoneticsCount, 0, "city phonetic keys", breaches);
  return breaches.text();
}

}  // namespace statecut::test
