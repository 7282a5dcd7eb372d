// What a run does in its folder: room, lock, folders in the making, names.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "cuts/checking.h"
#include "cuts/flushed.h"
#include "cuts/lock.h"
#include "cuts/partfolder.h"
#include "cuts/space.h"
#include "support/process.h"

namespace statecut::cuts {
namespace {

namespace fs = std::filesystem;

void put(const std::string& path, const std::string& text) {
  test::writeWholeFile(path, {text.begin(), text.end()});
}

TEST(Space, IsThatOfWhatComesAndOfWhatStandsThereTwice) {
  EXPECT_EQ(spaceNeeded({}, 2), 0U);
  EXPECT_EQ(spaceNeeded({{100, 0}, {50, 0}}, 2), 150U);
  EXPECT_EQ(spaceNeeded({{100, 100}, {50, 50}, {30, 30}}, 1), 100U);
  EXPECT_EQ(spaceNeeded({{100, 100}, {50, 50}, {30, 30}}, 2), 150U);
  EXPECT_EQ(spaceNeeded({{100, 60}}, 2), 100U);
  EXPECT_EQ(spaceNeeded({{100, 500}}, 2), 100U);  // what is set free late helps no one
}

TEST(Space, OfAFolderThatIsNotThereIsAnError) {
  const test::TempDir folder;
  std::string error;
  EXPECT_GT(spaceFree(folder.path(), error), 0U);
  EXPECT_EQ(error, "");
  EXPECT_EQ(spaceFree(folder.file("none"), error), 0U);
  EXPECT_NE(error, "");
}

// Takes the lock in another process; its answer is the exit status.
bool takenByAnother(const std::string& folder, std::string& error) {
  int pipes[2];
  EXPECT_EQ(::pipe(pipes), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    FolderLock lock;
    std::string why;
    const bool got = lock.take(folder, why);
    (void)!::write(pipes[1], why.data(), why.size());
    ::_exit(got ? 0 : 1);
  }
  ::close(pipes[1]);
  char text[300];
  const ssize_t read = ::read(pipes[0], text, sizeof text);
  error.assign(text, read > 0 ? static_cast<std::size_t>(read) : 0);
  ::close(pipes[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(Lock, IsHeldByOneProcessAndEndsWithIt) {
  const test::TempDir folder;
  std::string error;
  EXPECT_TRUE(takenByAnother(folder.path(), error)) << error;
  {
    FolderLock lock;
    ASSERT_TRUE(lock.take(folder.path(), error)) << error;
    EXPECT_FALSE(takenByAnother(folder.path(), error));
    EXPECT_EQ(error, "another run works in " + folder.path() + " (process " +
                         std::to_string(::getpid()) + ")");
  }
  EXPECT_TRUE(takenByAnother(folder.path(), error)) << error;
}

TEST(PartFolders, AreRemovedWithTheFilesOfAProductAndNothingElse) {
  const test::TempDir folder;
  std::string error;
  ASSERT_TRUE(makePartFolder(folder.path(), "TX", error)) << error;
  put(folder.file(".TX.part/city.sc"), "x");
  put(folder.file(".manifest.json.part"), "x");
  fs::create_directory(folder.file("TX"));
  fs::create_directory(folder.file(".other"));
  EXPECT_TRUE(removeAllParts(folder.path(), error)) << error;
  EXPECT_FALSE(fs::exists(folder.file(".TX.part")));
  EXPECT_FALSE(fs::exists(folder.file(".manifest.json.part")));
  EXPECT_TRUE(fs::exists(folder.file("TX")));
  EXPECT_TRUE(fs::exists(folder.file(".other")));

  ASSERT_TRUE(makePartFolder(folder.path(), "TX", error)) << error;
  put(folder.file(".TX.part/mine"), "x");
  EXPECT_FALSE(removeAllParts(folder.path(), error));
  EXPECT_EQ(error, folder.file(".TX.part") + ": Directory not empty");
  EXPECT_TRUE(fs::exists(folder.file(".TX.part/mine")));
}

TEST(Products, AreReplacedWhereNothingElseStands) {
  const test::TempDir folder;
  std::string error;
  EXPECT_TRUE(replaceable(folder.file("TX"), error)) << error;
  fs::create_directory(folder.file("TX"));
  put(folder.file("TX/city.sc"), "x");
  EXPECT_TRUE(replaceable(folder.file("TX"), error)) << error;
  put(folder.file("TX/mine"), "x");
  EXPECT_FALSE(replaceable(folder.file("TX"), error));
  EXPECT_EQ(error, folder.file("TX") + ": holds what is no product's: mine");
  EXPECT_FALSE(replaceable(folder.file("TX/mine"), error));
  EXPECT_EQ(error, folder.file("TX/mine") + ": not a folder");
}

TEST(PublishedFolders, TakeTheNameAndLeaveTheOlderOneInTheirPlace) {
  const test::TempDir folder;
  std::string error;
  fs::create_directory(folder.file(".TX.part"));
  put(folder.file(".TX.part/city.sc"), "first");
  ASSERT_TRUE(publishFolder(folder.path(), ".TX.part", "TX", error)) << error;
  EXPECT_FALSE(fs::exists(folder.file(".TX.part")));
  EXPECT_EQ(test::readTextFile(folder.file("TX/city.sc")), "first");
  fs::create_directory(folder.file(".TX.part"));
  put(folder.file(".TX.part/city.sc"), "second");
  ASSERT_TRUE(publishFolder(folder.path(), ".TX.part", "TX", error)) << error;
  EXPECT_EQ(test::readTextFile(folder.file("TX/city.sc")), "second");
  EXPECT_EQ(test::readTextFile(folder.file(".TX.part/city.sc")), "first");
  EXPECT_FALSE(publishFolder(folder.path(), ".none.part", "TX", error));
  EXPECT_EQ(test::readTextFile(folder.file("TX/city.sc")), "second");
}

TEST(LogRecords, AreThoseOfTheSeverityEachOnce) {
  const test::TempDir folder;
  put(folder.file("log"),
      "Start Time: 01\nTX\n"
      "11/22/26 04:00.00;WARN;cutstate:1531;12;0;Get Bytes;Zp SFH  7\n"
      "11/22/26 04:00.00;WARN;cutstate:1531;12;0;Get Bytes;Zp SFH  7\n"
      "11/22/26 04:00.00;ERR;cutstate:1877;12;20003;Open Error;city.sc;Is a directory\n"
      "11/22/26 04:00.00;WARN;cut\n");
  EXPECT_EQ(logRecords(folder.file("log"), "WARN"),
            std::vector<std::string>{"Get Bytes;Zp SFH  7"});
  EXPECT_EQ(logRecords(folder.file("log"), "ERR"),
            std::vector<std::string>{"Open Error;city.sc;Is a directory"});
  EXPECT_TRUE(logRecords(folder.file("none"), "ERR").empty());
}

TEST(Results, OfACheckComeBackAsTheyWere) {
  Checked checked;
  checked.reference = {"city.sc", 12, "ab"};
  checked.range = {"zip4us.sc", 34, "cd"};
  checked.time = 56;
  checked.warnings = {"w"};
  const Checked back = parseChecked(toText(checked));
  EXPECT_EQ(back.error, "");
  EXPECT_EQ(back.reference, checked.reference);
  EXPECT_EQ(back.range, checked.range);
  EXPECT_EQ(back.time, 56U);
  EXPECT_EQ(back.warnings, checked.warnings);
  EXPECT_NE(parseChecked("").error, "");
  EXPECT_NE(parseChecked("{}").error, "");
}

}  // namespace
}  // namespace statecut::cuts
