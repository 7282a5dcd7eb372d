// What opening refuses, and with which words.

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "base/le.h"
#include "tables/rows.h"
#include "unit/reader/readerpair.h"

namespace statecut::test {
namespace {

using Ref = RefControlRec;

class OpenDatabase : public ReaderPair {};

TEST_F(OpenDatabase, ASoundPairOpens) {
  ASSERT_NE(openPair(), nullptr) << error_.text;
  EXPECT_EQ(error_.code, ErrorCode::kNone);
  EXPECT_EQ(error_.text, "");
}

TEST_F(OpenDatabase, AMissingFileIsNamedWithItsReason) {
  EXPECT_EQ(refusal("/nowhere/city.dir", ErrorCode::kOpenFile),
            "cannot open /nowhere/city.dir: No such file or directory");
  EXPECT_EQ(error_.number, ENOENT);
}

TEST_F(OpenDatabase, AFolderAndAnEmptyFileAreNoDatabase) {
  EXPECT_EQ(refusal(folder_.path(), ErrorCode::kReadFile),
            "cannot read " + folder_.path() + ": Is a directory");
  EXPECT_EQ(error_.number, EISDIR);
  writeWholeFile(folder_.file("empty"), {});
  EXPECT_EQ(refusal(folder_.file("empty"), ErrorCode::kNotDatabase),
            folder_.file("empty") + " is no database: it has less than 844 bytes");
}

TEST_F(OpenDatabase, AForeignFileIsRefused) {
  ASSERT_NE(open(ref_), nullptr);
  EXPECT_EQ(refusal(rng_, ErrorCode::kNotDatabase), rng_ + " is not a reference database");
  writeWholeFile(folder_.file("zeros"), FileBytes(5000));
  EXPECT_EQ(refusal(folder_.file("zeros"), ErrorCode::kNotDatabase),
            folder_.file("zeros") + " is not a reference database");
}

// At every length that is short of something a table is named that the file does not hold.
TEST_F(OpenDatabase, AShortFileIsRefusedAtEveryLength) {
  ASSERT_NE(open(ref_), nullptr);
  const std::string path = folder_.file("short");
  std::size_t opened = 0;
  for (std::size_t bytes = 0; bytes < bytes_.size(); bytes += 997) {
    writeWholeFile(path, FileBytes(bytes_.begin(), bytes_.begin() + static_cast<int>(bytes)));
    if (open(path) != nullptr) {
      ++opened;  // what it lacks no lookup reads
      continue;
    }
    if (bytes < Ref::size) {
      EXPECT_EQ(error_.code, ErrorCode::kNotDatabase);
    } else {
      EXPECT_EQ(error_.code, ErrorCode::kShortFile);
      EXPECT_NE(error_.table, "");
      EXPECT_NE(error_.text.find(path + ": the table " + error_.table + " at " +
                                 std::to_string(error_.offset) + " has "),
                std::string::npos)
          << error_.text;
    }
  }
  EXPECT_LT(opened, 5U);
}

TEST_F(OpenDatabase, ATableInsideTheControlRecordIsRefused) {
  EXPECT_EQ(
      refusal(damaged(Ref::firmsRba.at, 4, 100), ErrorCode::kDamaged),
      folder_.file("damaged") + ": the table Firm names at 100 begins inside the control record");
  EXPECT_EQ(error_.table, "Firm names");
  EXPECT_EQ(error_.offset, 100U);
}

TEST_F(OpenDatabase, AZipCodeOfAnotherRecordIsRefused) {
  const std::uint32_t code = le::get<4>(bytes_.data() + word(Ref::zipDataRba.at) + 52);
  const std::size_t at = word(Ref::zipIndexRba.at) + 2 * std::size_t{code};
  ASSERT_EQ(le::get<2>(bytes_.data() + at), 1U);
  EXPECT_EQ(refusal(damaged(at, 2, 2), ErrorCode::kDamaged),
            folder_.file("damaged") + ": the table ZIP index at " + std::to_string(at) +
                " leads to no record of the ZIP code " + std::to_string(code));
  EXPECT_EQ(error_.offset, at);
  refusal(damaged(at, 2, word(Ref::zipDataCount.at)), ErrorCode::kDamaged);
}

TEST_F(OpenDatabase, AListBehindItsTableIsRefused) {
  const std::size_t zip = word(Ref::zipDataRba.at) + 52;
  FileBytes whole = bytes_;
  bytes_[zip + ZipDataRow::cityKeysCount.at] = 2;
  const std::uint32_t end = word(Ref::zipMultiCityListsCount.at);
  ASSERT_NE(open(damaged(zip + ZipDataRow::cityKeysIndex.at, 4, end - 2)), nullptr) << error_.text;
  EXPECT_EQ(refusal(damaged(zip + ZipDataRow::cityKeysIndex.at, 4, end - 1), ErrorCode::kDamaged),
            folder_.file("damaged") + ": the table ZIP data at " + std::to_string(zip) +
                " has a list of cities that ends behind its table");
  bytes_ = whole;
  const std::size_t fin = word(Ref::finMultiZipRbasRba.at) + 8;
  const std::uint32_t zips = le::get<2>(bytes_.data() + fin);
  ASSERT_GE(zips, 2U);
  const std::uint32_t lists = word(Ref::multiZipListsCount.at);
  ASSERT_NE(open(damaged(fin + 2, 2, lists - zips)), nullptr) << error_.text;
  refusal(damaged(fin + 2, 2, lists - zips + 1), ErrorCode::kDamaged);
  EXPECT_EQ(error_.table, "Finance multi-ZIP RBAs");
}

// Of an ambiguous variation: its place in the file, and that of its list.
struct Ambiguous {
  std::size_t at;
  std::size_t list;
};

TEST_F(OpenDatabase, AListOfStreetsBehindItsTableIsRefused) {
  struct Tables {
    const char* name;
    std::size_t variations, bytes, lists, listBytes;  // their words in the control record
  };
  const Tables kinds[] = {
      {"Street phonetics", Ref::streetPhoneticsRba.at, Ref::streetPhoneticsBytes.at,
       Ref::streetPhoneticAmbDataRba.at, Ref::streetPhoneticAmbDataBytes.at},
      {"Standardized street names", Ref::streetStandardsRba.at, Ref::streetStandardsBytes.at,
       Ref::streetStandardAmbDataRba.at, Ref::streetStandardAmbDataBytes.at}};
  ASSERT_NE(open(ref_), nullptr);
  for (const Tables& kind : kinds) {
    std::vector<Ambiguous> found;
    const std::size_t begin = word(kind.variations);
    const std::size_t end = begin + word(kind.bytes);
    for (std::size_t at = begin; at < end; at += 5U + (bytes_[at + 4] & 0x7FU))
      if (bytes_[at + 4] >= 0x80)
        found.push_back({at, word(kind.lists) + le::get<4>(bytes_.data() + at)});
    ASSERT_FALSE(found.empty()) << kind.name;
    for (const Ambiguous& one : {found.front(), found.back()}) {
      const std::string text = folder_.file("damaged") + ": the table " + kind.name + " at " +
                               std::to_string(one.at) +
                               " has a list of streets that ends behind its table";
      EXPECT_EQ(refusal(damaged(one.list, 2, 0xFFFF), ErrorCode::kDamaged), text);
      EXPECT_EQ(error_.table, kind.name);
      EXPECT_EQ(error_.offset, one.at);
      EXPECT_EQ(refusal(damaged(one.at, 4, word(kind.listBytes) - 1), ErrorCode::kDamaged), text);
      EXPECT_EQ(refusal(damaged(one.at, 4, 0xFFFFFFFF), ErrorCode::kDamaged), text);
    }
    // The last entry of the last list has an SCF more than there is room for.
    const std::size_t last = word(kind.lists) + word(kind.listBytes);
    std::size_t entry = found.back().list + 2;
    for (const Ambiguous& one : found) entry = std::max(entry, one.list + 2);
    while (entry + 5 + 2U * bytes_[entry + 4] < last) entry += 5 + 2U * bytes_[entry + 4];
    ASSERT_EQ(entry + 5 + 2U * bytes_[entry + 4], last);
    refusal(damaged(entry + 4, 1, bytes_[entry + 4] + 1U), ErrorCode::kDamaged);
  }
}

TEST_F(OpenDatabase, ARangeFileOfAnotherBuildOrACutIsRefused) {
  OpenOptions options;
  options.range = rng_;
  ASSERT_NE(Database::open(ref_, options, error_), nullptr) << error_.text;
  EXPECT_EQ(refusal(damaged(Ref::buildTimeStamp.at, 4, 7), ErrorCode::kOtherBuild, options),
            rng_ + " does not belong to " + folder_.file("damaged") + ": it is of another build");
  options.range = ref_;
  EXPECT_EQ(refusal(ref_, ErrorCode::kNotDatabase, options), ref_ + " is not a range database");
  options.range = "/nowhere/zip4us.dir";
  refusal(ref_, ErrorCode::kOpenFile, options);
  options.range = rng_;
  cut();
  refusal(ref_, ErrorCode::kOtherBuild, options);
  options.range = rng_;
  EXPECT_NE(Database::open(ref_, options, error_), nullptr) << error_.text;
}

TEST_F(OpenDatabase, AFileThatIsNoRegularOneIsRefusedAtOnce) {
  const std::string pipe = folder_.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  refusal(pipe, ErrorCode::kReadFile);
  const int writer = ::open(pipe.c_str(), O_RDWR);
  refusal(pipe, ErrorCode::kReadFile);
  ::close(writer);
}

TEST_F(OpenDatabase, BytesInMemoryAreUsedWhereTheyLie) {
  const std::span<const unsigned char> bytes(bytes_);
  const auto database = Database::open(bytes, {}, error_);
  ASSERT_NE(database, nullptr) << error_.text;
  const Zip zip = database->zipOfKey(1);
  EXPECT_EQ(zip.row->bytes.data(), bytes_.data() + word(Ref::zipDataRba.at) + 52);
  EXPECT_EQ(Database::open(bytes.first(843), {}, error_), nullptr);
  EXPECT_EQ(error_.code, ErrorCode::kNotDatabase);
  EXPECT_EQ(Database::open(bytes.first(900), {}, error_), nullptr);
  EXPECT_EQ(error_.code, ErrorCode::kShortFile);
}

TEST_F(OpenDatabase, AMappedFileAnswersAsOneThatIsRead) {
  OpenOptions options;
  options.mapped = true;
  const auto mapped = Database::open(ref_, options, error_);
  ASSERT_NE(mapped, nullptr) << error_.text;
  const auto read = open(ref_);
  ASSERT_NE(read, nullptr);
  std::size_t cities = 0;
  for (const CityName& city : read->cityNames()) {
    EXPECT_EQ(mapped->findCity(stateOf(*city), nameOf(*city)).key,
              read->findCity(stateOf(*city), nameOf(*city)).key);
    ++cities;
  }
  EXPECT_GT(cities, 10U);
}

}  // namespace
}  // namespace statecut::test
