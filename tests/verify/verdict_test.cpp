// Statuses, output, sound pairs of all kinds, and files that are no databases.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "dbbuilder/profiles.h"
#include "dbfiles/controlrec.h"
#include "fixture.h"
#include "support/counts.h"
#include "support/paths.h"

namespace statecut::test {

namespace {

using Ids = std::set<std::string>;
using R = RefControlRec;

class Verdict : public testing::Test {
 protected:
  void SetUp() override { fixture.write("source", bytesOf(soundModel())); }

  int run(const verify::Options& options) {
    out.str("");
    err.str("");
    return verify::run(options, out, err);
  }

  VerifyFixture fixture;
  std::ostringstream out;
  std::ostringstream err;
};

std::size_t lines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_F(Verdict, SoundPairIsOneLineAndZero) {
  EXPECT_EQ(run(fixture.options("source")), 0);
  EXPECT_EQ(lines(out.str()), 1U);
  EXPECT_NE(out.str().find("nothing wrong"), std::string::npos);
  EXPECT_EQ(err.str(), "");
}

TEST_F(Verdict, PairWithoutTheOptionalTablesIsSound) {
  builder::ProfileOptions options = builder::tinyOptions();
  options.military = false;
  options.poBoxZones = false;
  fixture.write("source", bytesOf(builder::makeModel(builder::tinyPlaces(), options)));
  EXPECT_EQ(trippedRules(fixture.options("source")), Ids{});
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  EXPECT_EQ(trippedRules(fixture.options("cut", "source")), Ids{});
}

TEST_F(Verdict, CutsOfOneSeveralRepeatedAllAndForeignStatesAreSound) {
  std::set<std::string> all;
  for (const builder::Place& place : builder::tinyPlaces()) all.insert(place.state);
  std::string everyState;
  for (const std::string& state : all) everyState += (everyState.empty() ? "" : ",") + state;
  const std::string first = *all.begin();
  const std::string last = *all.rbegin();
  ASSERT_EQ(all.count("GU"), 0U);
  for (const std::string& states :
       {first, last, first + "," + last, first + "," + first, everyState, std::string("GU")}) {
    ASSERT_NO_FATAL_FAILURE(fixture.cut("source", states, "cut"));
    EXPECT_EQ(trippedRules(fixture.options("cut", "source", states)), Ids{}) << states;
    EXPECT_EQ(trippedRules(fixture.options("cut")), Ids{}) << states;
  }
}

TEST_F(Verdict, PartitionsOfSizeZeroAreSound) {
  builder::Model model = soundModel();
  for (std::size_t i = 0; i < model.range.partitions.size(); i += 3)
    model.range.partitions[i].bytes = 0;
  fixture.write("source", bytesOf(model));
  EXPECT_EQ(trippedRules(fixture.options("source")), Ids{});
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  EXPECT_EQ(trippedRules(fixture.options("cut", "source")), Ids{});
}

TEST_F(Verdict, StatesMayBeLowerCaseWithBlanks) {
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", "TX,OK", "cut"));
  EXPECT_EQ(trippedRules(fixture.options("cut", "source", " tx , Ok ")), Ids{});
}

TEST_F(Verdict, CutOfOtherStatesIsFound) {
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  ASSERT_EQ(trippedRules(fixture.options("cut", "source")), Ids{});
  const Ids tripped = trippedRules(fixture.options("cut", "source", "GU"));
  EXPECT_EQ(tripped.count("cut.zips"), 1U);
  EXPECT_EQ(tripped.count("cut.control"), 1U);
}

TEST_F(Verdict, UncutPairIsNoCutOfItself) {
  ASSERT_EQ(trippedRules(fixture.options("source")), Ids{});
  EXPECT_EQ(trippedRules(fixture.options("source", "source")),
            (Ids{"cut.control", "cut.range-control"}));
}

TEST_F(Verdict, MissingFileAndFolderCannotRun) {
  EXPECT_EQ(run(fixture.options("source")), 0);
  EXPECT_EQ(run(fixture.options("missing")), 2);
  EXPECT_NE(err.str().find("missing.ref"), std::string::npos);
  verify::Options options = fixture.options("source");
  options.rng = "/";
  EXPECT_EQ(run(options), 2);
  EXPECT_NE(err.str().find("not a regular file"), std::string::npos);
  EXPECT_EQ(out.str(), "");
}

TEST_F(Verdict, SourceThatIsACutOrDamagedCannotRun) {
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  EXPECT_EQ(run(fixture.options("cut", "source")), 0);
  EXPECT_EQ(run(fixture.options("cut", "cut")), 2);
  EXPECT_NE(err.str().find("itself a state cut"), std::string::npos);
  PairBytes damaged = bytesOf(soundModel());
  damaged.setWord(R::zipBytesRba.at, 0);
  fixture.write("damaged", damaged);
  EXPECT_EQ(run(fixture.options("cut", "damaged")), 2);
  EXPECT_NE(err.str().find("Zip Bytes"), std::string::npos);
}

TEST_F(Verdict, ListThatHoldsNoStatesCannotRun) {
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  EXPECT_EQ(run(fixture.options("cut", "source")), 0);
  for (const char* list : {"", " ,", "TEX", "T", "T1", "TX;OK"})
    EXPECT_EQ(run(fixture.options("cut", "source", list)), 2) << list;
}

TEST_F(Verdict, ManyFindingsOfARuleAreCutShort) {
  PairBytes damaged = bytesOf(soundModel());
  unsigned char* index = damaged.table(R::zipIndexRba.at);
  for (std::uint32_t zip = 0; zip < 100000; ++zip) le::put<2>(index + 2 * zip, 1);
  fixture.write("damaged", damaged);
  EXPECT_EQ(run(fixture.options("damaged")), 1);
  const std::string text = out.str();
  std::size_t shown = 0;
  for (std::size_t at = text.find("zip.index: "); at != std::string::npos;
       at = text.find("zip.index: ", at + 1))
    ++shown;
  EXPECT_EQ(shown, verify::Report::kKeptPerRule + 1);
  EXPECT_NE(text.find("zip.index: 99979 more, 99999 in all\n"), std::string::npos);
}

TEST_F(Verdict, FindingNamesRuleRecordAndOffset) {
  PairBytes damaged = bytesOf(soundModel());
  const std::uint32_t at = damaged.word(R::cityNamesRba.at) + 3 * 34 + 3;
  damaged.ref[at] = 200;
  fixture.write("damaged", damaged);
  EXPECT_EQ(run(fixture.options("damaged")), 1);
  EXPECT_EQ(out.str(), "city.name: " + fixture.options("damaged").ref + " record 3 offset " +
                           std::to_string(at) + ": name length 200\n");
}

TEST_F(Verdict, JsonIsOneDocument) {
  verify::Options options = fixture.options("source");
  options.json = true;
  EXPECT_EQ(run(options), 0);
  auto document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["ok"], true);
  EXPECT_TRUE(document["findings"].empty());
  PairBytes damaged = bytesOf(soundModel());
  damaged.rng[20] ^= 1;
  fixture.write("source", damaged);
  EXPECT_EQ(run(options), 1);
  document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["ok"], false);
  EXPECT_EQ(document["counts"]["stamp.build"], 1);
  EXPECT_EQ(document["findings"][0]["rule"], "stamp.build");
  EXPECT_EQ(document["findings"][0]["file"], options.rng);
  EXPECT_EQ(document["findings"][0]["offset"], 20);
  EXPECT_TRUE(document["findings"][0]["record"].is_null());
}

