#include "run/statelist.h"

#include <cstring>

#include "base/cmdline.h"
#include "run/settings.h"
#include "run/statetable.h"
#include "unit/log/sandbox.h"

namespace statecut::test {
namespace {

std::string listed() {
  std::string text;
  for (std::int32_t i = 0; i < cmdLine.stateCount; ++i) {
    text.append(i == 0 ? "" : " ").append(cmdLine.states[i]);
  }
  return text;
}

class StateListTest : public SandboxTest {
 protected:
  // Reads a state file of these bytes; the report is the status and the sorted list.
  static ChildResult read(const std::string& bytes) {
    writeFile("states.txt", bytes);
    return inChild("", [] {
      char name[] = "states.txt";
      cmdLine.stateFile = name;
      const std::int32_t status = readStateList();
      return std::to_string(status) + ": " + listed();
    });
  }
  static std::string bad(const std::string& err) {
    const std::string opened = "Opened state file: states.txt\n";
    EXPECT_TRUE(err.starts_with(opened)) << err;
    return err.substr(std::min(opened.size(), err.size()));
  }
};

TEST_F(StateListTest, LinesAreCutToTwoCharactersRaisedAndSorted) {
  const ChildResult child = read("tx\nOk\nNYC\nal  Alabama\n");
  EXPECT_EQ(child.report, "0: AL NY OK TX");
  EXPECT_EQ(bad(child.err), "");
  EXPECT_EQ(child.out, "");
}

TEST_F(StateListTest, DuplicatesStay) { EXPECT_EQ(read("NY\nTX\nny\n").report, "0: NY NY TX"); }

TEST_F(StateListTest, LineOfOneLetterIsRejectedWithItsOwnNewLine) {
  EXPECT_EQ(read("NY\n").report, "0: NY");
  const ChildResult child = read("NY\nN\nTX\n");
  EXPECT_EQ(child.report, "1: NY TX");
  EXPECT_EQ(bad(child.err), "bad state: N\n\n");
}

TEST_F(StateListTest, LastLineNeedsNoNewLine) {
  EXPECT_EQ(read("NY\nTX").report, "0: NY TX");
  const ChildResult child = read("NY\nN");
  EXPECT_EQ(child.report, "1: NY");
  EXPECT_EQ(bad(child.err), "bad state: N\n");
}

TEST_F(StateListTest, EveryBadLineIsReportedAndReadingGoesOn) {
  const ChildResult child = read("NY\nzz\n TX\nxx comment\nTX\n");
  EXPECT_EQ(child.report, "1: NY TX");
  EXPECT_EQ(bad(child.err), "bad state: ZZ\nbad state:  T\nbad state: XX\n");
}

TEST_F(StateListTest, EmptyLineEndsTheList) { EXPECT_EQ(read("NY\n\nTX\n").report, "0: NY"); }

TEST_F(StateListTest, CarriageReturnAloneIsABadState) {
  EXPECT_EQ(read("NY\r\nTX\r\n").report, "0: NY TX");
  const ChildResult child = read("NY\r\n\r\nTX\r\n");
  EXPECT_EQ(child.report, "1: NY TX");
  EXPECT_EQ(bad(child.err), "bad state: \r\n\n");
}

TEST_F(StateListTest, LineThatBeginsWithANulIsAnEmptyBadState) {
  const ChildResult child = read(std::string("NY\n\0TX\nOK\n", 10));
  EXPECT_EQ(child.report, "1: NY OK");
  EXPECT_EQ(bad(child.err), "bad state: \n");
}

TEST_F(StateListTest, BytesAbove127AreBadStates) {
  const ChildResult child = read("NY\n\xC4\xD6\n");
  EXPECT_EQ(child.report, "1: NY");
  EXPECT_EQ(bad(child.err), "bad state: \xC4\xD6\n");
}

TEST_F(StateListTest, RestOfALongLineIsNoLineOfItsOwn) {
  EXPECT_EQ(read("NY" + std::string(79, ' ') + "IN use\nTX\n").report, "0: NY TX");
  EXPECT_EQ(read("NY" + std::string(5000, ' ') + "\nTX\n").report, "0: NY TX");
}

TEST_F(StateListTest, LineOfExactly81CharactersDoesNotEndTheList) {
  for (int blanks : {77, 78, 79, 80, 81}) {
    EXPECT_EQ(read("NY" + std::string(static_cast<std::size_t>(blanks), ' ') + "\nTX\n").report,
              "0: NY TX")
        << blanks;
  }
}

TEST_F(StateListTest, EmptyFileAndEmptyFirstLineTakeTheEntireDatabase) {
  std::string all = "No input specified.\n  The entire database is being copied:\n\n";
  for (const auto& state : abvstates) all.append(" ").append(state).append("\n");
  for (const char* bytes : {"", "\n", "\nNY\n"}) {
    const ChildResult child = read(bytes);
    EXPECT_EQ(child.report.size(), 3 + 63 * 3 - 1);
    EXPECT_TRUE(child.report.starts_with("0: AA AE AK AL AP AR AS AZ CA")) << child.report;
    EXPECT_TRUE(child.report.ends_with("WA WI WV WY"));
    EXPECT_EQ(bad(child.err), all);
    EXPECT_EQ(child.out, "");
  }
}

TEST_F(StateListTest, OnlyBadLinesAreReportedAndTakeTheEntireDatabaseToo) {
  const ChildResult child = read("zz\n");
  EXPECT_TRUE(child.report.starts_with("1: AA AE AK"));
  EXPECT_TRUE(bad(child.err).starts_with("bad state: ZZ\nNo input specified.\n  The entire"));
}

TEST_F(StateListTest, SixtySixEntriesFitAndTheNextIsRejected) {
  std::string lines;
  for (int i = 0; i < 66; ++i) lines += "AE\n";
  const ChildResult full = read(lines);
  EXPECT_TRUE(full.report.starts_with("0: AE AE"));
  EXPECT_EQ(full.report.size(), 3 + 66 * 3 - 1);
  const ChildResult over = read(lines + "TX\nOK\n");
  EXPECT_EQ(over.report.substr(0, 3), "1: ");
  EXPECT_EQ(over.report.substr(3), full.report.substr(3));
  EXPECT_EQ(bad(over.err), "bad state: TX\nbad state: OK\n");
}

TEST_F(StateListTest, MissingFileIsReported) {
  EXPECT_EQ(read("NY\n").report, "0: NY");
  const ChildResult child = inChild("", [] {
    char name[] = "none.txt";
    cmdLine.stateFile = name;
    return std::to_string(readStateList());
  });
  EXPECT_EQ(child.report, "-8");
  EXPECT_EQ(child.err, "Could not open state file: none.txt\n");
}

TEST_F(StateListTest, FileThatOpensButCannotBeReadIsNoEmptyList) {
  const ChildResult child = inChild("", [] {
    char name[] = ".";
    cmdLine.stateFile = name;
    return std::to_string(readStateList());
  });
  EXPECT_EQ(child.report, "-8");
  EXPECT_EQ(child.err, "Opened state file: .\nCould not open state file: .\n");
}

TEST_F(StateListTest, StandardInputIsReadAnnouncedAndClosed) {
  const ChildResult child = inChild("ok\ntx\n\nny\n", [] {
    const bool before = stdinClosed();
    const std::int32_t status = readStateList();
    return std::to_string(status) + ": " + listed() + (before ? " closed" : " open") +
           (stdinClosed() ? " closed" : " open");
  });
  EXPECT_EQ(child.report, "0: OK TX open closed");
  EXPECT_EQ(child.out, "State Abbreviations read from standard input.\n");
  EXPECT_EQ(child.err, "");
}

TEST_F(StateListTest, ClosedStandardInputLeavesItsDescriptorTaken) {
  const ChildResult child = inChild("ok\n", [] {
    const std::int32_t status = readStateList();
    return std::to_string(status) + (::fcntl(0, F_GETFD) != -1 ? " taken" : " free");
  });
  EXPECT_EQ(child.report, "0 taken");
}

TEST_F(StateListTest, StateFileLeavesStandardInputOpen) {
  const ChildResult child = inChild("line\n", [] {
    writeFile("states.txt", "NY\n");
    char name[] = "states.txt";
    cmdLine.stateFile = name;
    const std::int32_t status = readStateList();
    return std::to_string(status) + (stdinClosed() ? " closed " : " open ") +
           static_cast<char>(std::getchar());
  });
  EXPECT_EQ(child.report, "0 open l");
}

void setList(std::initializer_list<const char*> list) {
  cmdLine = CmdLine{};
  for (const char* state : list) std::memcpy(cmdLine.states[cmdLine.stateCount++], state, 3);
}

TEST(SortStatesTest, ListBecomesAscendingWithDuplicatesAdjacent) {
  setList({"WY", "NY", "AL", "NY", "AK", "WA", "AE"});
  sortStates();
  EXPECT_EQ(listed(), "AE AK AL NY NY WA WY");
}

TEST(SortStatesTest, EmptyListAndListOfOneAreLeftAlone) {
  setList({});
  sortStates();
  EXPECT_EQ(cmdLine.stateCount, 0);
  setList({"TX"});
  sortStates();
  EXPECT_EQ(listed(), "TX");
}

TEST(SortStatesTest, EntriesBehindTheCountAreLeftAlone) {
  setList({"TX", "OK", "AA"});
  cmdLine.stateCount = 2;
  sortStates();
  cmdLine.stateCount = 3;
  EXPECT_EQ(listed(), "OK TX AA");
}

}  // namespace
}  // namespace statecut::test
