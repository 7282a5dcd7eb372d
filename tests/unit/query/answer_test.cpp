#include "query/answer.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "query/lists.h"
#include "query/values.h"
#include "tables/rows.h"

namespace statecut::query {
namespace {

TEST(QueryAnswer, EveryByteOfATextComesBack) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  std::string out;
  Answer answer(out, false);
  answer.begin("x");
  answer.text("name", bytes);
  answer.end();
  const auto parsed = nlohmann::json::parse(out);
  std::string back;
  ASSERT_TRUE(bytesOfUtf8(parsed["name"].get<std::string>(), back));
  EXPECT_EQ(back, bytes);
}

TEST(QueryAnswer, IsOneLine) {
  std::string out;
  Answer answer(out, false);
  answer.begin("op");
  answer.number("a", -2147483648LL);
  answer.null("b");
  answer.numbers<std::uint32_t>("c", std::vector<std::uint32_t>{0, 4294967295u});
  answer.numbers<std::uint32_t>("d", {});
  answer.hex("e", std::vector<unsigned char>{0x00, 0xAB, 0xFF});
  answer.text("f", "\n\"\\");
  answer.end();
  EXPECT_EQ(out,
            "{\"op\":\"op\",\"a\":-2147483648,\"b\":null,\"c\":[0,4294967295],\"d\":[],"
            "\"e\":\"00abff\",\"f\":\"\\u000a\\\"\\\\\"}\n");
}

TEST(QueryAnswer, DecodedRecordsBringTheirFields) {
  CityNameRow row{};
  row.set(CityNameRow::cityKey, 513);
  row.set(CityNameRow::nameLength, 2);
  row.bytes[6] = 'A';
  row.bytes[7] = 0xE9;
  std::string plain, decoded;
  Answer(plain, false).record("record", &row);
  Answer answer(decoded, true);
  answer.begin("x");
  answer.record("record", &row);
  answer.number("key", 1);
  answer.end();
  EXPECT_EQ(plain.find("fields"), std::string::npos);
  const auto fields = nlohmann::json::parse(decoded)["fields"];
  EXPECT_EQ(fields["cityKey"], 513);
  EXPECT_EQ(fields["name"], "A\xC3\xA9");
  EXPECT_EQ(fields.size(), 5u);
}

TEST(QueryLists, WhatLiesPastTheLoadedTableIsZero) {
  std::vector<unsigned char> memory(32, 7);
  refPointers[kSlotMultiZip].table = memory.data();
  const auto inside = listBytes(memory.data() + 2, 4, {kSlotMultiZip, 8});
  EXPECT_EQ(inside, (std::vector<unsigned char>{7, 7, 7, 7}));
  const auto across = listBytes(memory.data() + 6, 4, {kSlotMultiZip, 8});
  EXPECT_EQ(across, (std::vector<unsigned char>{7, 7, 0, 0}));
  const auto behind = listBytes(memory.data() + 8, 4, {kSlotMultiZip, 8});
  EXPECT_EQ(behind, (std::vector<unsigned char>{0, 0, 0, 0}));
  refPointers[kSlotMultiZip].table = nullptr;
  const auto buffer = listBytes(memory.data() + 6, 4, {kSlotMultiZip, 8});
  EXPECT_EQ(buffer, (std::vector<unsigned char>{7, 7, 7, 7}));
}

TEST(QueryNames, PrintAtMost99BytesAndNoneForANegativeLength) {
  const std::string name(127, 'N');
  const auto written = [&](const char* text, std::int32_t length) {
    std::string out;
    Answer answer(out, false);
    answer.begin("x");
    writeName(answer, text, length);
    answer.end();
    return nlohmann::json::parse(out);
  };
  EXPECT_EQ(written(name.c_str(), 99)["name"].get<std::string>().size(), 99u);
  const auto longest = written(name.c_str(), 127);
  EXPECT_EQ(longest["name"].get<std::string>().size(), 99u);
  EXPECT_EQ(longest["length"], 127);
  const auto negative = written(name.c_str(), -128);
  EXPECT_EQ(negative["name"], "");
  EXPECT_EQ(negative["length"], -128);
  const auto none = written(nullptr, kNoLength);
  EXPECT_TRUE(none["name"].is_null());
  EXPECT_TRUE(none["length"].is_null());
}

}  // namespace
}  // namespace statecut::query
