// On-disk lookups whose Nth call of a kind fails: the right answer or an error, never another one.

#include <new>
#include <tuple>

#include "faults.h"
#include "lookup/session.h"
#include "query/ops.h"
#include "query/run.h"

namespace statecut::test {
namespace {

// An op and its arguments: no request is parsed, so that memory is the lookup's and its answer's.
using Words = std::vector<std::string>;
using Calls = std::vector<Words>;  // that are made in one session

template <typename... Texts>
Words callOf(const char* op, const Texts&... arguments) {
  return {op, std::string(arguments)...};
}

std::string number(std::uint64_t value) { return std::to_string(value); }

template <typename Table, typename Wanted>
std::uint64_t firstWith(const Table& table, Wanted&& wanted) {
  for (std::size_t i = 1; i < table.size(); ++i)
    if (wanted(table[i])) return i;
  return 1;
}

void addZipCalls(std::vector<Calls>& calls, const builder::Model& model) {
  const auto several = firstWith(model.zips, [](const auto& zip) { return zip.cityKeysCount > 1; });
  const auto finance = firstWith(model.zips, [](const auto& zip) { return zip.finKey != 0; });
  const std::string zip = number(model.zips[several].zip);
  calls.push_back({callOf("dbGetZipIndex", zip)});
  calls.push_back({callOf("dbGetZipData", zip), callOf("dbGetZipData", number(99998))});
  calls.push_back({callOf("dbGetZipDataFromKey", number(several))});
  calls.push_back({callOf("dbGetCityKeysPtr", number(several))});
  calls.push_back({callOf("dbGetMultiZipFinRBA", number(1))});
  calls.push_back({callOf("dbGetZipFinMltZpRBA", number(finance))});
  // Two, as the list of the last start is kept.
  const std::uint64_t last = model.multiZipLists.size() - 1;
  calls.push_back({callOf("dbGetMultiZips", number(2), number(last / 2)),
                   callOf("dbGetMultiZips", number(2), number(last))});
  calls.push_back({callOf("dbGetGenrlDelvry", number(1))});
  calls.push_back({callOf("uncompressCRT", number(300))});
}

void addCityCalls(std::vector<Calls>& calls, const builder::Model& model) {
  const builder::CityName& name = model.cityNames.back();
  const std::string state = name.state;
  const std::string city = name.name;
  const std::string start = name.name.substr(0, 3);
  const std::string pattern = name.name.substr(0, 2) + "*";
  calls.push_back({callOf("dbGetCityUSPS", number(model.cityNames.size() - 1))});
  calls.push_back({callOf("dbGetCityUSPSwc", number(model.cityNames.size() - 1))});
  calls.push_back({callOf("dbFindCityNameIdx", name.state + name.name)});
  calls.push_back({callOf("dbFindCityHash", state, city)});
  calls.push_back({callOf("dbFindCity", state, city)});
  calls.push_back({callOf("dbFindTruncCity", state, start)});
  calls.push_back({callOf("dbFindTruncCityIndex", state, start)});
  calls.push_back({callOf("seqSearchCity", state, start, "starts", number(0))});
  calls.push_back({callOf("dbFindNearestCity", state, pattern)});
  calls.push_back({callOf("dbFindNextCity", state, pattern, number(1))});
  calls.push_back({callOf("dbFindCityData", state, city)});
  calls.push_back({callOf("dbFindTruncCityData", state, start)});
  calls.push_back({callOf("dbGetCityData", number(name.cityKey))});
  calls.push_back({callOf("dbGetCityZipKeyPtr", number(2), number(1))});
  calls.push_back({callOf("dbGetCityFinKeyPtr", number(1), number(1))});
  const auto shared =
      firstWith(model.cityData, [](const auto& data) { return data.multiZipRbaKey != 0; });
  calls.push_back({callOf("dbGetCityMultiZipRBAData", number(shared))});
  const builder::CityPhonetic& phonetic = model.cityPhonetics.back();
  calls.push_back({callOf("findCityPhIdx", phonetic.state + phonetic.key)});
  calls.push_back({callOf("dbFindCityPh", phonetic.state, phonetic.key)});
  calls.push_back({callOf("dbGetCityPh", number(model.cityPhonetics.size() - 1))});
}

void addNameCalls(std::vector<Calls>& calls, const builder::Model& model) {
  const std::string street = model.streetNames.back();
  const std::uint64_t second = model.streetNames.front().size() + 1;
  calls.push_back({callOf("dbFindStreetKey", street)});
  calls.push_back({callOf("dbGetStreetNameUSPS", number(second))});
  calls.push_back({callOf("dbGetStreetNameUSPSwc", number(second))});
  for (const auto& [table, kind, variations] :
       {std::tuple(4, 0, &model.streetPhonetics), std::tuple(3, 1, &model.streetStandards)}) {
    for (const bool ambiguous : {false, true}) {
      const auto at = firstWith(*variations, [&](const builder::Variation& variation) {
        return (variation.candidates.size() > 1) == ambiguous;
      });
      const std::string name = (*variations)[at].name;
      calls.push_back(
          {callOf("dbFindStreetVarIdx", number(static_cast<std::uint64_t>(table)), name)});
      calls.push_back(
          {callOf("dbFindStreetVar", name, number(static_cast<std::uint64_t>(kind)), "")});
    }
  }
  calls.push_back({callOf("dbFindFirm", model.firmNames.back())});
  calls.push_back({callOf("dbGetFirmName", number(0))});
}

std::vector<Calls> callsOn(const builder::Model& model) {
  std::vector<Calls> calls;
  addZipCalls(calls, model);
  addCityCalls(calls, model);
  addNameCalls(calls, model);
  return calls;
}

struct Way {
  const char* name;
  LookupMode mode;
  std::uint32_t block;  // 0: no cache
  std::uint32_t entries;
  std::uint32_t sets;
  bool quick;
};

constexpr Way kWays[] = {{"Disk", LookupMode::kOff, 0, 0, 0, true},
                         {"Cache64x1", LookupMode::kOff, 64, 1, 0, false},
                         {"Cache4096x8", LookupMode::kOff, 4096, 8, 0, true},
                         {"FirstCall", LookupMode::kFirst, 0, 0, 0, false},
                         {"Memory", LookupMode::kIn, 0, 0, 0, false}};

struct Answer {
  std::string line;
  bool failed = false;
};

struct Answers {
  std::vector<Answer> given;  // one a call, up to where the session ended
  bool ended = false;         // not opened, or out of memory
  [[nodiscard]] bool failed() const {
    return ended ||
           std::any_of(given.begin(), given.end(), [](const Answer& a) { return a.failed; });
  }
};

class LookupFaults : public testing::TestWithParam<std::tuple<int, FaultKind>> {
 protected:
  LookupFaults() : pair_(longRun() ? tinyPair() : microPair()) {
    writeWholeFile(folder_.file("city.dir"), pair_.ref);
    writeWholeFile(folder_.file("zip4us.dir"), pair_.rng);
    settings_.ref = folder_.file("city.dir");
    settings_.rng = folder_.file("zip4us.dir");
    const Way& way = kWays[std::get<0>(GetParam())];
    settings_.mode = way.mode;
    settings_.cached = way.block != 0;
    settings_.cacheBlock = way.block;
    settings_.cacheEntries = way.entries;
    settings_.sets = way.sets;
    // A table fails by itself where it does not lie in a block with others.
    allowMaps(std::get<1>(GetParam()) != FaultKind::kAllocate);
  }
  ~LookupFaults() override { allowMaps(true); }

