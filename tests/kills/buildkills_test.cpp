// `statedb build` that is killed at each of its writes: verify reports every pair that is neither
// the complete new one nor the complete one that stood there. The program is traced, and killed
// where a system call that writes begins or has ended.

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "kills.h"
#include "support/paths.h"

namespace statecut::test {
namespace {

struct Build {
  const char* name;
  std::vector<std::string> options;
  bool overOlder;  // a pair of another seed stands there already
};

const std::vector<Build>& builds() {
  static const std::vector<Build> all = {
      {"Tiny", {"--profile", "tiny"}, false},
      {"TinyOverAnOlderPair", {"--profile", "tiny"}, true},
      {"TinyWithMoreRange", {"--profile", "tiny", "--range-mb", "2"}, true}};
  return all;
}

enum class At : std::uint8_t { kBegin, kEnd };

struct Traced {
  bool killed = false;
  int status = -1;           // of a run to its end
  std::uint32_t writes = 0;  // seen until then
  std::string trouble;       // of the tracing itself
};

// Tells writes apart from other calls at the stop of a traced child.
bool isWrite(pid_t child, std::uint8_t& op) {
  struct __ptrace_syscall_info info {};
  if (::ptrace(static_cast<__ptrace_request>(PTRACE_GET_SYSCALL_INFO), child, sizeof info, &info) <=
      0)
    return false;
  op = info.op;
  if (op != PTRACE_SYSCALL_INFO_ENTRY) return false;
  constexpr long kCalls[] = {SYS_write, SYS_writev, SYS_pwrite64, SYS_ftruncate, SYS_renameat2};
  return std::find(std::begin(kCalls), std::end(kCalls), static_cast<long>(info.entry.nr)) !=
             std::end(kCalls) &&
         (info.entry.nr != SYS_write || info.entry.args[0] > STDERR_FILENO);
}

class BuildKills : public testing::TestWithParam<std::tuple<int, int>> {
 protected:
  BuildKills()
      : build_(builds()[static_cast<std::size_t>(std::get<0>(GetParam()))]),
        signal_(std::get<1>(GetParam())) {}

  [[nodiscard]] std::vector<std::string> argumentsFor(const char* folder, const char* seed) const {
    std::vector<std::string> words = {"build", "--out", folder_.file(folder), "--seed", seed};
    words.insert(words.end(), build_.options.begin(), build_.options.end());
    return words;
  }

  [[noreturn]] void become() const {
    std::vector<std::string> words = argumentsFor("pair", "1");
    words.insert(words.begin(), kStatedb);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    // The search for leaks does not work in a traced process.
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(126);
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }

  // Runs a build and kills it at its nth write; n = 0: to its end.
  Traced run(std::uint32_t n, At at) const {
    Traced traced;
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) become();
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) {
      traced.trouble = "this machine lets no process be traced (ptrace): status " +
                       std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1);
      return traced;
    }
    ::ptrace(PTRACE_SETOPTIONS, child, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    bool inWrite = false;
    int deliver = 0;
    for (;;) {
      ::ptrace(PTRACE_SYSCALL, child, 0, deliver);
      deliver = 0;
      ::waitpid(child, &status, 0);
      if (WIFEXITED(status)) traced.status = WEXITSTATUS(status);
      if (WIFSIGNALED(status)) traced.killed = WTERMSIG(status) == signal_;
      if (!WIFSTOPPED(status)) return traced;
      if (WSTOPSIG(status) != (SIGTRAP | 0x80)) {
        if (WSTOPSIG(status) != SIGTRAP) deliver = WSTOPSIG(status);
        continue;
      }
      std::uint8_t op = PTRACE_SYSCALL_INFO_NONE;
      const bool begins = isWrite(child, op);
      if (op == PTRACE_SYSCALL_INFO_NONE) {
        traced.trouble = "this machine does not tell the calls of a traced process";
        ::kill(child, SIGKILL);
        continue;
      }
      if (begins) ++traced.writes;
      const bool here = n != 0 && traced.writes == n &&
                        (at == At::kBegin ? begins : inWrite && op == PTRACE_SYSCALL_INFO_EXIT);
      inWrite = begins;
      if (here) ::kill(child, signal_);
    }
  }

  void prepare() const {
    std::error_code ignored;
    std::filesystem::remove_all(folder_.file("pair"), ignored);
    if (!build_.overOlder) return;
    std::filesystem::copy(folder_.file("older"), folder_.file("pair"));
  }

  void makeOlder() const {
    Command command;
    command.program = kStatedb;
    command.arguments = argumentsFor("older", "99");
    ASSERT_EQ(runProcess(command).exitStatus, 0);
  }

  [[nodiscard]] std::optional<FileBytes> made(const char* name) const {
    return readWholeFile(folder_.file("pair") + "/" + name);
  }

  [[nodiscard]] bool isPair(const std::optional<FileBytes>& ref,
                            const std::optional<FileBytes>& rng) const {
    return made("city.dir") == ref && made("zip4us.dir") == rng;
  }

  [[nodiscard]] Verdict verdict() const {
    verify::Options options;
    options.ref = folder_.file("pair") + "/city.dir";
    options.rng = folder_.file("pair") + "/zip4us.dir";
    return verdictOf(options);
  }

  TempDir folder_;
  const Build& build_;
  int signal_;
};

TEST_P(BuildKills, LeaveAPairThatVerifyReports) {
  if (!longRun() && (std::get<0>(GetParam()) != 1 || signal_ == SIGTERM)) return;
  if (build_.overOlder) makeOlder();
  prepare();
  const Traced whole = run(0, At::kBegin);
  ASSERT_EQ(whole.trouble, "");
  ASSERT_EQ(whole.status, 0);
  ASSERT_GT(whole.writes, 2U);
  const auto ref = made("city.dir");
  const auto rng = made("zip4us.dir");
  ASSERT_EQ(verdict().status, 0) << verdict().text;
  prepare();
  const auto olderRef = made("city.dir");
  const auto olderRng = made("zip4us.dir");
  if (build_.overOlder) {
    ASSERT_EQ(verdict().status, 0) << verdict().text;
    ASSERT_FALSE(isPair(ref, rng));
  }
  std::uint64_t kills = 0;
  for (std::uint32_t n = 1; n <= whole.writes && !HasFailure(); n += longRun() ? 1 : 1 + n / 2) {
    for (const At at : {At::kBegin, At::kEnd}) {
      SCOPED_TRACE("write " + std::to_string(n) + " of " + std::to_string(whole.writes) +
                   (at == At::kBegin ? ", before" : ", after"));
      prepare();
      EXPECT_TRUE(run(n, at).killed);
      const Verdict told = verdict();
      if (isPair(ref, rng) || (build_.overOlder && isPair(olderRef, olderRng))) {
        EXPECT_EQ(told.status, 0) << told.text;
      } else {
        EXPECT_NE(told.status, 0) << "verify is silent on an incomplete pair";
      }
      ++kills;
    }
  }
  addCount("kills", kills);
}

INSTANTIATE_TEST_SUITE_P(
    Each, BuildKills, testing::Combine(testing::Range(0, 3), testing::Values(SIGKILL, SIGTERM)),
    [](const auto& info) {
      return std::string(builds()[static_cast<std::size_t>(std::get<0>(info.param))].name) + "_" +
             signalName(std::get<1>(info.param));
    });

}  // namespace
}  // namespace statecut::test
