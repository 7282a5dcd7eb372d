#include "support/randomdb_oddity.h"

namespace statecut::test {

using namespace builder;

const std::vector<Oddity>& indexOddities() {
  static const std::vector<Oddity> oddities = {
      {"no hash slots", [](Model& m, const States&, Random&) { patch(m, 312, 0); }},
      {"a slot count that is no power of two",
       [](Model& m, const States&, Random& r) { patch(m, 312, r.between(3, 100)); }},
      {"few slots and long chains",
       [](Model& m, const States&, Random& r) {
         m.hash.slots = anyOf({1, 2, 4}, r);
       }},
      {"many slots",
       [](Model& m, const States&, Random& r) {
         m.hash.slots = anyOf({256, 1024, 65536}, r);
       }},
      {"chains past the overflow table",
       [](Model& m, const States&, Random& r) {
         m.hash.slots = 2;
         patch(m, 320, r.below(20));
       }},
      {"names of the index with wrong numbers",
       [](Model& m, const States&, Random& r) {
         for (const CityName& name : m.cityNames)
           if (r.percent(50))
             m.hash.extra.push_back(
                 {2, name.state + name.name, anyOf({0, 1, 2, 5, 0xFFFFFFFF}, r)});
         for (const CityPhonetic& key : m.cityPhonetics)
           if (r.percent(50))
             m.hash.extra.push_back({r.percent(50) ? 5U : 3U, key.state + key.key, r.below(40)});
       }},
      {"names that lead to longer names",
       [](Model& m, const States&, Random&) {
         m.hash.indexNames = false;
         for (std::uint32_t i = 1; i + 1 < m.cityNames.size(); i += 2) {
           CityName& longer = m.cityNames[i + 1];
           longer.state = m.cityNames[i].state;
           longer.name = (m.cityNames[i].name + "A").substr(0, 28);
           m.hash.extra.push_back({2, m.cityNames[i].state + m.cityNames[i].name, i + 1});
         }
       }},
      {"an empty index", [](Model& m, const States&, Random&) { m.hash.indexNames = false; }},
      {"wild bytes in the index", [](Model& m, const States&, Random& r) {
         Bytes slots(7 * 16);
         for (Byte& byte : slots) byte = static_cast<Byte>(r.below(r.percent(50) ? 4 : 256));
         m.raw[Table::HashSlots] = slots;
         patch(m, 312, 16);
       }}};
  return oddities;
}

const std::vector<Oddity>& recordOddities() {
  static const std::vector<Oddity> oddities = {
      {"already a state cut",
       [](Model& m, const States&, Random& r) {
         m.header.typeFlags |= 4;
         m.header.cutStamp = static_cast<std::uint32_t>(r.next());
         m.range.header.typeFlags |= r.percent(50) ? 4U : 0U;
         m.range.header.cutStamp = r.percent(50) ? m.header.cutStamp : 0;
       }},
      {"no ZIP sizes", [](Model& m, const States&, Random&) { patch(m, 280, 0); }},
      {"stamps that differ",
       [](Model& m, const States&, Random& r) { m.range.header.buildStamp ^= 1U << r.below(32); }},
      {"a reference type without its bit",
       [](Model& m, const States&, Random& r) {
         m.header.typeFlags = anyOf({0, 2, 4, 6}, r);
       }},
      {"a range type without its bit",
       [](Model& m, const States&, Random& r) {
         m.range.header.typeFlags = anyOf({0, 1, 4, 5}, r);
       }},
      {"other type bits",
       [](Model& m, const States&, Random& r) {
         m.header.typeFlags = anyOf({3, 0xFFFFFFFF, 9}, r);
         m.range.header.typeFlags = anyOf({3, 0xFFFFFFFF, 10}, r);
       }},
      {"header texts that end early",
       [](Model& m, const States&, Random&) {
         m.header.version = std::string("12\0004567", 7);
         m.range.header.copyright = std::string("\000126", 4);
       }},
      {"a count beyond all memory",
       [](Model& m, const States&, Random& r) {
         patch(m, anyOf({132, 136, 192, 256, 268, 296, 300, 304, 312, 320}, r),
               anyOf({0x7FFFFFFF, 0x80000001, 0xFFFFFFFF}, r));
       }},
      {"a city count beyond all memory",
       [](Model& m, const States&, Random& r) {
         patch(m, 188, anyOf({0x20000000, 0xFFFFFFFF}, r));
       }},
      {"a multi-ZIP count beyond all memory",
       [](Model& m, const States&, Random& r) {
         patch(m, 252, anyOf({0x40000000, 0x80000001}, r));
       }},
      {"lengths of carried tables that wrap",
       [](Model& m, const States&, Random& r) {
         patch(m, anyOf({212, 216, 220, 148, 160, 224, 180, 184, 196, 200, 204, 208, 236, 272}, r),
               anyOf({0x80000000, 0x80000001, 0xFFFFFFFF}, r));
         patch(m, anyOf({144, 176, 152, 156, 164, 168}, r), anyOf({0x80000000, 0xFFFFFFFF}, r));
       }},
      {"carried tables longer than they are",
       [](Model& m, const States&, Random& r) {
         patch(m, anyOf({212, 216, 220, 148, 160, 224, 180, 184, 196, 200, 204, 208, 236, 272}, r),
               r.below(3000));
         patch(m, anyOf({144, 176, 152, 156, 164, 168}, r), r.below(20000));
       }},
      {"carried tables elsewhere",
       [](Model& m, const States&, Random& r) {
         for (int i = 0; i < 3; ++i)
           patch(m,
                 anyOf({120, 124, 128, 80, 112, 36,  40,  60,  232, 68, 72, 276,
                        76,  88,  92,  96, 100, 104, 108, 228, 248, 84, 116},
                       r),
                 anyOf({0, 1, 843, 5000, 0x7FFFFFFF, 0xFFFFF000}, r));
       }},
      {"rewritten tables beyond the end",
       [](Model& m, const States&, Random& r) {
         patch(m,
               anyOf({32, 260, 264, 44, 48, 52, 56, 64, 280, 284, 288, 292, 308, 316, 324, 328}, r),
               anyOf({0x00800000, 0x7FFFFFFF, 0xFFFFF000}, r));
       }},
      {"city tables elsewhere",
       [](Model& m, const States&, Random& r) {
         patch(m, anyOf({32, 44, 48, 52, 260, 264, 308, 316}, r), anyOf({0, 100, 844, 3000}, r));
       }},
      {"directory words that nothing reads", [](Model& m, const States&, Random& r) {
         patch(m, anyOf({84, 116, 240, 244, 172, 140}, r), static_cast<std::uint32_t>(r.next()));
       }}};
  return oddities;
}

}  // namespace statecut::test
