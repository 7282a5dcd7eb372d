// A Database whose Nth call of a kind fails: while it is opened, while its indexes are made, while
// it reads a partition. It answers as a sound one or says why it can't, also through C.

#include <statecut/statecut_c.h>

#include "faults.h"
#include "reader/database.h"

namespace statecut::test {
namespace {

constexpr FaultKind kKinds[] = {FaultKind::kOpen, FaultKind::kRead, FaultKind::kAllocate,
                                FaultKind::kNew, FaultKind::kClose};

// Everything that an index could change, by an index or without.
std::string answersOf(const Database& database) {
  std::string text;
  const auto add = [&](std::uint64_t number) { text.append(std::to_string(number)).append(" "); };
  for (const CityName& city : database.cityNames()) {
    add(database.findCity(stateOf(*city), nameOf(*city)).key);
    const auto zips = database.zipsOfCity(city->get(CityNameRow::cityKey));
    if (!zips) return "no memory";
    for (const std::uint16_t zip : *zips) add(zip);
  }
  for (const NamedKey& street : database.streets()) add(database.findStreet(street.name).key);
  for (const NamedKey& firm : database.firms()) add(database.findFirm(firm.name).key);
  for (const Zip& zip : database.zips()) add(zip.key);
  return text;
}

class ReaderFaults : public testing::TestWithParam<FaultKind> {
 protected:
  ReaderFaults() {
    writeWholeFile(path("ref"), microPair().ref);
    writeWholeFile(path("rng"), microPair().rng);
    options_.range = path("rng");
    const auto sound = Database::open(path("ref"), options_, error_);
    EXPECT_NE(sound, nullptr) << error_.text;
    if (sound != nullptr) answers_ = answersOf(*sound);
    EXPECT_GT(answers_.size(), 60U);
  }

  [[nodiscard]] std::string path(const char* name) const { return folder_.file(name); }

  [[nodiscard]] bool isReason(std::int32_t code) const {
    const auto one = static_cast<ErrorCode>(code);
    switch (GetParam()) {
      case FaultKind::kOpen:
        return one == ErrorCode::kOpenFile;
      case FaultKind::kRead:  // or the file seems to end
        return one == ErrorCode::kReadFile || one == ErrorCode::kNotDatabase ||
               one == ErrorCode::kShortFile;
      case FaultKind::kAllocate:  // a mapping that fails, too
        return one == ErrorCode::kNoMemory || (options_.mapped && one == ErrorCode::kReadFile);
      default:
        return one == ErrorCode::kNoMemory;
    }
  }

  void openWithFaults() {
    const std::string reference = path("ref");  // no memory is taken for it below
    forEachFault(GetParam(), [&](const FaultPlan& plan) {
      armFaults(plan);
      const auto database = Database::open(reference, options_, error_);
      disarmFaults();
      if (database != nullptr) {
        EXPECT_EQ(error_.code, ErrorCode::kNone);
        EXPECT_EQ(answersOf(*database), answers_);
        return;
      }
      EXPECT_GT(faultsFired(), 0U);
      EXPECT_TRUE(isReason(static_cast<std::int32_t>(error_.code))) << error_.text;
      EXPECT_NE(error_.text, "");
      if (plan.error != 0 && error_.code == ErrorCode::kOpenFile) {
        EXPECT_EQ(error_.number, plan.error);
      }
    });
  }

