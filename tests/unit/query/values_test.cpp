#include "query/values.h"

#include <gtest/gtest.h>

#include <optional>

#include "dbfiles/apiutil.h"

namespace statecut::query {
namespace {

// The number that a JSON text or a word gives, or none.
std::optional<std::uint32_t> jsonNumber(const std::string& text, ArgKind kind = ArgKind::kNumber) {
  Arg arg;
  if (argFromJson(nlohmann::json::parse(text), kind, arg) != nullptr) return std::nullopt;
  return arg.number;
}

std::optional<std::uint32_t> wordNumber(const std::string& text) {
  Arg arg;
  if (argFromText(text, ArgKind::kNumber, arg) != nullptr) return std::nullopt;
  return arg.number;
}

std::optional<std::string> jsonText(const std::string& text, ArgKind kind = ArgKind::kText) {
  Arg arg;
  if (argFromJson(nlohmann::json::parse(text), kind, arg) != nullptr) return std::nullopt;
  return arg.text;
}

TEST(QueryNumbers, AreTakenModulo32Bits) {
  EXPECT_EQ(jsonNumber("0"), 0u);
  EXPECT_EQ(jsonNumber("-0"), 0u);
  EXPECT_EQ(jsonNumber("4294967295"), 0xFFFFFFFFu);
  EXPECT_EQ(jsonNumber("-1"), 0xFFFFFFFFu);
  EXPECT_EQ(jsonNumber("-2147483648"), 0x80000000u);
  Arg arg;
  ASSERT_EQ(argFromText("4294967295", ArgKind::kNumber, arg), nullptr);
  EXPECT_EQ(arg.asSigned(), -1);
}

TEST(QueryNumbers, OutsideTheRangeAreErrors) {
  for (const char* text : {"4294967296", "-2147483649", "9223372036854775807",
                           "18446744073709551615", "99999999999999999999999"}) {
    EXPECT_EQ(jsonNumber(text), std::nullopt) << text;
    EXPECT_EQ(wordNumber(text), std::nullopt) << text;
  }
}

TEST(QueryNumbers, OtherValuesAreErrors) {
  for (const char* text : {"1.0", "1e2", "true", "null", "\"1\"", "[1]", "{}"})
    EXPECT_EQ(jsonNumber(text), std::nullopt) << text;
  EXPECT_EQ(wordNumber("12"), 12u);
  for (const char* text : {"", "+1", " 1", "1 ", "1.0", "0x10", "--1", "one"})
    EXPECT_EQ(wordNumber(text), std::nullopt) << text;
}

TEST(QueryNumbers, OnlyTables3And4AreTables) {
  EXPECT_EQ(jsonNumber("3", ArgKind::kTable), 3u);
  EXPECT_EQ(jsonNumber("4", ArgKind::kTable), 4u);
  for (const char* text : {"2", "5", "0", "-1", "\"3\""})
    EXPECT_EQ(jsonNumber(text, ArgKind::kTable), std::nullopt) << text;
}

TEST(QueryTexts, AreOneByteACharacter) {
  EXPECT_EQ(jsonText(R"("")"), "");
  EXPECT_EQ(jsonText(R"("A\u0000\u007f\u0080\u00ff")"), std::string("A\0\x7F\x80\xFF", 5));
  EXPECT_EQ(jsonText("\"\xC3\xA9\""), "\xE9");
  for (const char* text : {R"("\u0100")", R"("\u20ac")", R"("\ud83d\ude00")", "1", "null"})
    EXPECT_EQ(jsonText(text), std::nullopt) << text;
}

TEST(QueryTexts, OfWordsAreTheirBytes) {
  Arg arg;
  ASSERT_EQ(argFromText("\xC3\xA9\xFF", ArgKind::kText, arg), nullptr);
  EXPECT_EQ(arg.text, "\xC3\xA9\xFF");
}

TEST(QueryTexts, AStateIsExactlyTwoCharacters) {
  EXPECT_EQ(jsonText(R"("TX")", ArgKind::kState), "TX");
  EXPECT_EQ(jsonText(R"("\u00ff\u0000")", ArgKind::kState), std::string("\xFF\0", 2));
  for (const char* text : {R"("")", R"("T")", R"("TEX")", "48"})
    EXPECT_EQ(jsonText(text, ArgKind::kState), std::nullopt) << text;
}

TEST(QueryTexts, APatternEndsAtItsFirstNul) {
  EXPECT_EQ(jsonText(R"("AB\u0000C\u0000D")", ArgKind::kPattern), "AB");
  EXPECT_EQ(jsonText(R"("\u0000")", ArgKind::kPattern), "");
  EXPECT_EQ(jsonText(R"("AB")", ArgKind::kPattern), "AB");
}

TEST(QueryMatchers, AreThree) {
  Arg arg;
  const auto matcher = [&](const char* text) {
    arg.matcher = nullptr;
    return argFromText(text, ArgKind::kMatcher, arg) == nullptr ? arg.matcher : nullptr;
  };
  EXPECT_EQ(matcher("contains"), containsString);
  EXPECT_EQ(matcher("starts"), startsWith);
  EXPECT_EQ(matcher("ends"), endsWith);
  EXPECT_EQ(matcher("Starts"), nullptr);
  EXPECT_EQ(matcher(""), nullptr);
}

TEST(QueryLists, AreTakenModulo16Bits) {
  Arg arg;
  ASSERT_EQ(argFromJson(nlohmann::json::parse("[1,65536,-1,4294967295]"), ArgKind::kScfKeys, arg),
            nullptr);
  EXPECT_EQ(arg.keys, (std::vector<std::uint16_t>{1, 0, 0xFFFF, 0xFFFF}));
  ASSERT_EQ(argFromText("7,65537", ArgKind::kScfKeys, arg), nullptr);
  EXPECT_EQ(arg.keys, (std::vector<std::uint16_t>{7, 1}));
  ASSERT_EQ(argFromText("", ArgKind::kScfKeys, arg), nullptr);
  EXPECT_TRUE(arg.keys.empty());
  ASSERT_EQ(argFromJson(nlohmann::json::array(), ArgKind::kScfKeys, arg), nullptr);
  EXPECT_TRUE(arg.keys.empty());
}

TEST(QueryLists, WithOtherElementsAreErrors) {
  Arg arg;
  for (const char* text : {"[1.0]", "[\"1\"]", "[[1]]", "[null]", "[4294967296]", "1", "{}"})
    EXPECT_NE(argFromJson(nlohmann::json::parse(text), ArgKind::kScfKeys, arg), nullptr) << text;
  for (const char* text : {",", "1,", ",1", "1,,2", "1;2", "[1]"})
    EXPECT_NE(argFromText(text, ArgKind::kScfKeys, arg), nullptr) << text;
}

}  // namespace
}  // namespace statecut::query
