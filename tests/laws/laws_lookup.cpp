// Laws of what the lookups answer on a cut and on its source.

#include <algorithm>
#include <functional>

#include "dbbuilder/random.h"
#include "laws/laws.h"
#include "lookup/calls.h"
#include "lookup/comparison.h"
#include "tables/rows.h"

namespace statecut::test {

namespace {

using namespace builder;
using Ref = RefControlRec;

// A call, and the answer on the cut that follows from the one on the source. Good while the
// Questions that made it are there.
struct Question {
  Call call;
  std::function<std::string(const std::string& source, const std::string& made)> expected;
};

// Bytes of the record that an answer begins with.
struct Stretch {
  std::size_t at;
  std::size_t count;
};

std::string same(const std::string& source, const std::string& /*made*/) { return source; }

// The same but for these bytes, which are taken as they are.
auto sameBut(std::vector<Stretch> bytes) {
  return [bytes](std::string source, const std::string& made) {
    if (source.empty() || source.front() != ':' || made.size() != source.size()) return source;
    for (const Stretch& stretch : bytes)
      source.replace(1 + 2 * stretch.at, 2 * stretch.count, made, 1 + 2 * stretch.at,
                     2 * stretch.count);
    return source;
  };
}

auto fixed(std::string answer) {
  return [answer](const std::string&, const std::string&) { return answer; };
}

// Nothing was found; what stands in the out-parameters is the caller's.
std::string notFound(const std::string& /*source*/, const std::string& made) {
  return made.compare(0, 4, kNull) == 0 ? made : kNull;
}

std::uint32_t moved(const std::vector<std::uint32_t>& map, std::int64_t position) {
  const auto at = static_cast<std::size_t>(position);
  return at < map.size() ? map[at] : 0;
}

class Questions {
 public:
  Questions(const Selection& chosen, Mode mode) : chosen_(chosen), mode_(mode) {}

  std::vector<Question> all() {
    zips();
    lists();
    cities();
    names();
    phonetics();
    streets();
    std::stable_sort(asked_.begin(), asked_.end(),
                     [](const Question& a, const Question& b) { return a.call.op < b.call.op; });
    return asked_;
  }

 private:
  template <typename Expected>
  void ask(Op op, std::int64_t a, std::int64_t b, Expected expected) {
    Call call;
    call.op = op;
    call.a = a;
    call.b = b;
    asked_.push_back({call, expected});
  }
  template <typename Expected>
  void askName(Op op, const std::string& state, const std::string& name, Expected expected) {
    Call call;
    call.op = op;
    call.state = state;
    call.name = name;
    asked_.push_back({call, expected});
  }

  void zips() {
    const std::vector<Stretch> rbas = {{ZipDataRow::sfhRba.at, 12}};
    const Model& model = chosen_.source.model;
    for (std::size_t key = 1; key < model.zips.size(); ++key) {
      const auto number = static_cast<std::int64_t>(key);
      const ZipRecord& zip = model.zips[key];
      if (chosen_.zipKept(key)) {
        ask(Op::kZipIndex, zip.zip, 0, same);
        ask(Op::kZipData, zip.zip, 0, sameBut(rbas));
      } else if (zip.zip != 0) {
        ask(Op::kZipIndex, zip.zip, 0, fixed("0"));
        ask(Op::kZipData, zip.zip, 0, fixed("null key=0"));
      }
      if (!chosen_.zipKept(key)) occurred(Exception::kDroppedByKey);
      ask(Op::kZipDataFromKey, number, 0, sameBut(rbas));
      if (zip.finKey < model.finMultiZip.size()) {
        ask(Op::kFinOfZip, number, 0, sameBut({{FinMultiZipRow::rba.at, 4}}));
      } else {
        occurred(Exception::kBehindTheCarried);
      }
      if (zip.cityKeysCount == 1 ||
          zip.cityKeysIndex + zip.cityKeysCount <= model.cityKeysOfZips.size()) {
        ask(Op::kCityKeys, number, 0, same);
      } else {
        occurred(Exception::kBehindTheCarried);
      }
    }
  }