  TempDir folder_;
  OpenOptions options_;
  Error error_;
  std::string answers_;
};

INSTANTIATE_TEST_SUITE_P(Kinds, ReaderFaults, testing::ValuesIn(kKinds),
                         [](const auto& each) { return kindName(each.param); });

TEST_P(ReaderFaults, OpeningIsRightOrTellsTheReason) { openWithFaults(); }

TEST_P(ReaderFaults, OpeningWithIndexesIsRightOrTellsTheReason) {
  options_.indexNames = true;
  options_.indexCityZips = true;
  openWithFaults();
}

TEST_P(ReaderFaults, OpeningAMappedFileIsRightOrTellsTheReason) {
  options_.mapped = true;
  openWithFaults();
}

TEST_P(ReaderFaults, OpeningThroughCIsRightOrTellsTheReason) {
  statecut_options options = STATECUT_OPTIONS_INIT;
  const std::string range = path("rng");
  const std::string reference = path("ref");
  options.range = range.c_str();
  options.index_names = 1;
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    statecut_db* db = nullptr;
    statecut_error error;
    armFaults(plan);
    const std::int32_t status = statecut_open(reference.c_str(), &options, &db, &error);
    disarmFaults();
    EXPECT_EQ(status, error.code);
    EXPECT_EQ(db != nullptr, status == STATECUT_OK);
    if (status != STATECUT_OK) {
      EXPECT_TRUE(isReason(status)) << error.text;
    }
    statecut_close(db);
  });
}

// What memory lacks is told; the answers are those of the file's own index.
TEST_P(ReaderFaults, AnIndexOfNamesThatCannotBeMadeChangesNoAnswer) {
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    const auto database = Database::open(path("ref"), options_, error_);
    ASSERT_NE(database, nullptr) << error_.text;
    armFaults(plan);
    const bool made = database->indexNames();
    disarmFaults();
    EXPECT_EQ(made, faultsFired() == 0);
    EXPECT_EQ(answersOf(*database), answers_);
    EXPECT_TRUE(database->indexNames());
    EXPECT_EQ(answersOf(*database), answers_);
  });
}

TEST_P(ReaderFaults, ZipCodesOfACityWithoutMemoryAreNotNone) {
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    const auto database = Database::open(path("ref"), options_, error_);
    ASSERT_NE(database, nullptr) << error_.text;
    armFaults(plan);
    const auto zips = database->zipsOfCity(1);
    disarmFaults();
    EXPECT_EQ(zips.has_value(), faultsFired() == 0);
    EXPECT_EQ(answersOf(*database), answers_);
  });
}

TEST_P(ReaderFaults, TheIndexesThroughCTellThatMemoryLacks) {
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    statecut_db* db = nullptr;
    ASSERT_EQ(statecut_open(path("ref").c_str(), nullptr, &db, nullptr), STATECUT_OK);
    const std::uint16_t* keys = nullptr;
    std::size_t count = 0;
    armFaults(plan);
    const std::int32_t zips = statecut_city_zips(db, 1, &keys, &count);
    const std::uint32_t fired = faultsFired();
    const std::int32_t names = statecut_index_names(db);
    disarmFaults();
    EXPECT_EQ(zips, fired == 0 ? STATECUT_OK : STATECUT_NO_MEMORY);
    EXPECT_EQ(names, faultsFired() == fired ? STATECUT_OK : STATECUT_NO_MEMORY);
    statecut_close(db);
  });
}

TEST_P(ReaderFaults, APartitionIsReadOrTheReasonIsTold) {
  const auto database = Database::open(path("ref"), options_, error_);
  ASSERT_NE(database, nullptr) << error_.text;
  Zip zip;
  for (const Zip& each : database->zips())
    if (each->get(ZipDataRow::sfhRba) != 0) zip = each;
  ASSERT_TRUE(zip);
  const std::uint32_t bytes = database->partitionBytes(zip, PartitionKind::kStreet).value();
  FileBytes right(bytes);
  ASSERT_EQ(database->readPartition(zip, PartitionKind::kStreet, right, error_), bytes);
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    FileBytes buffer(bytes);
    armFaults(plan);
    const auto got = database->readPartition(zip, PartitionKind::kStreet, buffer, error_);
    disarmFaults();
    if (got) {
      EXPECT_EQ(buffer, right);
      return;
    }
    EXPECT_GT(faultsFired(), 0U);
    EXPECT_TRUE(isReason(static_cast<std::int32_t>(error_.code))) << error_.text;
  });
}

}  // namespace
}  // namespace statecut::test
