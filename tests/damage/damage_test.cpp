// Damaged pairs: every program ends by itself, and what changes its work is reported by verify.
// STATECUT_DAMAGE names one damage to run alone, STATECUT_DAMAGE_SEED chooses other samples.

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <string_view>

#include "batch.h"
#include "dbbuilder/profiles.h"
#include "exceptions.h"
#include "query/ops.h"
#include "sample.h"
#include "verify/rules.h"

namespace statecut::test {

namespace {

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// Takes `word` and a number off the front of a line.
bool takeNumber(std::string_view& line, std::string_view word) {
  if (!line.starts_with(word)) return false;
  const std::size_t digits = line.find_first_not_of("0123456789", word.size());
  if (digits == word.size() || digits == std::string_view::npos) return false;
  line.remove_prefix(digits);
  return true;
}

// "RULE: FILE offset N: TEXT", with " record N" in front of the offset or not.
bool isFinding(std::string_view line) {
  const std::size_t rule = line.find(": ");
  if (rule == std::string_view::npos || !verify::ruleNamed(line.substr(0, rule))) return false;
  const std::size_t file = line.find(' ', rule + 2);
  if (file == std::string_view::npos) return false;
  line.remove_prefix(file);
  takeNumber(line, " record ");
  return takeNumber(line, " offset ") && line.starts_with(": ") && line.size() > 2;
}

// "RULE: N more, M in all", behind the findings of a rule.
bool isRest(std::string_view line) {
  const std::size_t rule = line.find(": ");
  if (rule == std::string_view::npos || !verify::ruleNamed(line.substr(0, rule))) return false;
  line.remove_prefix(rule + 1);
  return takeNumber(line, " ") && takeNumber(line, " more, ") && line == " in all";
}

// Every finding names its rule and an offset.
bool reported(const Verdict& verdict) {
  std::size_t findings = 0;
  for (std::size_t at = 0; at < verdict.text.size();) {
    const std::size_t end = std::min(verdict.text.find('\n', at), verdict.text.size());
    const std::string_view line(verdict.text.data() + at, end - at);
    at = end + 1;
    if (isFinding(line))
      ++findings;
    else if (findings == 0 || !isRest(line))
      return false;
  }
  return verdict.status == 1 && findings > 0;
}

void expectNone(const Outcome& outcome) {
  addCount("damaged files", outcome.damages);
  addCount("damaged sources that cut with status 0, all reported by verify", outcome.silentCuts);
  addCount("the same, of values that no rule can judge", outcome.exceptedCuts);
  for (const std::string& failure : outcome.failures)
    ADD_FAILURE() << failure << "\n(seed " << seed() << ')';
}

// Under the sanitizers the long tier runs one program a file beside verify, so that all files have
// their turn.
Damages inTurn(Damages damages) {
  if (kSanitized && longRun() && std::getenv("STATECUT_DAMAGE") == nullptr) takeTurns(damages);
  return damages;
}

// Whatever shortens a file is reported.
std::string judgeLength(const Damage&, const Programs& programs, const Behaviour&) {
  return reported(programs.alone) ? "" : "statedb verify: " + firstLine(programs.alone.text);
}

// Whatever changes an answer or a cut is reported, but for the exceptions.
Judge changeJudge(const Damages& damages) {
  return [&damages](const Damage& damage, const Programs& programs,
                    const Behaviour& sound) -> std::string {
    if (reported(programs.alone)) return "";
    if (programs.alone.status != 0) return "statedb verify: " + firstLine(programs.alone.text);
    const std::string difference = sound.difference(programs.behaviour, damage.programs);
    if (difference.empty()) return "";
    const Field& field = damages.fields[damage.field];
    if (const Exception* known = exceptionOf(microPair(), field, damage); known != nullptr)
      return std::string("\n") + nameOf(*known);
    return "statedb verify reports nothing, yet " + difference;
  };
}

// Whatever is damaged in a cut is reported when its source is there.
std::string judgeCut(const Damage&, const Programs& programs, const Behaviour&) {
  if (reported(programs.withSource)) return "";
  return "statedb verify with the source: " + firstLine(programs.withSource.text);
}

// What can't be compared is said in words.
std::string judgeDifference(const Damage&, const Programs& programs, const Behaviour&) {
  const Verdict& told = programs.diff;
  const bool compared = told.status == 0 || told.status == 1;
  const bool refused = told.status == 2 && told.text.starts_with("statedb diff: ");
  return compared || refused
             ? ""
             : "statedb diff: status " + std::to_string(told.status) + ", " + firstLine(told.text);
}

class Shard : public testing::TestWithParam<std::size_t> {};
constexpr std::size_t kShards = 4;

TEST_P(Shard, EveryLengthOfATinyPairIsReported) {
  Damager damager(microPair(), nullptr, Queries::kOneEach);
  const Damages damages = inTurn(everyLength(microPair()));
  const auto any = [](const Damage&) { return true; };
  expectNone(damager.run(damages,
                         choose(damages, GetParam(), kShards, {kSanitized ? 3U : 1U, 60}, any), {},
                         judgeLength));
}

TEST_P(Shard, EveryFieldOfATinyPairThatChangesAnAnswerIsReported) {
  Damager damager(microPair(), nullptr, Queries::kAll);
  const Damages damages = inTurn(fieldValues(microPair()));
  const auto usual = [&](const Damage& damage) { return !hostile(microPair(), damages, damage); };
  expectNone(damager.run(damages, choose(damages, GetParam(), kShards, {1, 100}, usual), {},
                         changeJudge(damages)));
}

TEST_P(Shard, EveryBitOfATinyPairThatChangesAnAnswerIsReported) {
  Damager damager(microPair(), nullptr, Queries::kAll);
  const Damages damages = inTurn(everyBit(microPair()));
  const auto usual = [&](const Damage& damage) { return !hostile(microPair(), damages, damage); };
  expectNone(damager.run(damages, choose(damages, GetParam(), kShards, {1, 100}, usual), {},
                         changeJudge(damages)));
}

TEST_P(Shard, EveryDamageToACutIsReportedWithItsSource) {
  Damager source(microPair(), nullptr, Queries::kOneEach);
  const PairImage cut = source.cutOf();
  Damager damager(cut, &microPair(), Queries::kOneEach);
  for (const Damages& damages : {inTurn(fieldValues(cut)), inTurn(everyBit(cut))}) {
    const auto usual = [&](const Damage& damage) { return !hostile(cut, damages, damage); };
    expectNone(
        damager.run(damages, choose(damages, GetParam(), kShards, {2, 40}, usual), {}, judgeCut));
  }
}

// Counts that make a table larger than 64 MiB take their time and memory, and no more.
TEST_P(Shard, ACountOfALargeTableTakesMemoryInProportion) {
  ::mallopt(M_PERTURB, 0);  // what is filled is resident
  Damager damager(microPair(), nullptr, Queries::kOneEach);
  for (const Damages& damages : {fieldValues(microPair()), everyBit(microPair())}) {
    const auto large = [&](const Damage& damage) { return hostile(microPair(), damages, damage); };
    Limits limits;
    limits.seconds = 60;
    // Each table of the count is in memory once: a lookup keeps those that it loaded, and the new
    // tables and maps of a cut are written, and so resident, no further than their sound records.
    // A sanitizer takes an eighth more and holds back memory that was released.
    limits.timesTables = kSanitized ? 2 : 1;
    expectNone(damager.run(damages,
                           choose(damages, GetParam(), kShards, {kSanitized ? 8U : 1U, 2}, large),
                           limits, changeJudge(damages)));
  }
}

INSTANTIATE_TEST_SUITE_P(Damage, Shard, testing::Range(std::size_t{0}, kShards));

TEST(Damage, ADifferenceToADamagedPairIsToldOrRefused) {
  Damager damager(microPair(), nullptr, Queries::kOneEach);
  for (Damages damages :
       {everyLength(microPair()), fieldValues(microPair()), everyBit(microPair())}) {
    for (Damage& damage : damages.list) damage.programs = bitOf(Program::kDiff);
    const auto usual = [&](const Damage& damage) { return !hostile(microPair(), damages, damage); };
    expectNone(damager.run(damages, choose(damages, 0, 1, {kSanitized ? 40U : 4U, 12}, usual), {},
                           judgeDifference));
  }
}

TEST(Damage, EveryTableEdgeOfASmallPairIsReported) {
  const PairImage pair =
      imageOf(builder::makeModel(builder::smallPlaces(), builder::smallOptions()));
  Damager damager(pair, nullptr, Queries::kOneEach);
  const Damages damages = tableEdges(pair);
  const auto any = [](const Damage&) { return true; };
  expectNone(damager.run(damages, choose(damages, 0, 1, {1, 10}, any), {}, judgeLength));
}

TEST(Damage, EveryOperationOfAQueryIsCalled) {
  std::set<std::string> called[2];
  for (const Queries which : {Queries::kAll, Queries::kOneEach})
    for (const Query& query : queriesOf(microPair(), which))
      called[which == Queries::kAll ? 0 : 1].insert(query.front());
  for (const auto group : query::opGroups())
    for (const query::Op& op : group) {
      EXPECT_EQ(called[0].count(op.name), 1U) << op.name;
      EXPECT_EQ(called[1].count(op.name), 1U) << op.name;
    }
}

TEST(Damage, EveryExceptionIsMet) {
  Damager damager(microPair(), nullptr, Queries::kAll);
  std::set<std::string> wanted;
  builder::Random random(seed());
  for (const Exception& one : exceptions())
    if ((longRun() && !kSanitized) || random.below(kSanitized ? 40 : 20) == 0)
      wanted.insert(nameOf(one));
  std::set<std::string> met;
  for (const Damages& damages : {fieldValues(microPair()), everyBit(microPair())}) {
    std::map<std::string, int> tried;
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < damages.list.size(); ++i) {
      const Exception* one =
          exceptionOf(microPair(), damages.fields[damages.list[i].field], damages.list[i]);
      if (one == nullptr || hostile(microPair(), damages, damages.list[i])) continue;
      if (wanted.count(nameOf(*one)) != 0 && ++tried[nameOf(*one)] <= 40) chosen.push_back(i);
    }
    const Outcome outcome = damager.run(damages, chosen, {}, changeJudge(damages));
    met.insert(outcome.notes.begin(), outcome.notes.end());
  }
  for (const std::string& one : wanted)
    EXPECT_EQ(met.count(one), 1U) << one << " is no exception: all of its damages are reported";
}

}  // namespace

}  // namespace statecut::test
