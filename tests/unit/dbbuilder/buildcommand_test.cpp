// The command as a user runs it.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "support/paths.h"
#include "support/process.h"
#include "unit/dbbuilder/refreader.h"

namespace statecut::test {
namespace {

class BuildCommand : public ::testing::Test {
 protected:
  ProcessResult build(std::vector<std::string> arguments) {
    Command command;
    command.program = kStatedb;
    command.arguments = {"build"};
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    command.folder = folder_.path();
    return runProcess(command);
  }
  FileBytes bytes(const std::string& name) {
    return readWholeFile(folder_.file(name)).value_or(FileBytes{});
  }

  TempDir folder_;
};

TEST_F(BuildCommand, MakesTheFolderAndWritesOneLineAFile) {
  const ProcessResult run = build({"--out", "a/b", "--profile", "tiny"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.err, "");
  const std::string ref = "a/b/city.dir: " + std::to_string(bytes("a/b/city.dir").size());
  const std::string rng = "a/b/zip4us.dir: " + std::to_string(bytes("a/b/zip4us.dir").size());
  EXPECT_EQ(run.out.rfind(ref + " bytes", 0), 0U) << run.out;
  EXPECT_NE(run.out.find("\n" + rng + " bytes"), std::string::npos) << run.out;
}

TEST_F(BuildCommand, SameArgumentsGiveTheSameFilesAndAnotherSeedOthers) {
  for (const char* folder : {"a", "b"})
    ASSERT_EQ(build({"--out", folder, "--profile", "tiny", "--seed", "7"}).exitStatus, 0);
  ASSERT_EQ(build({"--out", "c", "--profile", "tiny", "--seed", "8"}).exitStatus, 0);
  EXPECT_FALSE(bytes("a/city.dir").empty());
  EXPECT_EQ(bytes("a/city.dir"), bytes("b/city.dir"));
  EXPECT_EQ(bytes("a/zip4us.dir"), bytes("b/zip4us.dir"));
  EXPECT_NE(bytes("a/city.dir"), bytes("c/city.dir"));
  EXPECT_NE(bytes("a/zip4us.dir"), bytes("c/zip4us.dir"));
}

TEST_F(BuildCommand, OptionsDecideSizesAndTables) {
  ASSERT_EQ(build({"--out", ".", "--profile", "tiny", "--range-mb", "2", "--streets", "20",
                   "--firms", "5", "--no-military", "--no-pobox"})
                .exitStatus,
            0);
  const FileBytes ref = bytes("city.dir");
  const RefReader reader(ref);
  EXPECT_EQ(reader.word(140), 20U);
  EXPECT_EQ(reader.word(172), 5U);
  EXPECT_EQ(reader.word(324), 0U);
  EXPECT_EQ(reader.word(328), 0U);
  EXPECT_NEAR(static_cast<double>(bytes("zip4us.dir").size()), 2097152.0, 300000.0);
}

TEST_F(BuildCommand, ReadsTheZipCodesOfACsvFile) {
  const std::string csv = "zip,state,city,county\n12345,NY,SCHENECTADY,SCHENECTADY\n";
  writeWholeFile(folder_.file("my.csv"), {csv.begin(), csv.end()});
  const ProcessResult run = build({"--out", ".", "--zips", "my.csv", "--range-mb", "1"});
  ASSERT_EQ(run.exitStatus, 0) << run.err;
  const FileBytes ref = bytes("city.dir");
  const RefReader reader(ref);
  EXPECT_EQ(reader.number(reader.word(64) + 2 * 12345, 2), 1U);
}

TEST_F(BuildCommand, BadCsvEndsWithOneAndTheLine) {
  const std::string csv = "zip,state,city,county\n12345,NY,SCHENECTADY,\n1234,NY,ALBANY,\n";
  writeWholeFile(folder_.file("bad.csv"), {csv.begin(), csv.end()});
  const ProcessResult run = build({"--out", "out", "--zips", "bad.csv"});
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_NE(run.err.find("bad.csv:3: bad ZIP code"), std::string::npos) << run.err;
  EXPECT_FALSE(std::filesystem::exists(folder_.file("out")));
}

TEST_F(BuildCommand, FullDiskEndsWithOne) {
  ASSERT_EQ(build({"--out", "ok", "--profile", "tiny"}).exitStatus, 0);
  for (const std::string name : {"city.dir", "zip4us.dir"}) {
    const std::string out = folder_.file("full-" + name);
    std::filesystem::create_directory(out);
    ASSERT_EQ(symlink("/dev/full", (out + "/" + name).c_str()), 0);
    const ProcessResult run = build({"--out", out, "--profile", "tiny"});
    EXPECT_EQ(run.exitStatus, 1) << name;
    EXPECT_NE(run.err.find("No space left on device"), std::string::npos) << run.err;
    EXPECT_EQ(run.out, "");
  }
}

TEST_F(BuildCommand, FolderThatIsAFileEndsWithOne) {
  writeWholeFile(folder_.file("taken"), {'x'});
  const ProcessResult run = build({"--out", "taken", "--profile", "tiny"});
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_NE(run.err.find("taken"), std::string::npos) << run.err;
}

TEST_F(BuildCommand, WrongUsageEndsWithTwo) {
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"--out", "x", "--profile", "huge"},
      {"--out", "x", "--profile", "tiny", "--zips", "a.csv"},
      {"--out", "x", "--profile", "tiny", "--range-mb", "0"},
      {"--out", "x", "--profile", "tiny", "--range-mb", "4001"},
      {"--out", "x", "--profile", "tiny", "--streets", "7"},
      {"--out", "x", "--profile", "tiny", "--firms", "0"},
      {"--out", "x", "--profile", "tiny", "--seed", "abc"},
      {"--out", "x", "--profile", "tiny", "--seed", "-1"},
      {"--out", "x", "--profile", "tiny", "--seed", "1.5"},
      {"--out", "x", "--profile", "tiny", "--seed", "18446744073709551616"},
      {"--out", "x", "--profile", "tiny", "--unknown"},
      {"--out", "x", "--profile", "tiny", "surplus"}};
  for (const auto& arguments : wrong) {
    const ProcessResult run = build(arguments);
    EXPECT_EQ(run.exitStatus, 2) << (arguments.empty() ? "" : arguments.back());
    EXPECT_NE(run.err, "");
    EXPECT_FALSE(std::filesystem::exists(folder_.file("x")));
  }
}

TEST_F(BuildCommand, VerifyFindsNothingWrong) {
  for (const std::string profile : {"tiny", "small"}) {
    ASSERT_EQ(build({"--out", profile, "--profile", profile}).exitStatus, 0);
    Command verify;
    verify.program = kStatedb;
    verify.arguments = {"verify", "--ref", folder_.file(profile + "/city.dir"), "--rng",
                        folder_.file(profile + "/zip4us.dir")};
    const ProcessResult run = runProcess(verify);
    EXPECT_EQ(run.exitStatus, 0) << run.out << run.err;
  }
}

}  // namespace
}  // namespace statecut::test