  Answers ask(const Calls& calls) const { return ask(calls, settings_, {}); }

  static Answers ask(const Calls& calls, const SessionSettings& settings, const FaultPlan& plan) {
    Answers answers;
    answers.given.reserve(calls.size());
    if (plan.n != 0) armFaults(plan);  // else the counts of the last plan stay
    try {
      Session session;
      std::string error;
      answers.ended = !session.open(settings, error);
      if (answers.ended) {
        EXPECT_NE(error, "");
      }
      for (std::size_t i = 0; i < calls.size() && !answers.ended; ++i) {
        std::string line;
        const bool failed =
            query::answerWords(session, false, calls[i], line) != query::Outcome::kAnswered;
        answers.given.push_back({std::move(line), failed});
      }
    } catch (const std::bad_alloc&) {
      answers.ended = true;
    }
    disarmFaults();
    return answers;
  }

  // A table that cannot be loaded on the first call is read from the file, where the lists of ZIP
  // codes are deliberately others.
  Answers askOnDisk(const Calls& calls) const {
    SessionSettings onDisk = settings_;
    if (onDisk.mode == LookupMode::kFirst) onDisk.mode = LookupMode::kOff;
    return ask(calls, onDisk, {});
  }

  // Each answer is the right one, or an error of that call alone.
  static void expectRightOrErrors(const Answers& answers, const Answers& right,
                                  const Answers& onDisk) {
    ASSERT_LE(answers.given.size(), right.given.size());
    for (std::size_t i = 0; i < answers.given.size(); ++i) {
      const Answer& answer = answers.given[i];
      if (answer.failed) {
        EXPECT_EQ(answer.line.find("{\"error\":\""), 0U) << answer.line;
      } else {
        EXPECT_TRUE(answer.line == right.given[i].line || answer.line == onDisk.given[i].line)
            << "a wrong answer, unsaid: " << answer.line << "instead of " << right.given[i].line;
      }
    }
    if (!answers.ended) {
      EXPECT_EQ(answers.given.size(), right.given.size());
    }
  }

