#include "info/info.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "dbfiles/controlrec.h"
#include "support/paths.h"
#include "support/process.h"

namespace statecut::test {

namespace {

using builder::Bytes;
using R = RefControlRec;

builder::Model soundModel() {
  return builder::makeModel(builder::tinyPlaces(), builder::tinyOptions());
}

Bytes reference() { return builder::referenceFile(soundModel()).bytes; }
Bytes range() { return builder::rangeFile(soundModel().range); }

const info::TableInfo* find(const info::FileInfo& file, const std::string& name) {
  for (const auto& table : file.tables)
    if (table.name == name) return &table;
  return nullptr;
}

class Info : public testing::Test {
 protected:
  std::string write(const std::string& name, const Bytes& bytes) {
    writeWholeFile(folder.file(name), bytes);
    return folder.file(name);
  }
  int run(const std::vector<std::string>& paths, bool json = false) {
    out.str("");
    err.str("");
    return info::run(paths, {.json = json, .tsv = info::Tsv::None, .key = ""}, out, err);
  }

  TempDir folder;
  std::ostringstream out;
  std::ostringstream err;
};

TEST(Describe, ReferenceFileHasItsIdentification) {
  builder::Model model = soundModel();
  model.header.version = "12345678";
  model.header.copyright = "0731";
  model.header.buildStamp = 86400;
  const auto file = info::describe("f", builder::referenceFile(model).bytes);
  EXPECT_EQ(file.type, "reference");
  EXPECT_FALSE(file.stateCut);
  EXPECT_EQ(file.version, "12.34.5.6.78");
  EXPECT_EQ(file.copyright, "07/31");
  EXPECT_EQ(file.buildStamp, 86400U);
  EXPECT_EQ(file.cutStamp, 0U);
  EXPECT_TRUE(file.damage.empty());
}

TEST(Describe, TablesHaveRbaCountAndBytes) {
  const builder::Model model = soundModel();
  const builder::ReferenceFile written = builder::referenceFile(model);
  const auto file = info::describe("f", written.bytes);
  const auto* names = find(file, "City Names");
  ASSERT_NE(names, nullptr);
  EXPECT_EQ(names->rba, written.place(builder::Table::CityNames).rba);
  EXPECT_EQ(names->count, model.cityNames.size());
  EXPECT_EQ(names->bytes, model.cityNames.size() * 34);
  const auto* military = find(file, "Military Aliases");
  ASSERT_NE(military, nullptr);
  EXPECT_EQ(military->bytes, written.place(builder::Table::Military).bytes);
  EXPECT_TRUE(std::is_sorted(file.tables.begin(), file.tables.end(),
                             [](const auto& a, const auto& b) { return a.rba < b.rba; }));
}

TEST(Describe, StatesAddUpTheZipsAndBytesOfTheZipBytesTable) {
  builder::Model model = soundModel();
  const auto file = info::describe("f", builder::referenceFile(model).bytes);
  std::uint64_t zips = 0;
  std::uint64_t bytes = 0;
  for (const auto& state : file.states) {
    zips += state.zips;
    bytes += state.sfhBytes + state.pobBytes + state.rrBytes;
  }
  EXPECT_EQ(zips, model.zips.size() - 1);
  std::uint64_t expected = 0;
  for (const auto& partition : model.range.partitions)
    if (partition.section <= builder::Section::RrZip) expected += partition.bytes;
  EXPECT_EQ(bytes, expected);
  EXPECT_TRUE(std::is_sorted(file.states.begin(), file.states.end(),
                             [](const auto& a, const auto& b) { return a.state < b.state; }));
}

TEST(Describe, CutHasNoStatesAndNoTablesThatACutLeavesOut) {
  builder::Model model = soundModel();
  ASSERT_NE(find(info::describe("f", builder::referenceFile(model).bytes), "Zip Bytes"), nullptr);
  model.header.typeFlags = kTypeReference | kTypeStateCut;
  model.header.cutStamp = 77;
  model.words = {{static_cast<std::uint32_t>(R::zipBytesRba.at), 0}};
  const auto file = info::describe("f", builder::referenceFile(model).bytes);
  EXPECT_TRUE(file.stateCut);
  EXPECT_EQ(file.cutStamp, 77U);
  EXPECT_TRUE(file.states.empty());
  EXPECT_EQ(find(file, "Zip Bytes"), nullptr);
  EXPECT_TRUE(file.damage.empty());
}

TEST(Describe, RangeFileHasItsAreas) {
  const auto file = info::describe("f", range());
  EXPECT_EQ(file.type, "range");
  ASSERT_EQ(file.tables.size(), 6U);
  EXPECT_EQ(file.tables[0].name, "SFH ZIP partitions");
  EXPECT_GT(file.tables[0].bytes, 0U);
  EXPECT_TRUE(file.damage.empty());
}

TEST(Describe, OptionalTableWithRbaZeroIsLeftOut) {
  builder::Model model = soundModel();
  ASSERT_NE(find(info::describe("f", builder::referenceFile(model).bytes), "Military Aliases"),
            nullptr);
  model.military.reset();
  EXPECT_EQ(find(info::describe("f", builder::referenceFile(model).bytes), "Military Aliases"),
            nullptr);
}

TEST(Describe, ZipCodesAreTheEntriesOfTheZipIndex) {
  builder::Model model = soundModel();
  const auto all = info::describe("f", builder::referenceFile(model).bytes);
  EXPECT_EQ(all.zipCodes, model.zips.size() - 1);
  model.zipIndex.emplace(100000, std::uint16_t{0});
  (*model.zipIndex)[model.zips[1].zip] = 1;
  (*model.zipIndex)[model.zips[2].zip] = 2;
  EXPECT_EQ(info::describe("f", builder::referenceFile(model).bytes).zipCodes, 2U);
}

TEST(Describe, CityNamesAreThoseBehindTheBlankFirstRecord) {
  const builder::Model model = soundModel();
  Bytes bytes = builder::referenceFile(model).bytes;
  EXPECT_EQ(info::describe("f", bytes).cityNames, model.cityNames.size() - 1);
  le::put<4>(bytes.data() + R::cityNamesCount.at, 1);
  EXPECT_EQ(info::describe("f", bytes).cityNames, 0U);
  le::put<4>(bytes.data() + R::cityNamesCount.at, 0);
  EXPECT_EQ(info::describe("f", bytes).cityNames, 0U);
}

TEST(Describe, TablesOutsideTheFileCountNothing) {
  Bytes bytes = reference();
  ASSERT_GT(info::describe("f", bytes).zipCodes, 0U);
  ASSERT_GT(info::describe("f", bytes).cityNames, 0U);
  le::put<4>(bytes.data() + R::zipIndexRba.at, static_cast<std::uint32_t>(bytes.size()));
  le::put<4>(bytes.data() + R::cityNamesRba.at, static_cast<std::uint32_t>(bytes.size()));
  const auto file = info::describe("f", bytes);
  EXPECT_EQ(file.zipCodes, 0U);
  EXPECT_EQ(file.cityNames, 0U);
}

TEST(Describe, AnyBytesAreDescribed) {
  const Bytes sound = reference();
  ASSERT_TRUE(info::describe("f", sound).damage.empty());
  for (std::size_t length = 0; length < sound.size(); length = length * 5 / 4 + 31)
    EXPECT_FALSE(info::describe(
                     "f", Bytes(sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(length)))
                     .damage.empty())
        << length;
  for (unsigned seed = 1; seed <= 200; ++seed) {
    std::mt19937 random(seed);
    Bytes wild = sound;
    for (std::size_t i = 28; i < 332; ++i)
      if (random() % 4 == 0) wild[i] = static_cast<unsigned char>(random());
    std::ostringstream out;
    const auto file = info::describe("f", wild);
    info::printText(out, file);
    info::printJson(out, {file});
    EXPECT_FALSE(out.str().empty());
  }
}

TEST_F(Info, SoundFilesGiveZeroAndText) {
  EXPECT_EQ(run({write("a", reference()), write("b", range())}), 0);
  EXPECT_NE(out.str().find("a: reference database\n"), std::string::npos);
  EXPECT_NE(out.str().find("b: range database\n"), std::string::npos);
  EXPECT_NE(out.str().find("City Names"), std::string::npos);
  EXPECT_EQ(err.str(), "");
}

TEST_F(Info, TextOfAReferenceFileHasItsZipCodesAndCities) {
  const builder::Model model = soundModel();
  EXPECT_EQ(run({write("a", reference())}), 0);
  EXPECT_NE(out.str().find("\n  ZIP codes  " + std::to_string(model.zips.size() - 1) +
                           "\n  cities     " + std::to_string(model.cityNames.size() - 1) + "\n"),
            std::string::npos);
  EXPECT_EQ(run({write("b", range())}), 0);
  EXPECT_EQ(out.str().find("ZIP codes"), std::string::npos);
  EXPECT_EQ(out.str().find("cities"), std::string::npos);
}

TEST_F(Info, JsonOfAReferenceFileHasItsZipCodesAndCities) {
  const builder::Model model = soundModel();
  EXPECT_EQ(run({write("a", reference()), write("b", range())}, true), 0);
  const auto document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["files"][0]["zipCodes"], model.zips.size() - 1);
  EXPECT_EQ(document["files"][0]["cityNames"], model.cityNames.size() - 1);
  EXPECT_FALSE(document["files"][1].contains("zipCodes"));
  EXPECT_FALSE(document["files"][1].contains("cityNames"));
}

TEST_F(Info, JsonIsOneDocumentForAllFiles) {
  EXPECT_EQ(run({write("a", reference()), write("b", range())}, true), 0);
  const auto document = nlohmann::json::parse(out.str());
  ASSERT_EQ(document["files"].size(), 2U);
  EXPECT_EQ(document["files"][0]["type"], "reference");
  EXPECT_EQ(document["files"][0]["tables"].size(), 40U);
  EXPECT_GT(document["files"][0]["states"][0]["zips"], 0);
  EXPECT_EQ(document["files"][1]["type"], "range");
  EXPECT_EQ(document["files"][1]["areas"].size(), 6U);
}

TEST_F(Info, BytesThatAreNoTextStillGiveAJsonDocument) {
  Bytes odd = reference();
  std::fill(odd.begin(), odd.begin() + 8, static_cast<unsigned char>(0xFF));
  unsigned char* zipBytes = odd.data() + le::get<4>(odd.data() + R::zipBytesRba.at);
  zipBytes[12] = 0xC3;
  EXPECT_EQ(run({write("odd\xFF", odd)}, true), 0);
  const auto document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["files"][0]["version"], "\?\?.\?\?.\?.\?.\?\?");
}

