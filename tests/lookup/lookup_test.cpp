// The same calls in every variant of the lookups, against an oracle that reads the file's bytes.
//
// STATECUT_LOOKUP_RUNS: number of random databases (100); STATECUT_LOOKUP_SEED: the first seed (1).

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "calls.h"
#include "comparison.h"
#include "support/counts.h"

namespace statecut::test {
namespace {

template <Mode M, std::uint32_t BlockBytes = 0, std::int32_t Entries = 0>
struct VariantType {
  static constexpr bool isReader = false;
  static constexpr Variant variant{M, BlockBytes, Entries};
};

template <ReaderWay Way>
struct ReaderType {
  static constexpr bool isReader = true;
  static constexpr ReaderWay way = Way;
};

using Variants =
    testing::Types<VariantType<Mode::kMemory>, VariantType<Mode::kDisk>,
                   VariantType<Mode::kDisk, 64, 1>, VariantType<Mode::kDisk, 64, 8>,
                   VariantType<Mode::kDisk, 4096, 1>, VariantType<Mode::kDisk, 4096, 8>,
                   VariantType<Mode::kFirst>, ReaderType<ReaderWay::kSingle>,
                   ReaderType<ReaderWay::kIndexed>, ReaderType<ReaderWay::kBatches>,
                   ReaderType<ReaderWay::kIndexedBatches>, ReaderType<ReaderWay::kC>,
                   ReaderType<ReaderWay::kCBatches>>;

struct VariantNames {
  template <typename Type>
  static std::string GetName(int) {
    if constexpr (Type::isReader) {
      constexpr const char* kWays[] = {
          "Reader", "ReaderIndexed", "ReaderBatches", "ReaderIndexedBatches", "C", "CBatches"};
      return kWays[static_cast<std::size_t>(Type::way)];
    } else {
      constexpr Variant variant = Type::variant;
      if (variant.mode == Mode::kMemory) return "InMemory";
      if (variant.mode == Mode::kFirst) return "FirstCall";
      if (variant.blockBytes == 0) return "OnDisk";
      return "Cache" + std::to_string(variant.blockBytes) + "x" + std::to_string(variant.entries);
    }
  }
};

std::uint64_t setting(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text != nullptr && *text != '\0' ? std::strtoull(text, nullptr, 10) : otherwise;
}

constexpr std::size_t kAll = 100000;
constexpr std::size_t kFew = 3;
constexpr int kFailuresShown = 5;

template <typename Type>
class LookupIn : public testing::Test {
 protected:
  std::string compare(const Database& database, std::size_t most,
                      Soundness soundness = Soundness::kSound) {
    return compareCalls(database, callsOn(database.file, 1, most), soundness);
  }

  std::string compareCalls(const Database& database, const std::vector<Call>& calls,
                           Soundness soundness) {
    if constexpr (Type::isReader)
      return compareReader(Type::way, database, calls, tally_);
    else
      return compareAnswers(Type::variant, database, calls, soundness, tally_);
  }

  static Database edges() { return Type::isReader ? edgeReaderDatabase() : edgeDatabase(); }

  void compareDamaged() {
    int failures = 0;
    std::vector<Call> calls;
    std::size_t taken = 0;
    for (const Database& database :
         Type::isReader ? damagedReaderDatabases() : damagedDatabases()) {
      if (taken++ % 2 == 0 && !longRun()) continue;  // every second one shows them all
      if (calls.empty()) calls = callsOn(edges().file, 1, kFew);
      const std::string difference = compareCalls(database, calls, Soundness::kDamaged);
      if (difference.empty()) continue;
      ADD_FAILURE() << difference;
      if (++failures == kFailuresShown) return;
    }
  }

  void compareRandom(std::uint64_t shard, std::uint64_t shards) {
    const std::uint64_t first = setting("STATECUT_LOOKUP_SEED", 1);
    const std::uint64_t runs = setting("STATECUT_LOOKUP_RUNS", 100);
    int failures = 0;
    for (std::uint64_t i = shard; i < runs; i += shards) {
      // A Database refuses lists that its tables do not hold.
      std::string difference = compare(randomLookupDatabase(first + i), 60);
      if (Type::isReader) difference += compare(randomReaderDatabase(first + i), 60);
      if (difference.empty()) continue;
      ADD_FAILURE() << difference
                    << "rerun: STATECUT_LOOKUP_RUNS=1 STATECUT_LOOKUP_SEED=" << first + i
                    << " test_lookup";
      if (++failures == kFailuresShown) return;
    }
  }

  Tally tally_;
};

TYPED_TEST_SUITE(LookupIn, Variants, VariantNames);

TYPED_TEST(LookupIn, TinyDatabaseAnswersAsItsBytesSay) {
  EXPECT_EQ(this->compare(tinyDatabase(), kAll), "");
  for (std::size_t op = 0; op < kOps; ++op) {
    const bool asked = !TypeParam::isReader || readerHas(static_cast<Op>(op));
    EXPECT_EQ(this->tally_.calls[op] > 0, asked) << op;
  }
}

TYPED_TEST(LookupIn, SmallDatabaseAnswersAsItsBytesSay) {
  EXPECT_EQ(this->compare(smallDatabase(), 40), "");
}

TYPED_TEST(LookupIn, RandomDatabasesAnswerAsTheirBytesSayFirstHalf) { this->compareRandom(0, 2); }
TYPED_TEST(LookupIn, RandomDatabasesAnswerAsTheirBytesSaySecondHalf) { this->compareRandom(1, 2); }

TYPED_TEST(LookupIn, CutDatabasesAnswerAsTheirBytesSay) {
  EXPECT_EQ(this->compare(tinyCutDatabase(), kAll), "");
  EXPECT_EQ(this->tally_.refused, 0U);
  const std::uint64_t runs = longRun() ? 100 : 10;
  for (std::uint64_t seed = 1; seed <= runs; ++seed) {
    EXPECT_EQ(this->compare(randomCutDatabase(seed), 60), "") << "seed " << seed;
    EXPECT_EQ(this->tally_.refused, 0U) << "seed " << seed;
  }
}

TYPED_TEST(LookupIn, DamagedNumbersAreDefinedAndEveryMeantDifferenceOccurs) {
  EXPECT_EQ(this->compare(this->edges(), 60), "");
  EXPECT_EQ(this->tally_.refused, 0U);
  this->compareDamaged();
  if (TypeParam::isReader) {
    EXPECT_GT(this->tally_.refused, 50U);
    for (std::size_t i = 0; i < kReaderDifferences; ++i) {
      EXPECT_EQ(static_cast<std::size_t>(kReaderDifferenceTable[i].difference), i);
      EXPECT_GT(this->tally_.readerOccurred[i], 0U)
          << "never: " << kReaderDifferenceTable[i].reason;
    }
    return;
  }
  for (std::size_t i = 0; i < kDifferences; ++i) {
    EXPECT_EQ(static_cast<std::size_t>(kDifferenceTable[i].difference), i);
    EXPECT_GT(this->tally_.occurred[i], 0U) << "never: " << kDifferenceTable[i].reason;
  }
}

}  // namespace
}  // namespace statecut::test
