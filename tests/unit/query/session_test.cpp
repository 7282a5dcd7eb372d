#include "query/run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>

#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "query/ops.h"
#include "query/run.h"
#include "support/process.h"

namespace statecut::query {
namespace {

using nlohmann::json;
using test::FileBytes;

constexpr std::size_t kOps = 35;

using Texts = std::vector<std::string>;

// A value of the kind that keeps to small keys and to the given texts.
json sample(ArgKind kind, const Texts& texts, std::mt19937& random) {
  switch (kind) {
    case ArgKind::kNumber:
      return random() % 40 + 1;
    case ArgKind::kState:
      return random() % 4 == 0 ? "ZZ" : "CT";
    case ArgKind::kText:
    case ArgKind::kPattern:
      return texts[random() % texts.size()];
    case ArgKind::kMatcher:
      return random() % 2 == 0 ? "starts" : "contains";
    case ArgKind::kTable:
      return random() % 2 + 3;
    case ArgKind::kScfKeys:
      return random() % 2 == 0 ? json::array() : json::array({random() % 9});
  }
  return nullptr;
}

std::string randomCalls(std::size_t each, std::uint32_t seed, const Texts& texts,
                        const std::set<std::string>& without) {
  std::mt19937 random(seed);
  std::string calls;
  for (std::size_t i = 0; i < each; ++i) {
    for (const auto group : opGroups()) {
      for (const Op& op : group) {
        if (without.count(op.name) != 0) continue;
        json args = json::array();
        for (const Parameter& parameter : op.parameters)
          args.push_back(sample(parameter.kind, texts, random));
        calls += json{{"op", op.name}, {"args", args}}.dump() + "\n";
      }
    }
  }
  return calls;
}

class QuerySession : public ::testing::Test {
 protected:
  QuerySession() {
    const auto model = builder::makeModel(builder::smallPlaces(), builder::smallOptions());
    for (const auto& name : model.cityNames) {
      if (name.state != "CT") continue;
      texts_.insert(texts_.end(), {name.name, name.name.substr(0, 4), name.state + name.name});
    }
    for (const auto& phonetic : model.cityPhonetics)
      if (phonetic.state == "CT")
        texts_.insert(texts_.end(), {phonetic.key, phonetic.state + phonetic.key});
    texts_.insert(texts_.end(), model.streetNames.begin(), model.streetNames.begin() + 20);
    texts_.insert(texts_.end(), {"", "A", "NO SUCH NAME AT ALL"});
    builder::WrittenFile written;
    std::string error;
    EXPECT_TRUE(builder::writeReferenceFile(model, path_, written, error)) << error;
  }

  std::string answers(const std::string& calls, SessionSettings settings) {
    settings.ref = path_;
    settings.sets = 0;
    std::string error, out;
    Session session;
    if (!session.open(settings, error)) return "cannot open: " + error;
    std::size_t from = 0;
    for (std::size_t end = 0; (end = calls.find('\n', from)) != std::string::npos; from = end + 1)
      answerLine(session, false, std::string_view(calls).substr(from, end - from), out);
    return out;
  }

