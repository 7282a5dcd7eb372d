#include "run/settings.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/cmdline.h"
#include "base/stream.h"
#include "unit/log/sandbox.h"
#include "unit/run/arguments.h"

namespace statecut::test {
namespace {

std::string shown(const char* name) { return name == nullptr ? "(null)" : name; }

// The names in one line, short ones only.
std::string names() {
  return shown(cmdLine.logFile) + " " + shown(cmdLine.configFile) + " " + shown(cmdLine.refDb) +
         " " + shown(cmdLine.rangeDb) + " " + shown(cmdLine.stateFile) + " " +
         shown(cmdLine.refOut) + " " + shown(cmdLine.rangeOut);
}

class SettingsTest : public SandboxTest {
 protected:
  SettingsTest() { writeFile("s", "TX\nOK\n"); }

  // Parses with the state file "s" unless the arguments hold their own; `report` is evaluated in
  // the child behind the status.
  static ChildResult parse(std::vector<std::string> arguments,
                           const std::function<std::string()>& report = names) {
    return inChild("NY\n", [&] {
      Arguments list(std::move(arguments));
      const std::int32_t status = parseCmdLine(list.count(), list.vector());
      std::string text = std::to_string(status) + " " + report();
      freeCmdLine();
      return text;
    });
  }
  static ChildResult parsed(std::vector<std::string> arguments,
                            const std::function<std::string()>& report = names) {
    arguments.insert(arguments.begin(), {"-s", "s"});
    return parse(std::move(arguments), report);
  }
};

std::string level() { return std::to_string(cmdLine.logLevel); }

TEST_F(SettingsTest, DefaultsAreFilledIn) {
  const ChildResult child = parsed({}, [] {
    return names() + " " + level() + " " + std::to_string(cmdLine.displayInfo) +
           std::to_string(cmdLine.prompt) + " " + std::to_string(cmdLine.stateCount) + " " +
           cmdLine.states[0] + cmdLine.states[1];
  });
  EXPECT_EQ(child.report,
            "0 tolvlog.txt tolv.cfg city.dir zip4us.dir s city.sc zip4us.sc 3 00 2 OKTX");
  EXPECT_EQ(child.err, "Opened state file: s\n");
}

TEST_F(SettingsTest, EveryNameHasItsOptionInBothCases) {
  EXPECT_EQ(parse({"-l", "L", "-f", "F", "-g", "G", "-s", "s", "-o", "O", "-z", "Z"}).report,
            "0 L tolv.cfg F G s O Z");
  EXPECT_EQ(parse({"-L", "L", "-F", "F", "-G", "G", "-S", "s", "-O", "O", "-ZZ"}).report,
            "0 L tolv.cfg F G s O Z");
}

TEST_F(SettingsTest, LastOfARepeatedOptionWins) {
  EXPECT_EQ(parsed({"-f", "one", "-F", "two"}).report,
            "0 tolvlog.txt tolv.cfg two zip4us.dir s city.sc zip4us.sc");
}

TEST_F(SettingsTest, LevelIsClampedAndNonNumbersAreZero) {
  const std::pair<const char*, const char*> cases[] = {{"0", "0"},
                                                       {"4", "4"},
                                                       {"5", "5"},
                                                       {"9", "5"},
                                                       {"-2", "0"},
                                                       {"x", "0"},
                                                       {"", "0"},
                                                       {"4x", "4"},
                                                       {" +4", "4"},
                                                       {"99999999999999999999999", "5"},
                                                       {"-99999999999999999999999", "0"}};
  for (const auto& [argument, expected] : cases) {
    EXPECT_EQ(parsed({"-v", argument}, level).report, std::string("0 ") + expected) << argument;
    EXPECT_EQ(parsed({"-V", argument}, level).report, std::string("0 ") + expected) << argument;
  }
}

TEST_F(SettingsTest, PromptAndDisplayAreSwitches) {
  const auto switches = [] {
    return std::to_string(cmdLine.displayInfo) + std::to_string(cmdLine.prompt);
  };
  EXPECT_EQ(parsed({"-t"}, switches).report, "0 01");
  EXPECT_EQ(parsed({"-T"}, switches).report, "0 01");
  EXPECT_EQ(parsed({"-I"}, switches).report, "0 10");
  EXPECT_EQ(parsed({"-it"}, switches).report, "0 11");
}

TEST_F(SettingsTest, IgnoredOptionConsumesItsArgument) {
  const std::string plain = parsed({}).report;
  EXPECT_EQ(parsed({"-r", "-h"}).report, plain);
  EXPECT_EQ(parsed({"-R", "anything"}).report, plain);
}

TEST_F(SettingsTest, DisplayReadsNoStatesAndFillsNoDefaults) {
  const ChildResult child = parse({"-i", "-s", "missing"});
  EXPECT_EQ(child.report, "0 (null) (null) (null) (null) missing (null) (null)");
  EXPECT_EQ(child.err + child.out, "");
}

TEST_F(SettingsTest, HelpStopsWithStatusOneBeforeStatesAreRead) {
  EXPECT_EQ(parsed({}).err, "Opened state file: s\n");
  for (const char* option : {"-h", "-H", "-?"}) {
    const ChildResult child = parsed({option});
    EXPECT_EQ(child.report, "1 (null) (null) (null) (null) s (null) (null)") << option;
    EXPECT_EQ(child.err + child.out, "") << option;
  }
}

TEST_F(SettingsTest, UnknownLetterIsReportedByTheOptionReader) {
  const ChildResult child = parsed({"-q"});
  EXPECT_TRUE(child.report.starts_with("1 "));
  EXPECT_EQ(child.err, "statecut: invalid option -- 'q'\n");
}

TEST_F(SettingsTest, ConfigurationFileOptionCannotBeGiven) {
  const ChildResult child = parsed({"-c", std::string(2000, 'c')});
  EXPECT_EQ(child.report, "1 (null) (null) (null) (null) s (null) (null)");
  EXPECT_EQ(child.err, "statecut: invalid option -- 'c'\n");
}

TEST_F(SettingsTest, MissingArgumentIsStatusOne) {
  const ChildResult child = parsed({"-l"});
  EXPECT_TRUE(child.report.starts_with("1 "));
  EXPECT_EQ(child.err, "statecut: option requires an argument -- 'l'\n");
}

TEST_F(SettingsTest, ClusterLeftInTheMiddleIsForgottenByTheNextCall) {
  const auto displayAfter = [](const char* earlier) {
    return inChild("NY\n", [earlier] {
      Arguments first({earlier});
      static_cast<void>(parseCmdLine(first.count(), first.vector()));
      Arguments second({});
      static_cast<void>(parseCmdLine(second.count(), second.vector()));
      std::string text = std::to_string(cmdLine.displayInfo);
      freeCmdLine();
      return text;
    });
  };
  EXPECT_EQ(displayAfter("-h").report, "0");
  EXPECT_EQ(displayAfter("-hti").report, "0");  // -h ends the call, -t is taken, -i is left
}

TEST_F(SettingsTest, OneMoreOptionIsTakenAfterHelpAndNotApplied) {
  const ChildResult unknown = parsed({"-h", "-q", "-x"});
  EXPECT_TRUE(unknown.report.starts_with("1 "));
  EXPECT_EQ(unknown.err, "statecut: invalid option -- 'q'\n");
  EXPECT_EQ(parsed({"-h", "-v", "5"}, level).report, "1 3");
  EXPECT_EQ(parsed({"-hi"}, [] { return std::to_string(cmdLine.displayInfo); }).report, "1 0");
}

TEST_F(SettingsTest, NameOf1024CharactersIsAcceptedAndOneMoreHasItsStatus) {
  const std::string longest(1024, 'n');
  const std::pair<const char*, const char*> cases[] = {
      {"-l", "-1"}, {"-f", "-3"}, {"-g", "-4"}, {"-o", "-3"}, {"-z", "-4"},
      {"-L", "-1"}, {"-F", "-3"}, {"-G", "-4"}, {"-O", "-3"}, {"-Z", "-4"}};
  for (const auto& [option, status] : cases) {
    EXPECT_TRUE(parsed({option, longest}).report.starts_with("0 ")) << option;
    const ChildResult child = parsed({option, longest + "n"});
    EXPECT_EQ(child.report, std::string(status) + " (null) (null) (null) (null) s (null) (null)");
    EXPECT_EQ(child.err, "Make sure files names are not longer than 1024 characters.\n");
  }
}

TEST_F(SettingsTest, StateFileNameHasItsOwnStatus) {
  const ChildResult fits = parse({"-s", std::string(1024, 'n')});
  EXPECT_TRUE(fits.report.starts_with("-8 "));
  const ChildResult child = parse({"-s", std::string(1025, 'n')});
  EXPECT_TRUE(child.report.starts_with("-5 "));
  EXPECT_EQ(child.err, "Make sure files names are not longer than 1024 characters.\n");
}

TEST_F(SettingsTest, FirstNameThatIsTooLongDecides) {
  const std::string longName(1025, 'n');
  EXPECT_TRUE(parsed({"-g", longName, "-l", longName}).report.starts_with("-4 "));
}

TEST_F(SettingsTest, NameThatIsTooLongLeavesTheEarlierOne) {
  EXPECT_EQ(parsed({"-f", "kept", "-f", std::string(1025, 'n')}).report,
            "-3 (null) (null) kept (null) s (null) (null)");
}

TEST_F(SettingsTest, EmptyNamesStayEmpty) {
  EXPECT_EQ(parsed({"-l", "", "-f", "", "-g", "", "-o", "", "-z", ""}).report, "0  tolv.cfg   s  ");
  const ChildResult child = parse({"-s", ""});
  EXPECT_TRUE(child.report.starts_with("-8 "));
  EXPECT_EQ(child.err, "Could not open state file: \n");
}

TEST_F(SettingsTest, OperandsAreIgnoredWhereverTheyStand) {
  EXPECT_EQ(parse({"operand", "-s", "s", "more", "-l", "L", "last"}).report,
            "0 L tolv.cfg city.dir zip4us.dir s city.sc zip4us.sc");
  EXPECT_EQ(parse({"-s", "s", "--", "-l", "L"}).report,
            "0 tolvlog.txt tolv.cfg city.dir zip4us.dir s city.sc zip4us.sc");
}

TEST_F(SettingsTest, BadStateIsStatusOne) {
  EXPECT_TRUE(parsed({}).report.starts_with("0 "));
  writeFile("s", "TX\nzz\n");
  const ChildResult child = parsed({});
  EXPECT_TRUE(child.report.starts_with("1 tolvlog.txt "));
  EXPECT_EQ(child.err, "Opened state file: s\nbad state: ZZ\n");
}

TEST_F(SettingsTest, StandardInputIsReadWithoutAStateFile) {
  const ChildResult child = parse({}, [] { return std::string(cmdLine.states[0]); });
  EXPECT_EQ(child.report, "0 NY");
  EXPECT_EQ(child.out, "State Abbreviations read from standard input.\n");
}

TEST_F(SettingsTest, SecondParseStartsAfresh) {
  const ChildResult child = inChild("", [] {
    Arguments first({"-s", "s", "-v", "5", "-t", "-l", "L"});
    Arguments second({"-s", "s"});
    std::string text = std::to_string(parseCmdLine(first.count(), first.vector()));
    text += level() + " ";
    freeCmdLine();
    text += std::to_string(parseCmdLine(second.count(), second.vector()));
    text += level();
    return text + " " + names() + " " + std::to_string(cmdLine.prompt) +
           std::to_string(cmdLine.stateCount);
  });
  EXPECT_EQ(child.report, "05 03 tolvlog.txt tolv.cfg city.dir zip4us.dir s city.sc zip4us.sc 02");
}

TEST_F(SettingsTest, FreeingNullsEveryNameAndMayBeRepeated) {
  Arguments list({"-i", "-l", "L", "-s", "s", "-f", "F", "-g", "G", "-o", "O", "-z", "Z"});
  EXPECT_EQ(parseCmdLine(list.count(), list.vector()), 0);
  EXPECT_EQ(names(), "L (null) F G s O Z");
  freeCmdLine();
  freeCmdLine();
  EXPECT_EQ(names(), "(null) (null) (null) (null) (null) (null) (null)");
}

TEST_F(SettingsTest, SettingsAreLoggedWithTheSortedStates) {
  const ChildResult child = parsed({"-v", "4", "-l", "L"}, [] {
    logCmdLine(nullptr);
    return std::string();
  });
  EXPECT_EQ(child.out,
            "State file: s\n"
            "Log file           : L\n"
            "Ref/City db file   : city.dir\n"
            "Range/Zip4 db file : zip4us.dir\n"
            "Output Ref/City db : city.sc\n"
            "Output Range/Zip4  : zip4us.sc\n"
            "Log level          : 4\n"
            "List of States...\n"
            "OK\nTX\n");
}

TEST_F(SettingsTest, SettingsGoToTheGivenStream) {
  const ChildResult child = parse({}, [] {
    Stream* log = streamOpen("log.txt", "a+");
    logCmdLine(log);
    streamClose(log);
    return std::string();
  });
  const std::string text = readFile("log.txt");
  EXPECT_TRUE(text.starts_with("States read from standard input.\nLog file           : tolvlog"));
  EXPECT_TRUE(text.ends_with("List of States...\nNY\n"));
  EXPECT_EQ(child.out, "State Abbreviations read from standard input.\n");
}

TEST_F(SettingsTest, LoggedNamesOfFullLengthAreNotCut) {
  const std::string longest(1024, 'n');
  const ChildResult child = parsed({"-f", longest}, [] {
    logCmdLine(nullptr);
    return std::string();
  });
  EXPECT_NE(child.out.find("Ref/City db file   : " + longest + "\n"), std::string::npos);
}

TEST_F(SettingsTest, UsageNamesTheProgramAndGoesToStandardError) {
  const ChildResult child = inChild("", [] {
    printUsage("prog%s");
    return std::string();
  });
  EXPECT_EQ(child.out, "");
  EXPECT_TRUE(child.err.starts_with(
      "Usage: prog%s [-s statefile][-l logfile][-f refdb][-g rngdb][-o refOut][-z rngOut]"
      "[-v logleve][-i][-h?]\nwhere: \n    -s statefile  = File"));
  EXPECT_TRUE(child.err.ends_with("See documentation for MF defaults.\n \n"));
  EXPECT_EQ(std::count(child.err.begin(), child.err.end(), '\n'), 25);
}

}  // namespace
}  // namespace statecut::test
