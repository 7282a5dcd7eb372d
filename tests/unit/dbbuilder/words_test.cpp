// Names and keys made from words.

#include "dbbuilder/words.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace statecut::builder {
namespace {

TEST(Words, AsManyDistinctNamesAsAskedFor) {
  for (const std::uint32_t count : {minStreets, 100U, maxStreets}) {
    const auto names = makeStreetNames(count, 3);
    ASSERT_EQ(names.size(), count);
    EXPECT_TRUE(std::adjacent_find(names.begin(), names.end()) == names.end());
    for (const std::string& name : names) ASSERT_LE(name.size(), 28U) << name;
  }
  const auto firms = makeFirmNames(maxFirms, 3);
  ASSERT_EQ(firms.size(), maxFirms);
  for (const std::string& name : firms) ASSERT_LE(name.size(), 40U) << name;
}

TEST(Words, FixedStreetsMakeAmbiguousVariations) {
  EXPECT_EQ(standardForm("MOUNT PINE"), standardForm("MT PINE"));
  EXPECT_EQ(phoneticKey("BIRCH HILL", 28), phoneticKey("BURCH HILL", 28));
  const auto names = makeStreetNames(minStreets, 9);
  EXPECT_TRUE(std::count(names.begin(), names.end(), "BURCH HILL"));
}

TEST(Words, OtherSpellingsOfPlaces) {
  EXPECT_EQ(otherSpelling("SAINT ALBANS"), "ST ALBANS");
  EXPECT_EQ(otherSpelling("ST PAUL"), "SAINT PAUL");
  EXPECT_EQ(otherSpelling("FT WORTH"), "FORT WORTH");
  EXPECT_EQ(otherSpelling("MOUNT SNOW"), "MT SNOW");
  EXPECT_FALSE(otherSpelling("STANTON"));
  EXPECT_FALSE(otherSpelling("SAINT"));
  EXPECT_FALSE(otherSpelling("ST " + std::string(25, 'A')));  // 31 characters
}

TEST(Words, PhoneticKeysKeepTheFirstLetterAndDropVowels) {
  EXPECT_EQ(phoneticKey("SPRINGFIELD", 19), "SBRMJFLT");
  EXPECT_EQ(phoneticKey("ALBANY", 19), "ALBM");
  EXPECT_EQ(phoneticKey("OHIO", 19), "O");
  EXPECT_EQ(phoneticKey(std::string(40, 'B').append("DBDBDBDBDBDBDBDBDBDBDBDB"), 19).size(), 19U);
}

}  // namespace
}  // namespace statecut::builder
