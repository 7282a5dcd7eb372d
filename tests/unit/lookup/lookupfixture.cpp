#include "lookupfixture.h"

#include <algorithm>

#include "base/memory.h"
#include "tables/dbapi.h"

namespace statecut::test {

namespace {

constexpr std::uint32_t kSlots = 64;

std::uint32_t hashOf(std::string_view key, std::uint32_t type) {
  std::uint32_t hash = 0x811C9DC5u + type;
  for (auto at = key.rbegin(); at != key.rend(); ++at)
    hash = (hash * 16777619u) ^ (static_cast<unsigned char>(*at) - 32u);
  return hash;
}

}  // namespace

Pack& Pack::number(std::uint32_t value, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i)
    bytes_.push_back(static_cast<unsigned char>(value >> (8 * i)));
  return *this;
}

Pack& Pack::text(std::string_view text, std::size_t width) {
  bytes_.insert(bytes_.end(), text.begin(), text.end());
  return zeros(width - text.size());
}

Pack& Pack::name(std::string_view text) {
  return number(static_cast<std::uint32_t>(text.size()), 1).Pack::text(text, text.size());
}

Pack& Pack::zeros(std::size_t count) {
  bytes_.insert(bytes_.end(), count, 0);
  return *this;
}

Pack cityName(std::uint32_t key, std::uint32_t value, std::string_view state,
              std::string_view name) {
  const auto length = static_cast<std::uint32_t>(name.size());
  return Pack().number(key, 2).number(value, 1).number(length, 1).text(state, 2).text(name, 28);
}

Pack phonetic(std::string_view state, std::string_view code, std::uint32_t count) {
  const auto length = static_cast<std::uint32_t>(code.size());
  return Pack().zeros(2).text(state, 2).text(code, 20).number(count, 1).number(length, 1);
}

LookupFixture::LookupFixture() {
  emptySlots();
  dbGetZipIndex = nullptr;
  dbFindCity = nullptr;
  dbFindTruncCity = nullptr;
  dbFindCityPh = nullptr;
  findStreetVartn = nullptr;
  streetPhnVariation = {};
  streetStdVariation = {};
}

LookupFixture::~LookupFixture() {
  chFreeStageBuffer();
  chFreeCache(&block_.refCache);
  emptySlots();
}

std::uint32_t LookupFixture::table(std::size_t rbaWord, const Bytes& bytes) {
  const auto rba = static_cast<std::uint32_t>(file_.size());
  word(rbaWord, rba);
  file_.insert(file_.end(), bytes.begin(), bytes.end());
  return rba;
}

void LookupFixture::named(std::string_view key, std::uint32_t type, std::uint32_t number) {
  names_.push_back({std::string(key), type, number});
}

void LookupFixture::writeIndex() {
  Pack slots;
  Pack overflow;
  std::uint32_t overflowed = 0;
  for (std::uint32_t slot = 0; slot < kSlots; ++slot) {
    std::vector<Named> here;
    std::copy_if(names_.begin(), names_.end(), std::back_inserter(here), [&](const Named& one) {
      return (hashOf(one.key, one.type) & (kSlots - 1)) == slot;
    });
    const auto check = [](const Named& one) {
      return one.type | ((hashOf(one.key, one.type) & ~(kSlots - 1)) >> 16);
    };
    slots.number(static_cast<std::uint32_t>(here.size()), 1);
    if (here.size() == 1) {
      slots.number(check(here[0]), 2).number(here[0].number, 4);
      continue;
    }
    slots.number(0, 2).number(here.empty() ? 0 : overflowed, 4);
    for (const Named& one : here) overflow.number(check(one), 2).number(one.number, 4);
    overflowed += static_cast<std::uint32_t>(here.size());
  }
  table(RefControlRec::hashTableRba.at, slots);
  word(RefControlRec::hashTableCount.at, kSlots);
  table(RefControlRec::hashOverflowRba.at, overflow);
  word(RefControlRec::hashOverflowCount.at, overflowed);
}

