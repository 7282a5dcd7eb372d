// A sample of the damages, each with the programs themselves in processes of their own.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstring>
#include <nlohmann/json.hpp>
#include <set>

#include "programs.h"
#include "sample.h"
#include "support/paths.h"
#include "support/process.h"
#include "verify/verify.h"

namespace statecut::test {

namespace {

double childSeconds(const rusage& usage) {
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

rusage childUsage() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return usage;
}

class Binaries : public testing::Test {
 protected:
  void SetUp() override {
    for (const Query& query : queriesOf(microPair(), Queries::kOneEach)) {
      nlohmann::json call = {{"op", query.front()}, {"args", nlohmann::json::array()}};
      for (std::size_t i = 1; i < query.size(); ++i) call["args"].push_back(query[i]);
      calls_ += call.dump() + "\n";
    }
    writeWholeFile(folder_.file("sound.dir"), microPair().ref);
    writeWholeFile(folder_.file("sound.rng"), microPair().rng);
    writeWholeFile(folder_.file("states"),
                   FileBytes(kMicroStates, kMicroStates + std::strlen(kMicroStates)));
  }

  // Runs a program on the pair: an end of its own with one of the statuses, in bounded time.
  ProcessResult expectEnd(const std::string& program, std::vector<std::string> arguments,
                          const std::set<int>& statuses, double mostSeconds) {
    Command command;
    command.program = program;
    command.folder = folder_.path();
    command.input = program == kStatedb && arguments[0] == "query" ? calls_ : "";
    command.arguments = std::move(arguments);
    const double before = childSeconds(childUsage());
    ProcessResult result = runProcess(command);
    const double seconds = childSeconds(childUsage()) - before;
    const std::string name = command.program + " " + command.arguments[0];
    EXPECT_FALSE(result.timedOut) << name;
    EXPECT_EQ(result.signal, 0) << name << "\n" << result.err;
    EXPECT_EQ(statuses.count(result.exitStatus), 1U)
        << name << " ended with " << result.exitStatus << "\n"
        << result.err;
    EXPECT_EQ(result.err.find("Sanitizer"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("runtime error"), std::string::npos) << result.err;
    EXPECT_LT(seconds, mostSeconds) << name;
    return result;
  }

  // Against the sound pair: equal, different, or a text that says why it can't be told.
  void expectDiff(std::vector<std::string> arguments, double mostSeconds) {
    arguments.insert(arguments.begin(), "diff");
    const ProcessResult result = expectEnd(kStatedb, arguments, {0, 1, 2}, mostSeconds);
    if (result.exitStatus != 2) return;
    EXPECT_EQ(result.err.rfind("statedb diff: ", 0), 0U) << result.err;
    EXPECT_EQ(result.out, "");
  }

  void runAll(const PairImage& pair, double mostSeconds) {
    writeWholeFile(folder_.file("city.dir"), pair.ref);
    writeWholeFile(folder_.file("zip4us.dir"), pair.rng);
    // Done; stamps that differ; a range file without its control record; any other failure.
    expectEnd(kStatecut, {"-s", "states"}, {0, 243, 244, 255}, mostSeconds);
    const int verdict = expectEnd(kStatedb, {"verify", "--ref", "city.dir", "--rng", "zip4us.dir"},
                                  {0, 1}, mostSeconds)
                            .exitStatus;
    verify::Options options;
    options.ref = folder_.file("city.dir");
    options.rng = folder_.file("zip4us.dir");
    std::string error;
    EXPECT_EQ(verdict, verify::check(options, error).clean() ? 0 : 1) << error;
    expectDiff({"city.dir", "sound.dir", "--rng", "zip4us.dir", "sound.rng"}, mostSeconds);
    expectDiff({"sound.dir", "city.dir", "--rng", "sound.rng", "zip4us.dir", "--json"},
               mostSeconds);
    expectEnd(kStatedb, {"info", "city.dir", "zip4us.dir"}, {0, 1}, mostSeconds);
    expectEnd(kStatedb, {"info", "--json", "city.dir", "zip4us.dir"}, {0, 1}, mostSeconds);
    for (const char* mode : {"in", "first", "off"})
      expectEnd(kStatedb, {"query", "--ref", "city.dir", "--rng", "zip4us.dir", "--mode", mode},
                {0, 1, 2}, mostSeconds);
    EXPECT_EQ(readWholeFile(folder_.file("city.dir")), pair.ref);
    EXPECT_EQ(readWholeFile(folder_.file("zip4us.dir")), pair.rng);
  }

  // A small pair with a range file of so many MiB; its folder.
  std::string buildSmall(int rangeMiB) {
    expectEnd(kStatedb,
              {"build", "--profile", "small", "--range-mb", std::to_string(rangeMiB), "--out",
               folder_.file("small")},
              {0}, 60.0);
    return folder_.file("small");
  }

  void runSample(const Damages& damages, const std::vector<std::size_t>& chosen,
                 double mostSeconds) {
    for (const std::size_t i : chosen) {
      SCOPED_TRACE(nameOf(damages, damages.list[i]) + " (seed " + std::to_string(seed()) + ")");
      runAll(damaged(microPair(), damages.list[i]), mostSeconds);
    }
  }

 private:
  TempDir folder_;
  std::string calls_;
};

TEST_F(Binaries, EndByThemselvesOnASampleOfTheDamages) {
  runAll(microPair(), 1.0);
  for (const Damages& damages :
       {everyLength(microPair()), fieldValues(microPair()), everyBit(microPair())}) {
    const auto usual = [&](const Damage& damage) { return !hostile(microPair(), damages, damage); };
    const std::size_t every = damages.list.size() / (kSanitized ? 20 : 150);
    runSample(damages, choose(damages, 0, 1, {every, 2}, usual), 1.0);
  }
  constexpr long kMostKiB = 256L << 10;
  if (!kSanitized) {
    EXPECT_LT(childUsage().ru_maxrss, kMostKiB);
  }
}

TEST_F(Binaries, EndByThemselvesOnACountOfALargeTable) {
  if (!longRun()) return runAll(microPair(), 1.0);
  const Damages damages = fieldValues(microPair());
  const auto large = [&](const Damage& damage) { return hostile(microPair(), damages, damage); };
  runSample(damages, choose(damages, 0, 1, {kSanitized ? 40U : 20U, 1}, large), 60.0);
}

// Range files are passed over, and do not pile up.
TEST_F(Binaries, ADifferenceTakesTheMemoryOfTheReferenceFiles) {
  constexpr long kMostKiB = 48L << 10;
  const std::string folder = buildSmall(64);
  expectEnd(kStatedb,
            {"diff", folder + "/city.dir", folder + "/city.dir", "--rng", folder + "/zip4us.dir",
             folder + "/zip4us.dir"},
            {0}, 60.0);
  // A sanitizer takes memory of its own: there the run has to end well.
  if (!kSanitized) {
    EXPECT_LT(childUsage().ru_maxrss, kMostKiB);
  }
}

}  // namespace

}  // namespace statecut::test