  void expectAllRight(const Answers& answers, const Answers& right) const {
    EXPECT_FALSE(answers.failed());
    ASSERT_EQ(answers.given.size(), right.given.size());
    for (std::size_t i = 0; i < answers.given.size(); ++i)
      EXPECT_EQ(answers.given[i].line, right.given[i].line);
  }

  void expectSound(const Calls& calls, const Answers& right) const {
    const Answers onDisk = askOnDisk(calls);
    forEachFault(std::get<1>(GetParam()), [&](const FaultPlan& plan) {
      const Answers answers = ask(calls, settings_, plan);
      if (isHarmless(plan) || faultsFired() == 0) {
        EXPECT_FALSE(answers.failed());
      }
      expectRightOrErrors(answers, right, onDisk);
      // Nothing of it is left for the sessions to come.
      expectAllRight(ask(calls, settings_, {}), right);
    });
    EXPECT_EQ(readWholeFile(settings_.ref), pair_.ref);
    EXPECT_EQ(readWholeFile(settings_.rng), pair_.rng);
  }

  TempDir folder_;
  const SmallPair& pair_;
  SessionSettings settings_;
};

TEST_P(LookupFaults, GiveTheRightAnswerOrAnError) {
  const Way& way = kWays[std::get<0>(GetParam())];
  if (!way.quick && !longRun() && std::getenv("STATECUT_FAULT") == nullptr) return;
  std::set<std::string> asked;
  for (const Calls& calls : callsOn(pair_.model)) {
    SCOPED_TRACE(calls.front().front());
    const Answers right = ask(calls);
    ASSERT_FALSE(right.failed());
    if (calls.size() == 1) {
      EXPECT_EQ(right.given[0].line.find("null"), std::string::npos) << right.given[0].line;
    }
    asked.insert(calls.front().front());
    expectSound(calls, right);
    if (HasFailure()) return;
  }
  std::size_t ops = 0;
  for (const auto group : query::opGroups()) ops += group.size();
  EXPECT_EQ(asked.size(), ops);
  EXPECT_FALSE(asked.empty());
  EXPECT_TRUE(ask({{"no op"}}).failed());
}

TEST_P(LookupFaults, OpeningWithAllTablesLoadsThemOrFails) {
  const Way& way = kWays[std::get<0>(GetParam())];
  if (way.mode != LookupMode::kIn) return;
  settings_.sets = kLookupSets;
  Calls all;
  for (const Calls& calls : callsOn(pair_.model)) all.insert(all.end(), calls.begin(), calls.end());
  const Answers right = ask(all);
  ASSERT_FALSE(right.failed());
  const FaultKind kind = std::get<1>(GetParam());
  if (kind == FaultKind::kNew) return;  // the answers take memory as well
  expectSound(all, right);
}

INSTANTIATE_TEST_SUITE_P(Kinds, LookupFaults,
                         testing::Combine(testing::Range(0, static_cast<int>(std::size(kWays))),
                                          testing::Values(FaultKind::kOpen, FaultKind::kSeek,
                                                          FaultKind::kRead, FaultKind::kClose,
                                                          FaultKind::kAllocate, FaultKind::kMap,
                                                          FaultKind::kAdvise, FaultKind::kNew)),
                         [](const auto& info) {
                           return std::string(kWays[std::get<0>(info.param)].name) + "_" +
                                  kindName(std::get<1>(info.param));
                         });

}  // namespace
}  // namespace statecut::test