void LookupFixture::open(const std::string& name) {
  writeIndex();
  proc_.files->reference = holding(file_, name);
  if (proc_.refControlRec == nullptr)
    proc_.refControlRec = static_cast<RefControlRec*>(allocTable(RefControlRec::size));
  std::copy_n(file_.begin(), RefControlRec::size, proc_.refControlRec->bytes.begin());
}

void LookupFixture::load() {
  for (TableReader* reader :
       {dbReadCityData, dbReadCityNames, dbReadCityPhonetics, dbReadZipData, dbReadMultiZipTable,
        dbReadStreetNames, dbReadStreetPhonetics, dbReadStreetStndrdzd, dbReadFirmNames,
        dbReadGenDelivery, dbReadHashedNames})
    ASSERT_EQ(reader(proc_.files->reference, proc_.refControlRec, &proc_), 0);
  records();
}

void LookupFixture::buildCache(std::uint32_t blockSize, std::int32_t entries) {
  proc_.cache = &block_;
  chFreeCache(&block_.refCache);
  block_.refCache = chConstructCache(blockSize, entries);
  ASSERT_NE(block_.refCache, nullptr);
}

void LookupFixture::emptySlots() {
  for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
    const bool pointer = slot != kSlotHashMask && slot != kSlotMilitaryHeader &&
                         slot != kSlotMilitarySecond && slot != kSlotPobZoneCount;
    if (pointer) freeTable(refPointers[slot].table);
  }
  refPointers = {};
}