TEST_F(Info, DamagedFileIsNamedAndGivesOne) {
  Bytes damaged = reference();
  EXPECT_EQ(run({write("a", damaged)}), 0);
  le::put<4>(damaged.data() + R::countiesRba.at, 0xFFFFFFF0);
  const std::string path = write("a", damaged);
  EXPECT_EQ(run({path}), 1);
  EXPECT_EQ(err.str(), "statedb info: " + path + ": Counties lies outside the file\n");
  EXPECT_NE(out.str().find("reference database"), std::string::npos);
}

TEST_F(Info, FileThatIsNoDatabaseGivesOne) {
  const std::string text = write("text", Bytes(5000, 'x'));
  EXPECT_EQ(run({text}), 1);
  EXPECT_EQ(err.str(), "statedb info: " + text +
                           ": not a database: flagged as neither a reference nor a range file\n");
  const std::string empty = write("empty", {});
  EXPECT_EQ(run({empty}), 1);
  EXPECT_EQ(err.str(),
            "statedb info: " + empty + ": not a database: shorter than a control record\n");
}

TEST_F(Info, FileThatCannotBeOpenedGivesTwoAndTheOthersAreShown) {
  const std::string sound = write("a", reference());
  EXPECT_EQ(run({sound}), 0);
  EXPECT_EQ(run({folder.file("missing"), folder.path(), sound}), 2);
  EXPECT_NE(err.str().find("missing: No such file"), std::string::npos);
  EXPECT_NE(err.str().find("not a regular file"), std::string::npos);
  EXPECT_NE(out.str().find("a: reference database"), std::string::npos);
}

TEST_F(Info, CommandLineWithoutFilesGivesTwo) {
  Command command;
  command.program = kStatedb;
  command.arguments = {"info", write("a", reference())};
  EXPECT_EQ(runProcess(command).exitStatus, 0);
  command.arguments = {"info"};
  EXPECT_EQ(runProcess(command).exitStatus, 2);
}

}  // namespace

}  // namespace statecut::test