TEST_F(Verdict, IgnoredRuleMakesNoFindingAndIsCounted) {
  PairBytes damaged = bytesOf(soundModel());
  damaged.rng[20] ^= 1;
  damaged.ref.push_back(0);
  fixture.write("source", damaged);
  verify::Options options = fixture.options("source");
  EXPECT_EQ(trippedRules(options), (Ids{"stamp.build", "table.gap"}));
  options.ignored = {"table.gap"};
  EXPECT_EQ(trippedRules(options), Ids{"stamp.build"});
  options.ignored = {"table.gap", "stamp.build", "table.gap"};
  EXPECT_EQ(run(options), 0);
  EXPECT_NE(out.str().find("nothing wrong\nstamp.build: ignored, 1 in all\n"), std::string::npos);
}

// What a rule goes by another one's count for is not checked, ignored or not.
TEST_F(Verdict, IgnoredRuleStillKeepsItsConsequencesOut) {
  builder::Model model = soundModel();
  std::reverse(model.cityNames.begin() + 1, model.cityNames.end());
  fixture.write("source", bytesOf(model));
  verify::Options options = fixture.options("source");
  const Ids before = trippedRules(options);
  ASSERT_EQ(before.count("city.order"), 1U);
  options.ignored = {"city.order"};
  Ids after = trippedRules(options);
  after.insert("city.order");
  EXPECT_EQ(after, before);
}

