#include "query/requestid.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

namespace statecut::query {
namespace {

using nlohmann::json;

class RandomJson {
 public:
  explicit RandomJson(unsigned seed) : random_(seed) {}

  unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }

  std::string text() {
    std::string made;
    for (unsigned i = below(4); i > 0; --i) made += "id\"\\{}[],: \n\t\xC3\xA9"[below(13)];
    return json(made).dump(-1, ' ', below(2) == 0, json::error_handler_t::replace);
  }

  std::string space() { return std::string(below(3), " \t\r"[below(3)]); }

  std::string value(unsigned depth) {
    static constexpr const char* kPlain[] = {"null", "true",  "0",
                                             "-1.5", "1e300", "123456789012345678901234567890"};
    switch (below(depth == 0 ? 2 : 4)) {
      case 0:
        return kPlain[below(6)];
      case 1:
        return text();
      case 2:
        return list('[', ']', [&] { return value(depth - 1); });
      default:
        return list('{', '}', [&] { return key() + space() + ":" + space() + value(depth - 1); });
    }
  }

  std::string object() {
    return list('{', '}', [&] { return key() + space() + ":" + space() + value(2); });
  }

 private:
  std::string key() {
    static constexpr const char* kKeys[] = {"\"id\"", "\"\\u0069d\"", "\"op\"", "\"ids\""};
    return below(5) == 0 ? text() : kKeys[below(4)];
  }

  template <typename Make>
  std::string list(char open, char close, const Make& make) {
    std::string made{open};
    for (unsigned i = below(4); i > 0; --i) made += space() + make() + space() + (i > 1 ? "," : "");
    return made + space() + close;
  }

  std::mt19937 random_;
};

TEST(RequestId, IsTheTextOfTheMemberThatTheParserSees) {
  unsigned with = 0;
  for (unsigned seed = 0; seed < 20000; ++seed) {
    RandomJson random(seed);
    const std::string line = random.space() + random.object() + random.space();
    const json parsed = json::parse(line, nullptr, false);
    ASSERT_TRUE(parsed.is_object()) << line;
    const std::string_view id = requestId(line);
    ASSERT_EQ(parsed.contains("id"), !id.empty()) << line;
    if (id.empty()) continue;
    ++with;
    ASSERT_EQ(json::parse(id), parsed["id"]) << line;
  }
  EXPECT_GT(with, 5000U);
}

TEST(RequestId, KeepsEveryDigit) {
  EXPECT_EQ(requestId(R"({"id" : 123456789012345678901234567890 })"),
            "123456789012345678901234567890");
  EXPECT_EQ(requestId(R"({"id":1.50,"op":"x"})"), "1.50");
  EXPECT_EQ(requestId("\xEF\xBB\xBF{\"id\":1}"), "1");
}

}  // namespace
}  // namespace statecut::query
