// `statedb diff` on releases that differ in known ways: every change, and nothing else.

#include "diff/diff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "dbbuilder/profiles.h"
#include "knownchanges.h"
#include "support/counts.h"
#include "support/paths.h"
#include "support/randomdb.h"

namespace statecut::test {
namespace {

// The quick tier takes a sample: unoptimised and sanitized, a comparison costs a tenth of a second.
const std::uint64_t kSeeds = longRun() ? 60 : 7;
const std::uint64_t kOddSeeds = longRun() ? 400 : 45;
const std::uint64_t kCutSeeds = longRun() ? 20 : 4;

class Diff : public testing::Test {
 protected:
  struct Result {
    int status = 0;
    std::string out, err;
  };

  Result diff(const std::string& before, const std::string& after, diff::Options options = {}) {
    options.oldRef = folder_.file(before + ".ref");
    options.newRef = folder_.file(after + ".ref");
    options.rng = {folder_.file(before + ".rng"), folder_.file(after + ".rng")};
    std::ostringstream out, err;
    const int status = diff::run(options, out, err);
    return {status, out.str(), err.str()};
  }

  // The lines of changes, sorted, but those of tables.
  static std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> found;
    std::istringstream in(text.substr(std::min(text.size(), text.find("\n\n"))));
    for (std::string line; std::getline(in, line);)
      if (!line.empty() && !line.starts_with("~ table ")) found.push_back(line);
    std::sort(found.begin(), found.end());
    return found;
  }

  void expectNothing(const std::string& before, const std::string& after) {
    const Result result = diff(before, after);
    EXPECT_EQ(result.status, 0) << result.err << result.out;
    EXPECT_EQ(result.out.find("\n\n"), std::string::npos) << result.out;
  }

  // Cuts a release to states under another name; false: there is nothing to cut.
  bool cut(const std::string& from, const std::string& to, const std::string& states) {
    Command command;
    command.program = kStatecut;
    command.arguments = {"-f", folder_.file(from + ".ref"), "-g", folder_.file(from + ".rng"),
                         "-o", folder_.file(to + ".ref"),   "-z", folder_.file(to + ".rng"),
                         "-l", folder_.file("log")};
    command.input = states;
    return runProcess(command).exitStatus == 0;
  }

  TempDir folder_;
};

TEST_F(Diff, FindsEveryChangeAndNothingElse) {
  std::size_t changes = 0, ofAreas = 0;
  for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const KnownPair pair = makeKnownPair(seed);
    writeRelease(folder_, "old", pair.before);
    writeRelease(folder_, "new", inAnotherOrder(pair.after, seed));
    const Result result = diff("old", "new");
    EXPECT_EQ(result.status, pair.changes.empty() ? 0 : 1) << result.err;
    ASSERT_EQ(lines(result.out), pair.changes);
    changes += pair.changes.size();
    ofAreas += static_cast<std::size_t>(std::count_if(
        pair.changes.begin(), pair.changes.end(),
        [](const std::string& line) { return line.find(" SFH shared by ") != std::string::npos; }));
  }
  EXPECT_GT(changes, kSeeds * 5);
  EXPECT_GT(ofAreas, kSeeds / 5);
}

TEST_F(Diff, OfAReleaseAndItselfIsNothing) {
  for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const builder::Model model = makeKnownPair(seed).before;
    writeRelease(folder_, "old", model);
    expectNothing("old", "old");
    writeRelease(folder_, "shuffled", inAnotherOrder(model, seed));
    EXPECT_NE(readWholeFile(folder_.file("old.ref")), readWholeFile(folder_.file("shuffled.ref")));
    expectNothing("old", "shuffled");
  }
}

