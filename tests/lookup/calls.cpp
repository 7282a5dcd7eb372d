// Calls about ZIP codes and cities.

#include "calls.h"

#include "callmaker.h"

namespace statecut::test {

using Ref = RefControlRec;

void CallMaker::zips() {
  const std::uint32_t count = word(Ref::zipDataCount);
  std::vector<std::int64_t> codes = {-1, 0, 1, 99999, 100000, 65536 + 99999, 2147483647};
  std::vector<std::int64_t> there;
  for (std::uint32_t key = 1; key < count; ++key)
    there.push_back(le::get<4>(file_.data() + word(Ref::zipDataRba) + 52 * std::size_t{key}));
  for (const std::int64_t code : sample(there)) {
    codes.push_back(code);
    codes.push_back(code + 1);
  }
  for (const std::int64_t code : codes) {
    add(Op::kZipIndex, code);
    add(Op::kZipData, code);
  }
  for (const std::int64_t key : keys(count)) {
    add(Op::kZipDataFromKey, key);
    add(Op::kCityKeys, key);
    add(Op::kFinOfZip, key);
  }
  for (const std::int64_t index : keys(word(Ref::finMultiZipRbasCount)))
    add(Op::kFinByIndex, index);
  for (const std::int64_t start : keys(word(Ref::multiZipListsCount)))
    for (const std::int64_t wanted : {0, 2, 5}) add(Op::kMultiZips, wanted, start);
  for (const std::int64_t wanted : {304L, 305L, 4294967295L})
    add(Op::kMultiZips, wanted, wanted % 7);
}

void CallMaker::patterns(const Name& name, std::uint32_t position) {
  const std::string& text = name.name;
  const std::string some = text.substr(0, std::min<std::size_t>(3, text.size()));
  const std::string end = text.substr(text.size() - some.size());
  for (const std::string& pattern :
       {text, some, some + "*", "*" + end, "*" + end + "*", "*" + text + "X", some + "**",
        "**" + end, text + std::string(30, 'A'), text + std::string(30, '*')}) {
    addNamed(Op::kNearest, name.state, pattern);
    addNamed(Op::kNext, name.state, pattern);
    calls_.back().b = position;
  }
  for (const Match match : {Match::kContains, Match::kStarts, Match::kEnds}) {
    addNamed(Op::kSequential, name.state, match == Match::kEnds ? end : some);
    calls_.back().match = match;
    calls_.back().b = random_.percent(50) ? 0 : position;
  }
}

void CallMaker::cityNames() {
  const std::uint32_t count = word(Ref::cityNamesCount);
  std::vector<Name> names;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = word(Ref::cityNamesRba) + 34 * i;
    names.push_back({bytes(at + 4, 2), bytes(at + 6, std::min<std::size_t>(28, file_[at + 3]))});
  }
  for (const Name& name : sample(names)) {
    for (const std::string& near : around(name.name)) {
      for (const Op op : {Op::kCityHash, Op::kFindCity, Op::kTruncCity, Op::kTruncCityIndex,
                          Op::kCityDataByName, Op::kCityDataByTrunc})
        addNamed(op, name.state, near);
      addNamed(Op::kCityNameIndex, name.state, name.state + near);
      calls_.back().state.clear();
    }
    addNamed(Op::kFindCity, "QQ", name.name);
    addNamed(Op::kTruncCity, name.state == "TX" ? "VT" : "TX", name.name);
    patterns(name, random_.below(count + 2));
  }
  for (const char* pattern : {"", "*", "**", "***", "****", "A**", "**A", "*A*", "A", "A*", "*A",
                              "*AAAAAAAAAAAAAAAAAAAAAAAAAAA*"})
    addNamed(Op::kNearest, "TX", pattern);
  for (const std::int64_t start : {-1L, 0L, std::int64_t{count} - 1, std::int64_t{count},
                                   std::int64_t{count} + 1, 2147483647L}) {
    addNamed(Op::kNext, "TX", "*");
    addNamed(Op::kNext, "TX", "A*");
    calls_.back().b = start;
    addNamed(Op::kSequential, names.back().state, "");
    calls_.back().b = start;
  }
  for (const Op op : {Op::kCityHash, Op::kFindCity, Op::kTruncCity, Op::kTruncCityIndex,
                      Op::kCityDataByName, Op::kCityDataByTrunc})
    lengths(op, 28);
  lengths(Op::kCityNameIndex, 30);
  for (const std::int64_t key : keys(count)) {
    add(Op::kCityName, key);
    add(Op::kCityNameCached, key);
  }
}

void CallMaker::cityKeys() {
  for (const std::int64_t key : keys(word(Ref::cityDataCount))) {
    add(Op::kCityData, key);
    add(Op::kCityMultiZip, key);
  }
  for (const std::int64_t start : keys(word(Ref::cityMultiZipListsCount)))
    add(Op::kCityZipKeys, 1 + random_.below(4), start);
  for (const std::int64_t start : keys(word(Ref::cityMultiFinanceListsCount)))
    add(Op::kCityFinKeys, 1 + random_.below(4), start);
  for (const std::int64_t wanted : {0L, 16L, 17L, 300L, 301L, 302L, 4294967295L}) {
    add(Op::kCityZipKeys, wanted, 1);
    add(Op::kCityFinKeys, wanted, 1);
  }
}

void CallMaker::phonetics() {
  const std::uint32_t count = word(Ref::cityPhoneticsCount);
  std::vector<Name> codes;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = word(Ref::cityPhoneticsRba) + 26 * i;
    codes.push_back({bytes(at + 2, 2), bytes(at + 4, std::min<std::size_t>(20, file_[at + 25]))});
  }
  for (const Name& code : sample(codes)) {
    for (const std::string& near : around(code.name)) {
      addNamed(Op::kPhoneticIndex, "", code.state + near);
      addNamed(Op::kFindPhonetic, code.state, near);
    }
  }
  lengths(Op::kPhoneticIndex, 21);
  lengths(Op::kFindPhonetic, 19);
  lengths(Op::kFindPhonetic, 28);
  for (const std::int64_t index : keys(count)) add(Op::kPhonetic, index);
}

std::vector<Call> callsOn(const Bytes& file, std::uint64_t seed, std::size_t most) {
  return CallMaker(file, seed, most).all();
}

}  // namespace statecut::test