SmallDatabase::SmallDatabase() {
  using Ref = RefControlRec;
  // Counts include the dummy record 0. ZIPs: key 1 has a city of its own, 2 a list, 3 no list, 4 a
  // list behind the end.
  Pack zips = Pack().zeros(52);
  const auto zip = [&](std::uint32_t code, std::uint32_t own, std::uint32_t index,
                       std::uint32_t count, std::uint32_t finance) {
    zips.number(code, 4).zeros(26).number(own, 2).number(index, 4).number(count, 1).zeros(1);
    zips.number(finance, 2).zeros(12);
  };
  zip(1, 0x1234, 2, 1, 0);
  zip(73301, 0, 2, 3, 1);
  zip(501, 0, 0, 2, 2);
  zip(99999, 0, 6, 2, 4);
  table(Ref::zipDataRba.at, zips);
  word(Ref::zipDataCount.at, 5);
  Bytes index(200000);
  const auto entry = [&](std::size_t code, std::uint32_t key) {
    index[2 * code] = static_cast<unsigned char>(key);
    index[2 * code + 1] = static_cast<unsigned char>(key >> 8);
  };
  entry(1, 1);
  entry(73301, 2);
  entry(501, 3);
  entry(99999, 4);
  entry(600, 6);  // above the count
  table(Ref::zipIndexRba.at, index);
  table(Ref::zipMultiCityListsRba.at,
        Pack().number(0, 2).number(11, 2).number(12, 2).number(13, 2).number(14, 2).zeros(10));
  word(Ref::zipMultiCityListsCount.at, 5);
  table(Ref::finMultiZipRbasRba.at,
        Pack().zeros(8).number(3, 2).number(1, 2).number(1000, 4).number(4, 2).number(2, 2).number(
            2000, 4));
  word(Ref::finMultiZipRbasCount.at, 3);
  Pack lists;
  for (std::uint32_t i = 0; i < 16; ++i) lists.number(100 + i, 2);
  table(Ref::multiZipListsRba.at, lists);
  word(Ref::multiZipListsCount.at, 8);

  // Cities, sorted by state, then name, after a blank record.
  Bytes names = Pack().zeros(34);
  const auto city = [&](std::uint32_t key, std::uint32_t value, std::string_view state,
                        std::string_view name) {
    named(std::string(state) + std::string(name), 2, static_cast<std::uint32_t>(names.size() / 34));
    const Bytes bytes = cityName(key, value, state, name);
    names.insert(names.end(), bytes.begin(), bytes.end());
  };
  city(1, 0, "AZ", "SPRINGFIELD");
  city(1, 7, "TX", "AUSTIN");
  city(2, 0, "TX", "SPRING");
  city(3, 0, "TX", "SPRINGFIELD");
  city(9, 5, "TX", "WACO");  // its key is above the city data
  city(0, 0, "TX", "ZAVALLA");
  table(Ref::cityNamesRba.at, names);
  word(Ref::cityNamesCount.at, 7);
  Pack data = Pack().number(0xAAAA, 4).zeros(32);
  for (std::uint32_t i = 1; i < 4; ++i)
    data.number(i, 4).zeros(26).number(i == 3 ? 0 : 2 * i - 1, 2).zeros(4);
  table(Ref::cityDataRba.at, data);
  word(Ref::cityDataCount.at, 4);
  table(Ref::cityMultiZipListsRba.at,
        Pack().zeros(6).text("zip 1 ", 6).text("zip 2 ", 6).text("zip 3 ", 6));
  word(Ref::cityMultiZipListsCount.at, 4);
  table(Ref::cityMultiFinanceListsRba.at, Pack().number(0, 2).number(21, 2).number(22, 2));
  word(Ref::cityMultiFinanceListsCount.at, 3);
  table(Ref::cityMultiZipRbasRba.at, Pack().zeros(28).number(2, 2).zeros(26));
  word(Ref::cityMultiZipRbasCount.at, 2);
  table(Ref::cityPhoneticsRba.at, [] {
    Bytes all = Pack().zeros(26);
    for (const Bytes& one : {Bytes(phonetic("TX", "ASTN", 12)), Bytes(phonetic("TX", "WK", 9))})
      all.insert(all.end(), one.begin(), one.end());
    return all;
  }());
  word(Ref::cityPhoneticsCount.at, 3);
  named("TXASTN", 5, 1);
  named("TXWK", 5, 2);

  // Streets: ALPHA at 0, BETA at 6; the variations of MAIN.
  table(Ref::streetNamesRba.at, Pack().name("ALPHA").name("BETA").number(0xFF, 1));
  word(Ref::streetNamesBytes.at, 12);
  named("ALPHA", 1, 0);
  named("BETA", 1, 6);
  table(Ref::streetPhoneticsRba.at,
        Pack().number(6, 4).name("MN").number(2, 4).number(0x82, 1).text("BT", 2));
  word(Ref::streetPhoneticsBytes.at, 14);
  word(Ref::streetPhoneticsCount.at, 2);
  named("MN", 4, 0);
  named("BT", 4, 7);
  // Three streets: everywhere, in 750 and 751, in 752.
  const Pack list = Pack()
                        .zeros(2)
                        .number(3, 2)
                        .number(61, 4)
                        .number(0, 1)
                        .number(62, 4)
                        .number(2, 1)
                        .number(750, 2)
                        .number(751, 2)
                        .number(63, 4)
                        .number(1, 1)
                        .number(752, 2);
  table(Ref::streetPhoneticAmbDataRba.at, list);
  word(Ref::streetPhoneticAmbDataBytes.at, static_cast<std::uint32_t>(Bytes(list).size()));
  table(Ref::streetStandardsRba.at, Pack().number(42, 4).name("MAIN"));
  word(Ref::streetStandardsBytes.at, 9);
  word(Ref::streetStandardsCount.at, 1);
  table(Ref::streetStandardAmbDataRba.at, Pack().zeros(2));
  word(Ref::streetStandardAmbDataBytes.at, 2);
  named("MAIN", 3, 0);

  const std::string longFirm(40, 'F');
  table(Ref::firmsRba.at, Pack().name("ACME").name(longFirm));
  word(Ref::firmsBytes.at, 46);
  named("ACME", 0, 0);
  named(longFirm, 0, 5);
  table(Ref::generalDeliveryRba.at, Pack().zeros(4).text("gd 1", 4).text("gd 2", 4));
  word(Ref::generalDeliveryCount.at, 2);
}

std::vector<std::uint32_t> keysOf(const KeyRow* keys, std::size_t count) {
  std::vector<std::uint32_t> found;
  for (std::size_t i = 0; i < count; ++i) found.push_back(keys[i].get(KeyRow::key));
  return found;
}

std::string nameOf(const CityNameRow* record) {
  if (record == nullptr) return "null";
  const auto text = record->get(CityNameRow::name);
  return std::string(text.begin(), text.begin() + record->get(CityNameRow::nameLength));
}

}  // namespace statecut::test
