#include "run/rundriver.h"

#include <csignal>
#include <utility>

#include "base/clock.h"
#include "base/cmdline.h"
#include "base/procobj.h"
#include "run/process.h"
#include "unit/log/sandbox.h"
#include "unit/run/arguments.h"

namespace statecut::test {
namespace {

// Every run here ends before or at the opening of the databases, which are missing.
class RunDriverTest : public SandboxTest {
 protected:
  RunDriverTest() { writeFile("s", "TX\nOK\n"); }

  static ChildResult run(std::vector<std::string> arguments, const std::string& input = "") {
    return inChild(input, [&] {
      ::setenv("TZ", "UTC0", 1);
      ::tzset();
      currentTime = [] { return std::time_t{1794742805}; };
      Arguments list(std::move(arguments));
      return std::to_string(runMain(list.count(), list.vector()));
    });
  }
};

const char* const kSettings =
    "Start Time: 11 15 2026 11:40:05\n"
    "State file: s\n"
    "Log file           : log.txt\n"
    "Ref/City db file   : city.dir\n"
    "Range/Zip4 db file : zip4us.dir\n"
    "Output Ref/City db : city.sc\n"
    "Output Range/Zip4  : zip4us.sc\n";

TEST_F(RunDriverTest, StartSettingsAndEndLinesStandInTheLogOfAFailedCut) {
  const ChildResult child = run({"-s", "s", "-l", "log.txt", "-v", "1"});
  EXPECT_EQ(child.report, "-1");
  const std::string log = readFile("log.txt");
  EXPECT_TRUE(log.starts_with(std::string(kSettings) +
                              "Log level          : 1\nList of States...\nOK\nTX\n"))
      << log;
  EXPECT_TRUE(log.ends_with("End Time: 11 15 2026 11:40:05\n"));
  EXPECT_EQ(child.out, "Processing ... please wait.\n");
  EXPECT_EQ(child.err, "Opened state file: s\n");
}

TEST_F(RunDriverTest, LevelZeroWritesTheLinesToStandardOutputAndNoLog) {
  const ChildResult child = run({"-s", "s", "-l", "log.txt", "-v", "0"});
  EXPECT_EQ(child.report, "-1");
  EXPECT_FALSE(fileExists("log.txt"));
  EXPECT_EQ(child.out, "Processing ... please wait.\n" + std::string(kSettings) +
                           "Log level          : 0\nList of States...\nOK\nTX\n"
                           "End Time: 11 15 2026 11:40:05\n");
}

TEST_F(RunDriverTest, EmptyLogNameWritesTheLinesToStandardOutput) {
  const ChildResult child = run({"-s", "s", "-l", ""});
  EXPECT_EQ(child.report, "-1");
  EXPECT_NE(child.out.find("Log file           : \n"), std::string::npos);
  EXPECT_NE(child.out.find("Log level          : 3\n"), std::string::npos);
  EXPECT_NE(child.err.find("Could not write log message.\n"), std::string::npos);
}

TEST_F(RunDriverTest, DisplayListsTheTableAndOpensNothing) {
  const ChildResult child = run({"-i", "-s", "missing", "-t", "-l", "log.txt"});
  EXPECT_EQ(child.report, "0");
  EXPECT_EQ(child.out, "");
  EXPECT_TRUE(child.err.starts_with("Armed Forces Africa"));
  EXPECT_TRUE(child.err.ends_with("- WY\n"));
  EXPECT_FALSE(fileExists("log.txt"));
  EXPECT_FALSE(fileExists("tolvlog.txt"));
}

TEST_F(RunDriverTest, HelpWinsOverDisplay) {
  const ChildResult child = run({"-i", "-h"});
  EXPECT_EQ(child.report, "1");
  EXPECT_TRUE(child.err.starts_with("Usage: statecut [-s statefile]"));
  EXPECT_EQ(child.err.find("Armed Forces"), std::string::npos);
}

TEST_F(RunDriverTest, UsageFollowsEveryStatusOfTheCommandLine) {
  const std::string longName(1025, 'n');
  const std::pair<std::vector<std::string>, const char*> cases[] = {{{"-h"}, "1"},
                                                                    {{"-l", longName}, "-1"},
                                                                    {{"-f", longName}, "-3"},
                                                                    {{"-z", longName}, "-4"},
                                                                    {{"-s", longName}, "-5"},
                                                                    {{"-s", "missing"}, "-8"}};
  for (const auto& [arguments, status] : cases) {
    const ChildResult child = run(arguments);
    EXPECT_EQ(child.report, status);
    EXPECT_NE(child.err.find("Usage: statecut ["), std::string::npos);
    EXPECT_EQ(child.out, "");
  }
  EXPECT_FALSE(fileExists("tolvlog.txt"));
}

TEST_F(RunDriverTest, MissingProgramNameIsTheEmptyText) {
  const ChildResult child = inChild("zz\n", [] {
    char* none[] = {nullptr};
    return std::to_string(runMain(0, none));
  });
  EXPECT_EQ(child.report, "1");
  EXPECT_NE(child.err.find("Usage:  [-s"), std::string::npos);
}

TEST_F(RunDriverTest, LogThatCannotBeOpenedEndsTheRunWithoutAPrompt) {
  const ChildResult child = run({"-s", "s", "-t", "-l", "no/such/log"}, "\n");
  EXPECT_EQ(child.report, "-9");
  EXPECT_EQ(child.out, "Processing ... please wait.\n");
  EXPECT_EQ(child.err,
            "Opened state file: s\n"
            "Could not open log file <no/such/log>\n"
            "Errno = 2 : No such file or directory\n"
            "Could not open log file/utility: no/such/log\n");
}

TEST_F(RunDriverTest, LogOnAFullDeviceEndsTheRunFromLevelFourOn) {
  const std::string lost = "Errno = 28 : No space left on device\n";
  for (const char* level : {"4", "5"}) {
    const ChildResult child = run({"-s", "s", "-t", "-l", "/dev/full", "-v", level}, "\n");
    EXPECT_EQ(child.report, "-9") << level;
    EXPECT_EQ(child.out, "Processing ... please wait.\n");
    EXPECT_TRUE(child.err.starts_with("Opened state file: s\nCould not write log message.\n"));
    EXPECT_TRUE(child.err.ends_with("\n" + lost + "Could not open log file/utility: /dev/full\n"))
        << child.err;
  }
  // Below that the status is that of the cut, and what was lost is said once.
  for (const char* level : {"1", "3"}) {
    const ChildResult child = run({"-s", "s", "-l", "/dev/full", "-v", level});
    EXPECT_EQ(child.report, "-1") << level;
    EXPECT_TRUE(child.err.ends_with("\n" + lost)) << child.err;
    EXPECT_EQ(child.err.find(lost), child.err.rfind(lost));
  }
}

TEST_F(RunDriverTest, LogThatIsAnotherFileOfTheRunIsRefusedAndUntouched) {
  EXPECT_EQ(run({"-s", "s", "-l", "log.txt"}).report, "-1");
  for (const char* name : {"city.dir", "zip4us.dir", "s", "city.sc", "zip4us.sc"}) {
    const std::string before = std::string(name) == "s" ? "TX\n" : "content";
    writeFile(name, before);
    std::filesystem::create_hard_link(name, "hard");
    std::filesystem::create_symlink(name, "soft");
    for (const std::string& alias :
         {std::string(name), "./" + std::string(name), std::string("hard"), std::string("soft")}) {
      const ChildResult child = run({"-s", "s", "-l", alias});
      EXPECT_EQ(child.report, "-9") << alias;
      EXPECT_EQ(child.err, "Opened state file: s\nCould not open log file <" + alias +
                               ">\nErrno = 17 : File exists\nCould not open log file/utility: " +
                               alias + "\n");
      EXPECT_EQ(readFile(name), before) << alias;
    }
    std::filesystem::remove("hard");
    std::filesystem::remove("soft");
  }
}

TEST_F(RunDriverTest, LogThatWouldBecomeAnOutputIsRefusedAndNotCreated) {
  const ChildResult child = run({"-s", "s", "-l", "./new", "-o", "new"});
  EXPECT_EQ(child.report, "-9");
  EXPECT_FALSE(fileExists("new"));
}

TEST_F(RunDriverTest, LogThatIsNotOpenedIsNotCompared) {
  const ChildResult child = run({"-s", "s", "-l", "city.sc", "-v", "0"});
  EXPECT_EQ(child.report, "-1");
}

TEST_F(RunDriverTest, PromptReadsOneLineOfAnOpenStandardInput) {
  const ChildResult child = inChild("first\nsecond\n", [] {
    Arguments list({"-s", "s", "-t", "-l", "log.txt"});
    const std::int32_t status = runMain(list.count(), list.vector());
    return std::to_string(status) + static_cast<char>(std::getchar());
  });
  EXPECT_EQ(child.report, "-1s");
  EXPECT_EQ(child.out, "Processing ... please wait.\n\nPlease hit <Enter> key to continue...\n");
}

TEST_F(RunDriverTest, PromptDoesNotWaitForAStandardInputThatHeldTheList) {
  const ChildResult child = run({"-t", "-l", "log.txt"}, "TX\n\nmore\n");
  EXPECT_EQ(child.report, "-1");
  EXPECT_EQ(child.out,
            "State Abbreviations read from standard input.\nProcessing ... please wait.\n"
            "\nPlease hit <Enter> key to continue...\n");
}

TEST_F(RunDriverTest, RunSetsUpItsContext) {
  const ChildResult child = inChild("", [] {
    Arguments list({"-i"});
    std::string text = std::to_string(runMain(list.count(), list.vector()));
    const ProcObj& proc = *pProcObj;
    text += proc.files == &proc.fileRecord && proc.stats == &proc.statistics ? " linked" : "";
    text += proc.callerError == nullptr ? " no caller " : "";
    return text + proc.options->unnamed + "/" + proc.options->streetNamesMemory + "/" +
           proc.options->firmMemory;
  });
  EXPECT_EQ(child.report, "0 linked no caller OFF//");
}

TEST_F(RunDriverTest, EpochVariableDoesNotReachTheTimeLines) {
  ::setenv("SOURCE_DATE_EPOCH", "0", 1);
  run({"-s", "s", "-l", "log.txt"});
  ::unsetenv("SOURCE_DATE_EPOCH");
  EXPECT_TRUE(readFile("log.txt").starts_with("Start Time: 11 15 2026 11:40:05\n"));
}

class ProcessTest : public SandboxTest {};

TEST_F(ProcessTest, ClosedStandardDescriptorsAreTaken) {
  const ChildResult child = inChild("", [] {
    ::close(0);
    ::close(1);
    ::close(2);
    prepareProcess();
    const int next = ::open("/dev/null", O_RDONLY);
    const bool free = next <= 2;
    return std::to_string(::fcntl(0, F_GETFD) != -1) + std::to_string(::fcntl(1, F_GETFD) != -1) +
           std::to_string(::fcntl(2, F_GETFD) != -1) + (free ? " free" : " taken");
  });
  EXPECT_EQ(child.report, "111 taken");
}

TEST_F(ProcessTest, OpenStandardDescriptorsAreLeftAlone) {
  const ChildResult child = inChild("", [] {
    prepareProcess();
    std::fputs("still here", stdout);
    return std::string();
  });
  EXPECT_EQ(child.out, "still here");
}

TEST_F(ProcessTest, FileSizeLimitAndUnreadPipeAreNoSignals) {
  const ChildResult child = inChild("", [] {
    prepareProcess();
    return std::string(std::signal(SIGXFSZ, SIG_DFL) == SIG_IGN ? "ignored" : "default") +
           (std::signal(SIGPIPE, SIG_DFL) == SIG_DFL ? " default" : " ignored");
  });
  EXPECT_EQ(child.report, "ignored ignored");
}

}  // namespace
}  // namespace statecut::test
