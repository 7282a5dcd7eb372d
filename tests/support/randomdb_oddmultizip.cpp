#include "dbbuilder/writer.h"
#include "support/randomdb_oddity.h"

namespace statecut::test {

using namespace builder;

namespace {

// A sizes table in which any 32-bit size that can be read from it is small or negative.
Bytes wildSizes(std::size_t entries, Random& random) {
  Bytes bytes(8 * entries);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    bytes[i] = static_cast<Byte>(random.below(6));
    bytes[i + 1] = static_cast<Byte>(random.percent(10) ? 0x80 : 0);
  }
  return bytes;
}

// Keys of 32 bits with sizes of 32 bits, as a reader of 8-byte entries would expect.
Bytes wideSizes(std::size_t entries, Random& random) {
  Bytes bytes(8 * entries);
  for (std::size_t i = 0; i < entries; ++i) {
    bytes[8 * i] = static_cast<Byte>(i);
    bytes[8 * i + 4] = static_cast<Byte>(random.below(5));
  }
  return bytes;
}

Table anySizesTable(Random& random) {
  const Table tables[] = {Table::SfhMultiZipBytes, Table::PobMultiZipBytes, Table::RrMultiZipBytes};
  return tables[random.below(3)];
}

void setRawSizes(Model& model, Random& random, Bytes (*make)(std::size_t, Random&)) {
  const Table table = anySizesTable(random);
  const std::uint32_t entries = random.between(1, 16);
  model.raw[table] = make(entries, random);
  const std::uint32_t countWord = table == Table::SfhMultiZipBytes   ? 296
                                  : table == Table::PobMultiZipBytes ? 300
                                                                     : 304;
  patch(model, countWord, entries);
}

MultiZipRef* anyRef(Model& model, Random& random) {
  if (random.percent(30) && model.finMultiZip.size() > 1)
    return anyRecord(model.finMultiZip, random);
  CityMultiZip* record = anyRecord(model.cityMultiZip, random);
  if (record == nullptr) return nullptr;
  MultiZipRef* refs[] = {&record->sfh, &record->pob, &record->rr};
  return refs[random.below(3)];
}

// Some sizes of a table, seen as 6-byte entries, turn negative.
void negateSizes(Model& model, Random& random) {
  const Table table = anySizesTable(random);
  const ReferenceFile file = referenceFile(model);
  const TablePlace& place = file.place(table);
  const auto begin = file.bytes.begin() + static_cast<std::ptrdiff_t>(place.rba);
  Bytes bytes(begin, begin + static_cast<std::ptrdiff_t>(place.bytes));
  for (std::size_t at = 5; at < bytes.size(); at += 6)
    if (random.percent(40)) bytes[at] |= 0x80;
  model.raw[table] = bytes;
}

}  // namespace

const std::vector<Oddity>& multiZipOddities() {
  static const std::vector<Oddity> oddities = {
      {"multi-ZIP keys past their count",
       [](Model& m, const States&, Random& r) {
         for (int i = 0; i < 3; ++i)
           if (MultiZipRef* ref = anyRef(m, r))
             ref->key = anyOf({sizeOf(m.multiZipLists.size()), 0xFFFF, 0x10001}, r);
       }},
      {"no multi-ZIP keys", [](Model& m, const States&, Random&) { m.multiZipLists.clear(); },
       true},
      {"more multi-ZIP keys than lists",
       [](Model& m, const States&, Random& r) { patch(m, 252, r.below(40)); }},
      {"multi-ZIP keys above 65535",
       [](Model& m, const States&, Random& r) {
         patch(m, 252, 70000);
         for (CityMultiZip& record : m.cityMultiZip)
           if (r.percent(50)) record.sfh.key += 65536;
       }},
      {"negative multi-ZIP sizes", [](Model& m, const States&, Random& r) { negateSizes(m, r); }},
      {"a wild sizes table",
       [](Model& m, const States&, Random& r) { setRawSizes(m, r, wildSizes); }},
      {"a sizes table of 8-byte entries",
       [](Model& m, const States&, Random& r) { setRawSizes(m, r, wideSizes); }},
      {"no sizes",
       [](Model& m, const States&, Random& r) {
         patch(m, anyOf({296, 300, 304}, r), 0);
       }},
      {"multi-ZIP RBAs anywhere",
       [](Model& m, const States&, Random& r) {
         for (int i = 0; i < 5; ++i)
           if (MultiZipRef* ref = anyRef(m, r))
             ref->rba = r.percent(30) ? 0 : r.percent(80) ? r.below(30000) : 0xFFFFFF00;
       }},
      {"multi-ZIP partitions out of order",
       [](Model& m, const States&, Random& r) {
         for (int i = 0; i < 20; ++i) swapAny(m.range.partitions, r);
       }},
      {"no finance records", [](Model& m, const States&, Random&) { m.finMultiZip.clear(); }, true},
      {"no city multi-ZIP records",
       [](Model& m, const States&, Random&) { m.cityMultiZip.clear(); }, true},
      {"other counts of multi-ZIP records", [](Model& m, const States&, Random& r) {
         patch(m, anyOf({256, 268}, r), r.below(30));
       }}};
  return oddities;
}

}  // namespace statecut::test
