// What a Database refuses.

#include "base/le.h"
#include "readeroracle.h"

namespace statecut::test {

// Every list of the ambiguous names of a table ends in the table of the lists. The arguments are
// the places of the RBAs and lengths of both.
bool ReaderOracle::listsEnd(std::size_t namesRba, std::size_t namesBytes, std::size_t listsRba,
                            std::size_t listsBytes) const {
  const unsigned char* const names = file_.data() + word(namesRba);
  const unsigned char* const lists = file_.data() + word(listsRba);
  const std::uint64_t end = word(listsBytes);
  for (std::uint64_t at = 0; at + 5 <= word(namesBytes); at += 5U + (names[at + 4] & 0x7F)) {
    if (names[at + 4] < 0x80) continue;
    std::uint64_t place = le::get<4>(names + at);
    if (place + 2 > end) return false;
    std::uint32_t left = le::get<2>(lists + place);
    for (place += 2; left > 0; --left) {
      if (place + 5 > end) return false;
      const std::uint32_t scfs = lists[place + 4];
      place += 5U + (scfs > 127 ? 0 : 2 * scfs);
      if (place > end) return false;
    }
  }
  return true;
}

std::string ReaderOracle::flaw() const {
  if (file_.size() < 844 || (word(24) & 3) != 1) return "no reference file";
  const bool cut = (word(24) & 4) != 0;
  struct Words {
    std::size_t rba;
    std::size_t count;
    std::uint64_t width;
  };
  static constexpr Words kTables[] = {
      {56, 192, 52},  {64, 0, 200000}, {60, 196, 2},  {32, 188, 36}, {36, 180, 6},  {40, 184, 2},
      {260, 256, 28}, {264, 268, 8},   {44, 132, 34}, {52, 136, 26}, {248, 252, 2}, {80, 144, 1},
      {88, 156, 1},   {92, 152, 1},    {100, 168, 1}, {104, 164, 1}, {112, 176, 1}, {228, 224, 4},
      {308, 312, 7},  {316, 320, 6},   {68, 200, 32}, {72, 204, 32}, {280, 192, 12}};
  for (const Words& table : kTables) {
    if (table.rba == 280 && (cut || word(280) == 0)) continue;
    const std::uint64_t bytes = table.width * (table.count == 0 ? 1 : word(table.count));
    if (bytes == 0) continue;
    if (word(table.rba) < 844 || word(table.rba) + bytes > file_.size())
      return "table at " + std::to_string(table.rba);
  }
  const auto row = [&](std::size_t rba, std::uint32_t width, std::uint32_t i) {
    return file_.data() + word(rba) + std::size_t{width} * i;
  };
  for (std::uint32_t code = 1; code < 100000; ++code) {
    const std::uint32_t key = le::get<2>(row(64, 2, code));
    if (key == 0) continue;
    if (key >= word(192) || le::get<4>(row(56, 52, key)) != code) return "ZIP index";
  }
  for (std::uint32_t i = 0; i < word(192); ++i) {
    const unsigned char* zip = row(56, 52, i);
    if (zip[36] > 1 && std::uint64_t{le::get<4>(zip + 32)} + zip[36] > word(196))
      return "cities of a ZIP code";
  }
  const auto shared = [&](std::uint32_t zips, std::uint64_t key, std::uint32_t rba) {
    return zips < 2 || rba == 0 || key + zips <= word(252);
  };
  for (std::uint32_t i = 1; i < word(256); ++i) {
    const unsigned char* at = row(260, 28, i);
    if (!shared(le::get<2>(at), le::get<4>(at + 4), le::get<4>(at + 8)) ||
        !shared(le::get<2>(at + 12), le::get<2>(at + 14), le::get<4>(at + 16)) ||
        !shared(le::get<2>(at + 20), le::get<2>(at + 22), le::get<4>(at + 24)))
      return "ZIP codes of a city";
  }
  for (std::uint32_t i = 1; i < word(268); ++i) {
    const unsigned char* at = row(264, 8, i);
    if (!shared(le::get<2>(at), le::get<2>(at + 2), le::get<4>(at + 4)))
      return "ZIP codes of a finance area";
  }
  if (!listsEnd(92, 152, 88, 156)) return "streets of a phonetic variation";
  if (!listsEnd(104, 164, 100, 168)) return "streets of a standardized variation";
  return {};
}

}  // namespace statecut::test