  void lists() {
    const Model& model = chosen_.source.model;
    for (std::size_t i = 1; i < model.finMultiZip.size(); ++i)
      ask(Op::kFinByIndex, static_cast<std::int64_t>(i), 0, sameBut({{FinMultiZipRow::rba.at, 4}}));
    // The exceptions: a list behind the first half of the table, all that a cut carries; from the
    // file each list begins twice as far on, and a list that was read is kept.
    if (mode_ == Mode::kMemory)
      for (std::size_t start = 0; start + 3 <= model.multiZipLists.size(); ++start)
        ask(Op::kMultiZips, 3, static_cast<std::int64_t>(start), same);
    for (std::size_t start = 0; start + 2 <= model.cityZipLists.size(); ++start)
      ask(Op::kCityZipKeys, 2, static_cast<std::int64_t>(start), same);
    for (std::size_t start = 0; start + 2 <= model.cityFinanceLists.size(); ++start)
      ask(Op::kCityFinKeys, 2, static_cast<std::int64_t>(start), same);
    for (std::size_t key = 1; key < model.generalDelivery.size(); ++key)
      ask(Op::kGeneralDelivery, static_cast<std::int64_t>(key), 0, same);
  }

  void cities() {
    for (std::size_t city = 1; city < chosen_.source.model.cityData.size(); ++city) {
      const auto number = static_cast<std::int64_t>(city);
      ask(Op::kCityData, number, 0, sameBut({kNames}));
      if (chosen_.source.model.cityData[city].multiZipRbaKey >=
          chosen_.source.model.cityMultiZip.size()) {
        occurred(Exception::kBehindTheCarried);
        continue;
      }
      ask(Op::kCityMultiZip, number, 0,
          sameBut({{CityMultiZipRow::sfhRba.at, 4},
                   {CityMultiZipRow::pobRba.at, 4},
                   {CityMultiZipRow::rrRba.at, 4}}));
    }
  }

  [[nodiscard]] std::size_t namesThatBeginWith(const std::string& state,
                                               const std::string& text) const {
    return static_cast<std::size_t>(std::count_if(
        chosen_.source.model.cityNames.begin(), chosen_.source.model.cityNames.end(),
        [&](const builder::CityName& other) {
          return other.state == state && other.name.compare(0, text.size(), text) == 0;
        }));
  }

  void names() {
    const auto position = [this](const std::string& source, const std::string&) {
      const std::int64_t at = std::stoll(source);
      return std::to_string(at < 0 ? at : std::int64_t{moved(chosen_.names, at)});
    };
    const auto behind = [this](const std::string& source, const std::string&) {
      const std::int64_t at = std::stoll(source);
      return std::to_string(at <= 0 ? at : std::int64_t{moved(chosen_.names, at - 1)} + 1);
    };
    for (std::size_t i = 1; i < chosen_.names.size(); ++i) {
      const builder::CityName& name = chosen_.source.model.cityNames[i];
      const std::string begin = name.name.substr(0, 2);
      if (chosen_.names[i] == 0) {
        askName(Op::kFindCity, name.state, name.name, fixed(kNull));
        askName(Op::kTruncCity, name.state, begin, fixed(kNull));
        askName(Op::kCityDataByName, name.state, name.name, notFound);
        askName(Op::kCityDataByTrunc, name.state, begin, notFound);
        askName(Op::kCityHash, name.state, name.name, fixed("-1"));
        askName(Op::kCityNameIndex, "", name.state + name.name, fixed("-1"));
        continue;
      }
      askName(Op::kFindCity, name.state, name.name, same);
      askName(Op::kCityDataByName, name.state, name.name, sameBut({kNames}));
      askName(Op::kCityHash, name.state, name.name, position);
      askName(Op::kCityNameIndex, "", name.state + name.name, position);
      askName(Op::kNearest, name.state, begin + "*", behind);
      if (namesThatBeginWith(name.state, begin) > 1) {
        occurred(Exception::kSharedBeginning);
        continue;
      }
      askName(Op::kTruncCity, name.state, begin, same);
      askName(Op::kTruncCityIndex, name.state, begin, position);
      askName(Op::kCityDataByTrunc, name.state, begin, sameBut({kNames}));
    }
  }