  Texts texts_;
  test::TempDir folder_;
  std::string path_ = folder_.file("city.dir");
};

SessionSettings onDisk(std::uint32_t block = 0, std::uint32_t entries = 0) {
  SessionSettings settings;
  settings.mode = LookupMode::kOff;
  settings.cached = entries != 0;
  settings.cacheBlock = block;
  settings.cacheEntries = entries;
  return settings;
}

TEST(QueryOps, AreUniqueAndFoundByName) {
  std::set<std::string> names;
  for (const auto group : opGroups()) {
    for (const Op& op : group) {
      names.insert(op.name);
      EXPECT_EQ(findOp(op.name), &op);
      EXPECT_LE(op.parameters.size(), kMostParameters) << op.name;
      EXPECT_FALSE(op.parameters.empty()) << op.name;
    }
  }
  EXPECT_EQ(names.size(), kOps);
  EXPECT_EQ(findOp("dbGetZipIndexIn"), nullptr);
  EXPECT_EQ(findOp(""), nullptr);
}

// The multi-ZIP lists step otherwise on disk; an ambiguous variation without a street is an empty
// list on disk and none in memory.
TEST_F(QuerySession, ModesAgree) {
  const std::string calls = randomCalls(200, 5, texts_, {"dbGetMultiZips", "dbFindStreetVar"});
  const std::string inMemory = answers(calls, {});
  ASSERT_EQ(static_cast<std::size_t>(std::count(inMemory.begin(), inMemory.end(), '\n')),
            200 * (kOps - 2));
  EXPECT_NE(inMemory.find("\"op\":\"dbFindCity\",\"record\":\""), std::string::npos);
  EXPECT_EQ(inMemory.find("error"), std::string::npos);
  SessionSettings first;
  first.mode = LookupMode::kFirst;
  EXPECT_EQ(answers(calls, first), inMemory);
  EXPECT_EQ(answers(calls, onDisk()), inMemory);
  for (const std::uint32_t block : {64u, 4096u})
    for (const std::uint32_t entries : {1u, 8u})
      EXPECT_EQ(answers(calls, onDisk(block, entries)), inMemory) << block << ":" << entries;
}

TEST_F(QuerySession, AFailedLoadIsAnErrorInMemoryAndGoesToDiskByFirstCall) {
  const std::string calls =
      "{\"op\":\"dbGetZipIndex\",\"args\":[75001]}\n{\"op\":\"dbGetZipDataFromKey\",\"args\":[1]}"
      "\n";
  const std::string intact = answers(calls, {});
  EXPECT_EQ(intact.find("null"), std::string::npos);
  // The ZIP data table is too large for memory: its count is the number of records.
  auto bytes = *test::readWholeFile(path_);
  le::put<4>(bytes.data() + RefControlRec::zipDataCount.at, 0x7FFFFFFF);
  test::writeWholeFile(path_, bytes);
  EXPECT_EQ(answers(calls + "{\"op\":\"dbFindCity\",\"args\":[\"TX\",\"AUSTIN\"]}\n", {}),
            "{\"error\":\"dbGetZipIndex: cannot load its tables\"}\n"
            "{\"error\":\"dbGetZipDataFromKey: cannot load its tables\"}\n"
            "{\"op\":\"dbFindCity\",\"record\":null}\n");
  SessionSettings first;
  first.mode = LookupMode::kFirst;
  EXPECT_EQ(answers(calls, first), intact);
}

TEST_F(QuerySession, ListsAreCutInEveryMode) {
  const std::string calls =
      "{\"op\":\"dbGetMultiZips\",\"args\":[4294967295,1]}\n"
      "{\"op\":\"dbGetCityZipKeyPtr\",\"args\":[4294967295,1]}\n"
      "{\"op\":\"dbGetCityFinKeyPtr\",\"args\":[4294967295,1]}\n";
  for (const SessionSettings& settings : {SessionSettings{}, onDisk(), onDisk(64, 8)}) {
    std::istringstream lines(answers(calls, settings));
    std::string zips, entries, finance;
    std::getline(lines, zips);
    std::getline(lines, entries);
    std::getline(lines, finance);
    EXPECT_EQ(json::parse(zips)["keys"].size(), 304u);
    EXPECT_EQ(json::parse(entries)["entries"].get<std::string>().size(), 300u * 12);
    EXPECT_EQ(json::parse(finance)["keys"].size(), 16u);
  }
}

TEST_F(QuerySession, DamagedWordsGiveADefinedAnswer) {
  const std::string calls = randomCalls(2, 9, texts_, {});
  const FileBytes intact = *test::readWholeFile(path_);
  const auto lines = std::count(calls.begin(), calls.end(), '\n');
  for (std::size_t at = RefControlRec::cityDataRba.at; at < RefControlRec::trailing.at; at += 4) {
    const std::uint32_t word = le::get<4>(intact.data() + at);
    for (const std::uint32_t value : {0u, word + 1, 0xFFFFFFFFu}) {
      FileBytes damaged = intact;
      le::put<4>(damaged.data() + at, value);
      test::writeWholeFile(path_, damaged);
      for (const SessionSettings& settings : {SessionSettings{}, onDisk(64, 3)}) {
        const std::string out = answers(calls, settings);
        EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), lines) << at << " = " << value;
      }
    }
  }
}

TEST_F(QuerySession, OtherFilesAreRefused) {
  Session session;
  SessionSettings settings;
  std::string error;
  settings.ref = path_;
  EXPECT_TRUE(session.open(settings, error));
  FileBytes bytes = *test::readWholeFile(path_);
  bytes.resize(843);
  test::writeWholeFile(folder_.file("short"), bytes);
  for (const std::string& name : {folder_.file("short"), folder_.file("nowhere"), folder_.path()}) {
    settings.ref = name;
    error.clear();
    EXPECT_FALSE(session.open(settings, error)) << name;
    EXPECT_NE(error.find(name), std::string::npos);
  }
}

}  // namespace
}  // namespace statecut::query
