#include "run/statetable.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "unit/log/sandbox.h"

namespace statecut::test {
namespace {

int selectedRows() {
  int rows = 0;
  for (const State& state : states) rows += state.selected;
  return rows;
}

TEST(StateTableTest, NamesArePaddedToFortyCharacters) {
  for (const State& state : states) EXPECT_EQ(std::string(state.name).size(), 40U) << state.name;
  EXPECT_EQ(std::string(states[1].name), "Armed Forces Americas (except Canada)   ");
}

TEST(StateTableTest, RowsStandInTheirOrder) {
  EXPECT_STREQ(states[0].abbreviation, "AE");
  EXPECT_STREQ(states[5].abbreviation, "AP");
  EXPECT_STREQ(states[15].abbreviation, "DC");
  EXPECT_STREQ(states[57].abbreviation, "UM");
  EXPECT_STREQ(states[65].abbreviation, "WY");
  EXPECT_TRUE(std::string(states[16].name).starts_with("Federated States of Micronesia "));
}

TEST(StateTableTest, AbbreviationsOfTheEntireDatabaseAreThoseOfTheTable) {
  std::set<std::string> rows;
  std::set<std::string> all;
  for (const State& state : states) rows.insert(state.abbreviation);
  for (const auto& abbreviation : abvstates) all.insert(abbreviation);
  EXPECT_EQ(all.size(), 63U);
  EXPECT_EQ(all, rows);
}

TEST(StateTableTest, AbbreviationsKeepTheirOwnOrder) {
  const char* const first[] = {"AA", "AE", "AL", "AK", "AP", "AS", "AR", "AZ", "CA"};
  for (std::size_t i = 0; i < std::size(first); ++i) EXPECT_STREQ(abvstates[i], first[i]);
  EXPECT_STREQ(abvstates[12], "DE");
  EXPECT_STREQ(abvstates[13], "FM");
  EXPECT_STREQ(abvstates[14], "FL");
  EXPECT_STREQ(abvstates[62], "WY");
}

TEST(StateTableTest, MatchMarksItsRow) {
  EXPECT_EQ(selectedRows(), 0);
  EXPECT_EQ(verifyState("TX"), 0);
  EXPECT_EQ(states[56].selected, 1);
  EXPECT_EQ(selectedRows(), 1);
  states[56].selected = 0;
}

TEST(StateTableTest, AbbreviationOfSeveralRowsMarksTheFirstAlone) {
  EXPECT_EQ(verifyState("AE"), 0);
  EXPECT_EQ(states[0].selected, 1);
  EXPECT_EQ(selectedRows(), 1);
  states[0].selected = 0;
}

TEST(StateTableTest, OnlyTheFirstTwoCharactersCount) {
  EXPECT_EQ(verifyState("NYC"), 0);
  states[42].selected = 0;
}

TEST(StateTableTest, AnythingElseIsRejectedAndMarksNothing) {
  for (const char* text : {"", "N", "zz", "ny", "ZZ", " NY", "N\n"}) {
    EXPECT_EQ(verifyState(text), 1) << text;
  }
  EXPECT_EQ(verifyState(nullptr), 1);
  EXPECT_EQ(selectedRows(), 0);
}

class DisplayStatesTest : public SandboxTest {};

TEST_F(DisplayStatesTest, TableGoesToStandardError) {
  const ChildResult child = inChild("", [] {
    displayStates();
    return std::string();
  });
  EXPECT_EQ(child.out, "");
  EXPECT_TRUE(child.err.starts_with("Armed Forces Africa" + std::string(21, ' ') +
                                    " - AE\n"
                                    "Armed Forces Americas (except Canada)    - AA\n"));
  EXPECT_EQ(std::count(child.err.begin(), child.err.end(), '\n'), 66);
}

}  // namespace
}  // namespace statecut::test
