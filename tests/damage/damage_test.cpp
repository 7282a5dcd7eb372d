// Damaged pairs: every program ends by itself, and what changes its work is reported by verify.
// STATECUT_DAMAGE names one damage to run alone, STATECUT_DAMAGE_SEED chooses other samples.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "batch.h"
#include "dbbuilder/profiles.h"
#include "exceptions.h"
#include "sample.h"

namespace statecut::test {

namespace {

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// A finding names its rule and an offset.
bool reported(const Verdict& verdict) {
  return verdict.status == 1 && verdict.text.find(" offset ") != std::string::npos;
}

void expectNone(const Outcome& outcome) {
  addCount("damaged files", outcome.damages);
  for (const std::string& failure : outcome.failures)
    ADD_FAILURE() << failure << "\n(seed " << seed() << ')';
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
    const std::string difference = sound.difference(programs.behaviour);
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

class Shard : public testing::TestWithParam<std::size_t> {};
constexpr std::size_t kShards = 4;

TEST_P(Shard, EveryLengthOfATinyPairIsReported) {
  Damager damager(microPair(), nullptr, Queries::kOneEach);
  const Damages damages = everyLength(microPair());
  const auto any = [](const Damage&) { return true; };
  expectNone(damager.run(damages,
                         choose(damages, GetParam(), kShards, {kSanitized ? 200U : 1U, 60}, any),
                         {}, judgeLength));
}

TEST_P(Shard, EveryFieldOfATinyPairThatChangesAnAnswerIsReported) {
  Damager damager(microPair(), nullptr, Queries::kAll);
  const Damages damages = fieldValues(microPair());
  const auto usual = [&](const Damage& damage) { return !hostile(microPair(), damages, damage); };
  expectNone(damager.run(damages,
                         choose(damages, GetParam(), kShards, {kSanitized ? 8U : 1U, 100}, usual),
                         {}, changeJudge(damages)));
}

TEST_P(Shard, EveryBitOfATinyPairThatChangesAnAnswerIsReported) {
  Damager damager(microPair(), nullptr, Queries::kAll);
  const Damages damages = everyBit(microPair());
  const auto usual = [&](const Damage& damage) { return !hostile(microPair(), damages, damage); };
  expectNone(damager.run(damages,
                         choose(damages, GetParam(), kShards, {kSanitized ? 32U : 1U, 100}, usual),
                         {}, changeJudge(damages)));
}

TEST_P(Shard, EveryDamageToACutIsReportedWithItsSource) {
  Damager source(microPair(), nullptr, Queries::kOneEach);
  const PairImage cut = source.cutOf();
  Damager damager(cut, &microPair(), Queries::kOneEach);
  for (const Damages& damages : {fieldValues(cut), everyBit(cut)}) {
    const auto usual = [&](const Damage& damage) { return !hostile(cut, damages, damage); };
    expectNone(damager.run(damages,
                           choose(damages, GetParam(), kShards, {kSanitized ? 64U : 2U, 40}, usual),
                           {}, judgeCut));
  }
}

// Counts that make a table larger than 64 MiB take their time and memory, and no more.
TEST_P(Shard, ACountOfALargeTableTakesMemoryInProportion) {
  Damager damager(microPair(), nullptr, Queries::kOneEach);
  for (const Damages& damages : {fieldValues(microPair()), everyBit(microPair())}) {
    const auto large = [&](const Damage& damage) { return hostile(microPair(), damages, damage); };
    Limits limits;
    limits.seconds = 60;
    limits.memory = std::uint64_t{4} << 30;  // tables of at most 2 GiB, and their work tables
    expectNone(damager.run(damages,
                           choose(damages, GetParam(), kShards, {kSanitized ? 32U : 1U, 2}, large),
                           limits, changeJudge(damages)));
  }
}

INSTANTIATE_TEST_SUITE_P(Damage, Shard, testing::Range(std::size_t{0}, kShards));

TEST(Damage, EveryTableEdgeOfASmallPairIsReported) {
  const PairImage pair =
      imageOf(builder::makeModel(builder::smallPlaces(), builder::smallOptions()));
  Damager damager(pair, nullptr, Queries::kOneEach);
  const Damages damages = tableEdges(pair);
  const auto any = [](const Damage&) { return true; };
  expectNone(damager.run(damages, choose(damages, 0, 1, {1, 10}, any), {}, judgeLength));
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