TEST_F(Diff, OfAnOddReleaseAndItselfIsNothing) {
  std::size_t compared = 0;
  for (std::uint64_t seed = 0; seed < kOddSeeds; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const RandomCase made = makeRandomCase(seed);
    if (!made.ref || !made.rng) continue;
    writeWholeFile(folder_.file("odd.ref"), *made.ref);
    writeWholeFile(folder_.file("odd.rng"), *made.rng);
    const Result result = diff("odd", "odd");
    EXPECT_NE(result.status, 1) << result.out;
    if (result.status != 0) continue;  // damaged: it says so
    ++compared;
    EXPECT_EQ(result.out.find("\n\n"), std::string::npos) << result.out;
  }
  EXPECT_GT(compared, kOddSeeds / 4);
}

TEST_F(Diff, OfCutsFindsWhatThoseOfTheirSourcesHave) {
  for (std::uint64_t seed = 0; seed < kCutSeeds; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const KnownPair pair = makeKnownPair(seed);
    writeRelease(folder_, "old", pair.before);
    writeRelease(folder_, "new", pair.after);
    const std::string all;  // every state
    ASSERT_TRUE(cut("old", "oldcut", all) && cut("new", "newcut", all));
    expectNothing("oldcut", "oldcut");
    const Result result = diff("oldcut", "newcut");
    EXPECT_EQ(result.status, pair.changes.empty() ? 0 : 1) << result.err;
    EXPECT_EQ(lines(result.out), pair.changes);
  }
}

TEST_F(Diff, OfACutAndItsSourceIsNothingInTheStatesOfTheCut) {
  diff::Options options;
  options.states = "GA,PR";
  for (std::uint64_t seed = 0; seed < kCutSeeds; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    writeRelease(folder_, "old", builder::makeModel(builder::smallPlaces(), [&] {
                   auto made = builder::smallOptions();
                   made.seed = seed;
                   made.rangeBytes = 300000;
                   return made;
                 }()));
    ASSERT_TRUE(cut("old", "cut", "GA\nPR\n"));
    const Result kept = diff("old", "cut", options);
    EXPECT_EQ(kept.status, 0) << kept.out;
    EXPECT_EQ(diff("old", "cut").status, 1);
  }
}

TEST_F(Diff, OfSomeStatesTellsOnlyTheirs) {
  const KnownPair pair = makeKnownPair(3);
  writeRelease(folder_, "old", pair.before);
  writeRelease(folder_, "new", pair.after);
  std::vector<std::string> found;
  for (const char* state :
       {"AE", "AP", "CT", "GA", "ID", "KS", "ME", "NV", "OR", "PR", "SC", "WY"}) {
    diff::Options options;
    options.states = state;
    for (const std::string& line : lines(diff("old", "new", options).out)) {
      EXPECT_NE(line.find(state), std::string::npos) << line;
      found.push_back(line);
    }
  }
  std::vector<std::string> expected;
  for (const std::string& line : pair.changes)
    if (line.find(" street ") == std::string::npos && line.find(" firm ") == std::string::npos)
      expected.push_back(line);
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());  // moved to another state
  EXPECT_EQ(found, expected);
}

TEST_F(Diff, JsonHasTheCountsOfItsLists) {
  const KnownPair pair = makeKnownPair(5);
  writeRelease(folder_, "old", pair.before);
  writeRelease(folder_, "new", pair.after);
  diff::Options options;
  options.json = true;
  const auto full = nlohmann::json::parse(diff("old", "new", options).out);
  options.summary = true;
  const auto summary = nlohmann::json::parse(diff("old", "new", options).out);
  EXPECT_EQ(full["equal"], false);
  std::size_t listed = full["partitions"]["changes"].size();
  EXPECT_EQ(full["partitions"]["count"], listed);
  for (const char* group : {"zips", "cities", "otherCityNames", "streets", "firms"}) {
    for (const auto& [sort, count] : full[group]["counts"].items()) {
      EXPECT_EQ(full[group][sort].size(), count) << group << ' ' << sort;
      EXPECT_FALSE(summary[group].contains(sort));
      listed += full[group][sort].size();
    }
    EXPECT_EQ(full[group]["counts"], summary[group]["counts"]);
  }
  EXPECT_EQ(listed, pair.changes.size());
}

}  // namespace
}  // namespace statecut::test