TEST_F(Verdict, UnknownRuleCannotBeIgnored) {
  verify::Options options = fixture.options("source");
  options.ignored = {"table.gap"};
  EXPECT_EQ(run(options), 0);
  options.ignored = {"table.gap", "no.rule"};
  EXPECT_EQ(run(options), 2);
  EXPECT_NE(err.str().find("no.rule"), std::string::npos);
}

TEST_F(Verdict, FilesThatAreNoPairCannotRunWithTheirRuleIgnored) {
  verify::Options options = fixture.options("source");
  options.ignored = {"file.short", "type.flags"};
  EXPECT_EQ(run(options), 0);
  std::swap(options.ref, options.rng);
  EXPECT_EQ(run(options), 2);
  EXPECT_EQ(out.str(), "");
}

TEST_F(Verdict, CommandLineNeedsSourceAndStatesTogether) {
  const verify::Options options = fixture.options("source");
  Command command;
  command.program = kStatedb;
  command.arguments = {"verify", "--ref", options.ref, "--rng", options.rng};
  EXPECT_EQ(runProcess(command).exitStatus, 0);
  command.arguments.insert(command.arguments.end(), {"--states", "TX"});
  EXPECT_EQ(runProcess(command).exitStatus, 2);
  command.arguments = {"verify", "--ref", options.ref};
  EXPECT_EQ(runProcess(command).exitStatus, 2);
}

TEST_F(Verdict, FilesOfAnyLengthAreJudged) {
  const PairBytes sound = bytesOf(soundModel());
  for (std::size_t length = 0; length < sound.ref.size(); length = length * 5 / 4 + 97) {
    PairBytes cutShort = sound;
    cutShort.ref.resize(length);
    fixture.write("short", cutShort);
    EXPECT_EQ(run(fixture.options("short")), 1) << length;
  }
  for (std::size_t length = 0; length < sound.rng.size(); length = length * 3 / 2 + 97) {
    PairBytes cutShort = sound;
    cutShort.rng.resize(length);
    fixture.write("short", cutShort);
    EXPECT_EQ(run(fixture.options("short")), 1) << length;
  }
}

// Any word of the control records, set to anything.
TEST_F(Verdict, WildControlRecordsAreJudged) {
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  for (const char* name : {"source", "cut"}) {
    const PairBytes sound = fixture.read(name);
    for (std::size_t at = 32; at < 332; at += longRun() ? 4 : 12)
      for (const std::uint32_t value : {0U, 1U, 845U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        PairBytes wild = sound;
        wild.setWord(at, value);
        fixture.write("wild", wild);
        EXPECT_NE(run(fixture.options("wild")), 2) << at;
        EXPECT_NE(run(fixture.options("wild", "source")), 2) << at;
      }
  }
}

TEST_F(Verdict, RandomBytesAreJudged) {
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  const PairBytes sound = fixture.read("cut");
  for (unsigned seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    PairBytes wild = sound;
    for (unsigned n = 0; n < 40 * seed; ++n)
      wild.ref[844 + random() % (wild.ref.size() - 844)] = static_cast<unsigned char>(random());
    fixture.write("wild", wild);
    EXPECT_EQ(run(fixture.options("wild", "source")), 1) << seed;
  }
}

}  // namespace

}  // namespace statecut::test
