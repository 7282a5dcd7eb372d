#include "dbbuilder/writer.h"
#include "support/randomdb_oddity.h"

namespace statecut::test {

using namespace builder;

namespace {

// Indexes each name by as many bytes as its length says, those of the records behind it included.
void indexAsMeasured(Model& model) {
  const ReferenceFile file = referenceFile(model);
  const auto add = [&](Table table, std::size_t record, std::size_t name, std::size_t lengthAt,
                       unsigned type, std::size_t count) {
    const std::size_t start = file.place(table).rba;
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t at = start + record * i;
      std::string text(std::size_t{file.bytes[at + lengthAt]} + 2, '\0');
      const std::size_t end = start + record * count;
      for (std::size_t k = 0; k < text.size() && at + name + k < end; ++k)
        text[k] = static_cast<char>(file.bytes[at + name + k]);
      model.hash.extra.push_back({type, text, sizeOf(i)});
    }
  };
  add(Table::CityNames, 34, 4, 3, 2, model.cityNames.size());
  add(Table::CityPhonetics, 26, 2, 25, 5, model.cityPhonetics.size());
}

}  // namespace

const std::vector<Oddity>& zipOddities() {
  static const std::vector<Oddity> oddities = {
      {"a ZIP code above 99999",
       [](Model& m, const States&, Random& r) {
         const bool all = r.percent(40);
         for (ZipRecord& zip : m.zips)
           if (all || r.percent(30)) zip.zip = anyOf({100000, 0xFFFFFFFF}, r);
         m.zipIndex.emplace(100000);
       }},
      {"ZIP record 0 in a selected state",
       [](Model& m, const States& s, Random& r) {
         m.zipBytes.front().state = pick(s, r);
         if (r.percent(50)) m.zips.front().zip = pick(m.zips, r).zip;
       }},
      {"ZIP code 00000", [](Model& m, const States&, Random&) { m.zips.back().zip = 0; }},
      {"a ZIP code twice",
       [](Model& m, const States&, Random& r) { anyRecord(m.zips, r)->zip = pick(m.zips, r).zip; }},
      {"a lower-case state in the database",
       [](Model& m, const States&, Random& r) { anyRecord(m.zipBytes, r)->state = "tx"; }},
      {"a negative partition size",
       [](Model& m, const States&, Random& r) {
         ZipBytes* bytes = anyRecord(m.zipBytes, r);
         (r.percent(50) ? bytes->sfh : bytes->rr) = anyOf({0x80000000, 0xFFFFFFFF, 0xFFFFF000}, r);
       }},
      {"partition sizes unlike the partitions",
       [](Model& m, const States&, Random& r) {
         for (ZipBytes& bytes : m.zipBytes) {
           if (r.percent(30)) bytes.sfh = r.below(20000);
           if (r.percent(30)) bytes.rr = r.below(20000);
           if (r.percent(30)) bytes.pob = r.below(65536);
         }
       }},
      {"partition RBAs anywhere",
       [](Model& m, const States&, Random& r) {
         for (ZipRecord& zip : m.zips) {
           if (r.percent(30)) zip.sfhRba = r.below(30000);
           if (r.percent(30)) zip.pobRba = anyOf({0, 1, 0x7FFFFFF0, 0xFFFFF100, 0xFFFFFFFF}, r);
           if (r.percent(30)) zip.rrRba = r.below(30000);
         }
       }},
      {"no ZIP codes",
       [](Model& m, const States&, Random&) {
         m.zips.clear();
         m.zipBytes.clear();
       },
       true},
      {"a fewer ZIP count",
       [](Model& m, const States&, Random& r) { patch(m, 192, r.below(sizeOf(m.zips.size()))); }}};
  return oddities;
}

const std::vector<Oddity>& cityOddities() {
  static const std::vector<Oddity> oddities = {
      {"name record 0 not blank",
       [](Model& m, const States& s, Random& r) {
         m.cityNames.front().state = pick(s, r);
         m.cityNames.front().cityKey = static_cast<std::uint16_t>(r.below(3));
         m.hash.extra.push_back({2, m.cityNames.front().state, 0});
       }},
      {"phonetic record 0 not blank",
       [](Model& m, const States& s, Random& r) { m.cityPhonetics.front().state = pick(s, r); }},
      {"names out of order", [](Model& m, const States&, Random& r) { swapAny(m.cityNames, r); }},
      {"phonetics out of order",
       [](Model& m, const States&, Random& r) { swapAny(m.cityPhonetics, r); }},
      {"by-state records of another state",
       [](Model& m, const States& s, Random& r) {
         m.byState.emplace(m.cityNames.begin() + 1, m.cityNames.end());
         if (CityName* name = anyRecord(*m.byState, r))
           name->state = r.percent(50) ? pick(s, r) : "ZZ";
       }},
      {"fewer by-state records than names",
       [](Model& m, const States&, Random& r) {
         m.byState.emplace(m.cityNames.begin() + 1, m.cityNames.end());
         m.byState->resize(r.below(sizeOf(m.byState->size()) + 1));
       }},
      {"equal names in the by-state table",
       [](Model& m, const States&, Random&) {
         for (std::size_t i = 2; i < m.cityNames.size(); i += 2) {
           m.cityNames[i].name = m.cityNames[i - 1].name;
           m.cityNames[i].state = m.cityNames[i - 1].state;
         }
       }},
      {"name lengths unlike the names",
       [](Model& m, const States&, Random& r) {
         for (CityName& name : m.cityNames)
           if (r.percent(40)) name.length = static_cast<Byte>(r.below(256));
         for (CityPhonetic& key : m.cityPhonetics)
           if (r.percent(40)) key.length = static_cast<Byte>(r.below(256));
         if (r.percent(70)) indexAsMeasured(m);
       }},
      {"name links past the names",
       [](Model& m, const States&, Random& r) {
         anyRecord(m.cityData, r)->nameUsps = anyOf({sizeOf(m.cityNames.size()), 0xFFFFFFFF}, r);
       }},
      {"city keys past the cities",
       [](Model& m, const States&, Random& r) {
         anyRecord(m.cityNames, r)->cityKey =
             static_cast<std::uint16_t>(anyOf({sizeOf(m.cityData.size()), 0xFFFF}, r));
       }},
      {"no cities", [](Model& m, const States&, Random&) { m.cityData.clear(); }, true},
      {"no city names", [](Model& m, const States&, Random&) { m.cityNames.clear(); }, true},
      {"no city phonetics", [](Model& m, const States&, Random&) { m.cityPhonetics.clear(); },
       true},
      {"other counts of names and cities", [](Model& m, const States&, Random& r) {
         patch(m, anyOf({132, 136, 188}, r), r.below(40));
       }}};
  return oddities;
}

}  // namespace statecut::test
