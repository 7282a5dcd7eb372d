// `statedb cuts` that is killed with all its children at any moment and started again: what stands
// under a product's name is whole, and in the end the folder is that of an undisturbed run.

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include "cuts/names.h"
#include "dbbuilder/random.h"
#include "kills.h"
#include "support/paths.h"

namespace statecut::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// The log tells when it was written, and by which process.
std::string withoutTimes(const std::string& log) {
  std::istringstream in(log);
  std::string text;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("Start Time:") || line.starts_with("End Time:")) line.resize(10);
    if (const std::size_t at = line.find(";WARN;"); at != std::string::npos) {
      std::size_t end = at;
      for (int i = 0; i < 3 && end != std::string::npos; ++i) end = line.find(';', end + 1);
      line = "WARN" + (end == std::string::npos ? "" : line.substr(end));
    }
    text += line + '\n';
  }
  return text;
}

// Every file of a folder by its path in it.
std::map<std::string, std::string> contentOf(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = fs::relative(entry.path(), folder).string();
    if (entry.is_directory()) continue;
    const std::string text = readTextFile(entry.path().string());
    files[name] = name.ends_with(cuts::kLogName) ? withoutTimes(text) : text;
  }
  return files;
}

class CutsKills : public testing::Test {
 protected:
  void SetUp() override {
    ::setenv("SOURCE_DATE_EPOCH", "1500000000", 1);
    ::setenv("TZ", "UTC0", 1);
    Command build;
    build.program = kStatedb;
    build.arguments = {"build", "--profile", "tiny", "--out", folder_.file("pair")};
    ASSERT_EQ(runProcess(build).exitStatus, 0);
    const auto begin = Clock::now();
    ASSERT_EQ(runToItsEnd("right"), 0);
    span_ = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
    right_ = contentOf(folder_.file("right"));
    ASSERT_GE(right_.size(), 8U);
  }

  [[nodiscard]] std::vector<std::string> arguments(const std::string& out) const {
    return {"cuts",
            "--ref",
            folder_.file("pair/city.dir"),
            "--rng",
            folder_.file("pair/zip4us.dir"),
            "--out",
            folder_.file(out),
            "--each",
            "--jobs",
            "2"};
  }

  [[nodiscard]] int runToItsEnd(const std::string& out) const {
    Command command;
    command.program = kStatedb;
    command.arguments = arguments(out);
    const ProcessResult result = runProcess(command);
    EXPECT_EQ(result.err, "");
    return result.exitStatus;
  }

  // Starts a run in a process group of its own and kills the group. True when the run had not
  // ended.
  [[nodiscard]] bool killAfter(const std::string& out, std::chrono::microseconds moment) const {
    std::vector<std::string> words = arguments(out);
    words.insert(words.begin(), kStatedb);
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
      ::setpgid(0, 0);
      (void)::freopen("/dev/null", "w", stdout);
      ::execv(pointers[0], pointers.data());
      ::_exit(127);
    }
    ::setpgid(child, child);
    std::this_thread::sleep_for(moment);
    ::kill(-child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status);
  }

  // What stands under the name of a product, whatever was going on, is a sound cut of its state.
  void expectSoundProducts(const std::string& out) const {
    if (!fs::exists(folder_.file(out))) return;
    for (const auto& entry : fs::directory_iterator(folder_.file(out))) {
      const std::string name = entry.path().filename().string();
      if (!entry.is_directory() || name.starts_with(".")) continue;
      verify::Options options;
      options.ref = entry.path().string() + "/" + cuts::kReferenceName;
      options.rng = entry.path().string() + "/" + cuts::kRangeName;
      options.sourceRef = folder_.file("pair/city.dir");
      options.sourceRng = folder_.file("pair/zip4us.dir");
      options.states = name;
      const Verdict verdict = verdictOf(options);
      EXPECT_EQ(verdict.status, 0) << name << ": " << verdict.text;
    }
  }

  void expectRightFolder(const std::string& out) const {
    const auto found = contentOf(folder_.file(out));
    for (const auto& [name, text] : found)
      EXPECT_TRUE(right_.contains(name)) << name << " is there, and is not in an undisturbed run";
    for (const auto& [name, text] : right_) {
      const auto one = found.find(name);
      EXPECT_TRUE(one != found.end() && one->second == text) << name << " is not the right one";
    }
  }

  TempDir folder_;
  std::map<std::string, std::string> right_;
  std::chrono::microseconds span_{};
};

TEST_F(CutsKills, LeaveWholeProductsAndARunThatGoesOnMakesTheRightFolder) {
  builder::Random random(envNumber("STATECUT_KILLS_SEED", 1));
  const std::uint32_t wanted = longRun() ? 200 : 12;
  std::uint32_t kills = 0;
  const auto span = static_cast<std::uint32_t>(span_.count());
  for (std::uint32_t round = 0; kills < wanted && round < 4 * wanted && !HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const std::string out = "out" + std::to_string(round);
    // Two kills of a run and of the one that goes on, then a run to its end.
    for (int i = 0; i < 2; ++i) {
      const std::chrono::microseconds moment(random.below(span));
      if (killAfter(out, moment)) ++kills;
      expectSoundProducts(out);
    }
    EXPECT_EQ(runToItsEnd(out), 0);
    expectRightFolder(out);
    std::error_code ignored;
    fs::remove_all(folder_.file(out), ignored);
  }
  EXPECT_GE(kills, wanted);
  addCount("kills of runs of many cuts", kills);
}

// Replacing what is there keeps it until the new one is whole.
TEST_F(CutsKills, WhileProductsAreMadeAnewLeaveThemAllInPlace) {
  builder::Random random(envNumber("STATECUT_KILLS_SEED", 1) + 1);
  const std::uint32_t wanted = longRun() ? 50 : 4;
  const auto span = static_cast<std::uint32_t>(span_.count());
  ASSERT_EQ(runToItsEnd("out"), 0);
  for (std::uint32_t kill = 0; kill < wanted && !HasFailure(); ++kill) {
    // An older manifest: the run takes nothing of what it finds for its own.
    fs::remove(folder_.file("out/manifest.json"));
    (void)killAfter("out", std::chrono::microseconds(random.below(span)));
    expectSoundProducts("out");
    for (const auto& [name, text] : right_) {
      EXPECT_TRUE(name == cuts::kManifestName || fs::exists(folder_.file("out/" + name))) << name;
    }
  }
  EXPECT_EQ(runToItsEnd("out"), 0);
  expectRightFolder("out");
}

}  // namespace
}  // namespace statecut::test
