// Every rule is tripped, alone, by a pair that was sound before.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "fixture.h"

namespace statecut::test {

namespace {

using Ids = std::set<std::string>;

std::string caseName(const testing::TestParamInfo<Case>& info) {
  std::string name = verify::rule(info.param.rule).id;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '.' || c == '-'; }, '_');
  return name;
}

Ids idsOf(const Case& one) {
  Ids ids = {verify::rule(one.rule).id};
  for (const verify::RuleId also : one.also) ids.insert(verify::rule(also).id);
  return ids;
}

void expectAt(const Spot& spot, const verify::Finding& found) {
  EXPECT_EQ(found.file, spot.file) << found.text;
  EXPECT_EQ(found.record, spot.record) << found.text;
  EXPECT_EQ(found.offset, spot.offset) << found.text;
}

class AloneRule : public testing::TestWithParam<Case> {};

TEST_P(AloneRule, IsTheOnlyOneThatItsDamageTrips) {
  VerifyFixture fixture;
  builder::Model model = soundModel();
  fixture.write("pair", bytesOf(model));
  ASSERT_EQ(trippedRules(fixture.options("pair")), Ids{});
  if (GetParam().model) GetParam().model(model);
  PairBytes damaged = bytesOf(model);
  const Spot spot = GetParam().bytes(damaged);
  fixture.write("pair", damaged);
  EXPECT_EQ(trippedRules(fixture.options("pair")), idsOf(GetParam()));
  expectAt(spot, firstFinding(fixture.options("pair"), GetParam().rule));
}

INSTANTIATE_TEST_SUITE_P(Verify, AloneRule, testing::ValuesIn(aloneCases()), caseName);

class CutRule : public testing::TestWithParam<Case> {};

TEST_P(CutRule, IsTheOnlyOneThatItsDamageTrips) {
  VerifyFixture fixture;
  fixture.write("source", bytesOf(soundModel()));
  ASSERT_NO_FATAL_FAILURE(fixture.cut("source", fixture.states(), "cut"));
  ASSERT_EQ(trippedRules(fixture.options("cut", "source")), Ids{});
  PairBytes damaged = fixture.read("cut");
  const Spot spot = GetParam().bytes(damaged);
  fixture.write("cut", damaged);
  EXPECT_EQ(trippedRules(fixture.options("cut", "source")), idsOf(GetParam()));
  expectAt(spot, firstFinding(fixture.options("cut", "source"), GetParam().rule));
  // It takes the source to see it.
  EXPECT_EQ(trippedRules(fixture.options("cut")), Ids{});
}

INSTANTIATE_TEST_SUITE_P(Verify, CutRule, testing::ValuesIn(cutCases()), caseName);

TEST(Rules, EachHasACaseThatTripsIt) {
  std::map<std::string, int> cases;
  for (const Case& one : aloneCases()) {
    ++cases[verify::rule(one.rule).id];
    EXPECT_FALSE(verify::rule(one.rule).needsSource) << verify::rule(one.rule).id;
  }
  for (const Case& one : cutCases()) {
    ++cases[verify::rule(one.rule).id];
    EXPECT_TRUE(verify::rule(one.rule).needsSource) << verify::rule(one.rule).id;
  }
  for (const verify::Rule& rule : verify::rules()) EXPECT_EQ(cases[rule.id], 1) << rule.id;
  EXPECT_EQ(cases.size(), verify::kRules);
}

}  // namespace

}  // namespace statecut::test