  void phonetics() {
    const auto found = [this](const std::string& source, const std::string&) {
      const std::size_t at = source.rfind('=') + 1;
      const std::int64_t index = std::stoll(source.substr(at));
      return source.substr(0, at) + std::to_string(moved(chosen_.phonetics, index));
    };
    for (std::size_t i = 1; i < chosen_.phonetics.size(); ++i) {
      const builder::CityPhonetic& key = chosen_.source.model.cityPhonetics[i];
      if (chosen_.phonetics[i] != 0) {
        askName(Op::kFindPhonetic, key.state, key.key, found);
      } else {
        askName(Op::kFindPhonetic, key.state, key.key, notFound);
      }
    }
  }

  // All that the suite asks of streets and firms, but for what lies behind the names of a cut.
  void streets() {
    const Pair& pair = chosen_.source.pair;
    const auto inside = [&pair](std::int64_t at, std::uint32_t rba, std::uint32_t bytes) {
      if (at < 0 || at >= bytes) return false;
      const auto offset = static_cast<std::uint32_t>(at);
      return offset + 1 + pair.refBytes(rba + offset, 1).at(0) <= bytes;
    };
    const auto asked = [&](const Call& call) {
      switch (call.op) {
        case Op::kStreetName:
        case Op::kStreetNameCached:
          return inside(call.a, pair.word(Ref::streetNamesRba), pair.word(Ref::streetNamesBytes));
        case Op::kFirmName:
          return inside(call.a, pair.word(Ref::firmsRba), pair.word(Ref::firmsBytes));
        case Op::kGeneralDelivery:
        case Op::kRoute:
          return false;
        default:
          return call.op >= Op::kStreetKey;
      }
    };
    for (const Call& call : callsOn(pair.ref, 1, 4))
      if (asked(call)) asked_.push_back({call, same});
  }

  static constexpr Stretch kNames{CityDataRow::nameUsps.at, 8};
  const Selection& chosen_;
  Mode mode_;
  std::vector<Question> asked_;
};

std::vector<std::string> answers(const Pair& pair, const Variant& variant,
                                 const std::vector<Question>& questions) {
  const TempDir folder;
  writeWholeFile(folder.file("city.dir"), pair.ref);
  Session session(variant, folder.file("city.dir"), pair.ref);
  std::vector<std::string> given;
  Op last = Op::kCount_;
  for (const Question& question : questions) {
    if (question.call.op != last) session.fresh();
    last = question.call.op;
    given.push_back(session.answer(question.call));
  }
  return given;
}

}  // namespace

std::string keptAnswersStay(const Selection& chosen, const Pair& made, const Variant& variant) {
  Breaches breaches;
  Questions maker(chosen, variant.mode);
  const std::vector<Question> questions = maker.all();
  const auto asked = [&](const Pair& pair) {
    return inOwnProcess([&] { return answers(pair, variant, questions); });
  };
  const std::vector<std::string> before = asked(chosen.source.pair);
  const std::vector<std::string> after = asked(made);
  if (before.size() != questions.size() || after.size() != questions.size())
    return "  not every question was answered\n";
  for (std::size_t i = 0; i < questions.size(); ++i) {
    const std::string expected = questions[i].expected(before[i], after[i]);
    breaches.unless(after[i] == expected, described(questions[i].call) + ": " + after[i] +
                                              "\n  expected " + expected + "\n  source   " +
                                              before[i]);
  }
  return breaches.text();
}

std::string variantsAgree(const Pair& made, const Variant& variant, std::uint64_t seed) {
  const std::vector<std::string> texts = inOwnProcess([&]() -> std::vector<std::string> {
    Tally tally;
    const Database database{"the cut", made.ref};
    return {
        compareAnswers(variant, database, callsOn(made.ref, seed, 4), Soundness::kSound, tally)};
  });
  std::string breaches;
  for (const std::string& text : texts) breaches += text;
  return breaches;
}

}  // namespace statecut::test
