#include "base/stream.h"
#include "base/samefile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "support/files.h"

namespace statecut {
namespace {

namespace fs = std::filesystem;

class StreamTest : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.file(name); }

  std::string fileOf(std::size_t bytes) const {
    std::ofstream out(path("data"), std::ios::binary);
    for (std::size_t i = 0; i < bytes; ++i) out.put(byteAt(i));
    return path("data");
  }
  static char byteAt(std::size_t i) { return static_cast<char>((i * 131 + i / 251) & 0xFF); }

  test::TempDir folder_;
};

TEST_F(StreamTest, ReadsTheSameBytesInAnyPieces) {
  const std::size_t size = 300000;
  const std::string name = fileOf(size);
  for (const std::size_t piece : {1U, 7U, 4088U, 65536U, 100000U}) {
    Stream* stream = streamOpen(name.c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    std::vector<char> got(size);
    std::size_t at = 0;
    while (at < size) {
      const std::size_t want = std::min(piece, size - at);
      ASSERT_EQ(streamRead(stream, got.data() + at, want), want);
      at += want;
    }
    EXPECT_FALSE(streamEof(stream));
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(got[i], byteAt(i)) << i;
    char extra = 0;
    EXPECT_EQ(streamRead(stream, &extra, 1), 0U);
    EXPECT_TRUE(streamEof(stream));
    EXPECT_FALSE(streamError(stream));
    EXPECT_EQ(streamClose(stream), 0);
  }
}

TEST_F(StreamTest, SeeksBackwardForwardAndInsideTheBuffer) {
  const std::size_t size = 200000;
  Stream* stream = streamOpen(fileOf(size).c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  char got[4088];
  for (const std::size_t at : {0U, 4088U, 8176U, 12264U, 9000U, 100U, 150000U, 154088U, 199000U}) {
    ASSERT_EQ(streamSeek(stream, at), 0);
    const std::size_t want = std::min(sizeof got, size - at);
    ASSERT_EQ(streamRead(stream, got, sizeof got), want);
    for (std::size_t i = 0; i < want; ++i) ASSERT_EQ(got[i], byteAt(at + i)) << at + i;
    EXPECT_EQ(streamEof(stream), want < sizeof got);
  }
  EXPECT_EQ(streamSeek(stream, size + 1000), 0);
  EXPECT_EQ(streamRead(stream, got, 1), 0U);
  EXPECT_TRUE(streamEof(stream));
  streamClose(stream);
}

TEST_F(StreamTest, WritesAndOverwritesTheStart) {
  Stream* stream = streamOpen(path("out").c_str(), "wb");
  ASSERT_NE(stream, nullptr);
  std::string expected;
  for (const std::size_t piece : {844U, 4088U, 200000U, 3U, 65536U}) {
    const std::string part(piece, static_cast<char>('a' + piece % 26));
    EXPECT_EQ(streamWrite(stream, part.data(), part.size()), piece);
    expected += part;
  }
  EXPECT_EQ(streamSeek(stream, 0), 0);
  EXPECT_EQ(streamWrite(stream, "HEAD", 4), 4U);
  EXPECT_EQ(streamClose(stream), 0);
  expected.replace(0, 4, "HEAD");
  EXPECT_EQ(test::readTextFile(path("out")), expected);
}

TEST_F(StreamTest, AppendsToWhatIsThere) {
  for (const char* text : {"one\n", "two\n"}) {
    Stream* stream = streamOpen(path("log").c_str(), "a+");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(streamWrite(stream, text, 4), 4U);
    EXPECT_EQ(streamFlush(stream), 0);
    EXPECT_EQ(streamClose(stream), 0);
  }
  EXPECT_EQ(test::readTextFile(path("log")), "one\ntwo\n");
}

TEST_F(StreamTest, FullDeviceSetsTheErrorIndicatorAndKeepsIt) {
  Stream* stream = streamOpen("/dev/full", "wb");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(streamWrite(stream, "x", 1), 1U);
  EXPECT_FALSE(streamError(stream));
  EXPECT_EQ(streamFlush(stream), -1);
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_TRUE(streamError(stream));
  EXPECT_EQ(streamErrno(stream), ENOSPC);
  EXPECT_EQ(streamClose(stream), -1);
  EXPECT_EQ(errno, ENOSPC);
}

TEST_F(StreamTest, DirectoryOpensAndFailsAtTheRead) {
  Stream* stream = streamOpen(folder_.path().c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  char byte = 0;
  EXPECT_EQ(streamRead(stream, &byte, 1), 0U);
  EXPECT_TRUE(streamError(stream));
  EXPECT_FALSE(streamEof(stream));
  EXPECT_EQ(streamErrno(stream), EISDIR);
  streamClose(stream);
}

TEST_F(StreamTest, FileThatLosesBytesWhileItIsOpenShrank) {
  Stream* const stream = streamOpen(fileOf(100).c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  EXPECT_FALSE(streamShrank(stream));
  ASSERT_EQ(::truncate(path("data").c_str(), 101), 0);
  EXPECT_FALSE(streamShrank(stream));
  ASSERT_EQ(::truncate(path("data").c_str(), 99), 0);
  EXPECT_TRUE(streamShrank(stream));
  streamClose(stream);
}

TEST_F(StreamTest, EndBeforeTheOpenedSizeIsKeptWhenTheBytesComeBack) {
  Stream* const stream = streamOpen(fileOf(100).c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  char bytes[100];
  EXPECT_EQ(streamRead(stream, bytes, 100), 100U);
  EXPECT_EQ(streamRead(stream, bytes, 1), 0U);
  EXPECT_FALSE(streamEndedEarly(stream));
  ASSERT_EQ(::truncate(path("data").c_str(), 0), 0);
  ASSERT_EQ(streamSeek(stream, 50), 0);
  EXPECT_EQ(streamRead(stream, bytes, 50), 0U);
  EXPECT_TRUE(streamEndedEarly(stream));
  ASSERT_EQ(::truncate(path("data").c_str(), 100), 0);
  EXPECT_TRUE(streamEndedEarly(stream));
  EXPECT_TRUE(streamShrank(stream));
  streamClose(stream);
}

TEST_F(StreamTest, DevicesAndFilesThatAreWrittenNeverShrink) {
  using NameAndMode = std::pair<std::string, const char*>;
  for (const auto& [name, mode] :
       {NameAndMode("/dev/null", "rb"), {"/dev/zero", "rb"}, {path("new"), "wb"}}) {
    Stream* const stream = streamOpen(name.c_str(), mode);
    ASSERT_NE(stream, nullptr) << name;
    EXPECT_FALSE(streamShrank(stream)) << name;
    streamClose(stream);
  }
}

TEST_F(StreamTest, PipeCannotSeek) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "abc", 3), 3);
  ::close(ends[1]);
  Stream* stream = streamOpen(("/dev/fd/" + std::to_string(ends[0])).c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(streamSeek(stream, 0), -1);
  EXPECT_EQ(errno, ESPIPE);
  char got[8];
  EXPECT_EQ(streamRead(stream, got, 8), 3U);
  EXPECT_TRUE(streamEof(stream));
  streamClose(stream);
  ::close(ends[0]);
}

TEST_F(StreamTest, PipeGivesWhatItHoldsWithoutWaitingForMore) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "abc", 3), 3);
  Stream* stream = streamOpen(("/dev/fd/" + std::to_string(ends[0])).c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  char got[3];
  for (char& byte : got) EXPECT_EQ(streamRead(stream, &byte, 1), 1U);
  EXPECT_EQ(std::string(got, 3), "abc");
  streamClose(stream);
  ::close(ends[0]);
  ::close(ends[1]);
}

TEST_F(StreamTest, OpenStreamsAreFlushedAtExit) {
  const std::string name = path("late");
  EXPECT_EXIT(
      {
        Stream* stream = streamOpen(name.c_str(), "wb");
        streamWrite(stream, "late", 4);
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(test::readTextFile(name), "late");
}

TEST_F(StreamTest, MissingFileGivesNullAndErrno) {
  EXPECT_EQ(streamOpen(path("none").c_str(), "rb"), nullptr);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(streamOpen("", "wb"), nullptr);
}

TEST_F(StreamTest, SameFileSeesThroughAliases) {
  const std::string a = fileOf(10);
  EXPECT_TRUE(sameFile(a.c_str(), a.c_str()));
  fs::create_hard_link(a, path("hard"));
  fs::create_symlink("data", path("soft"));
  fs::create_directory(path("sub"));
  EXPECT_TRUE(sameFile(a.c_str(), path("hard").c_str()));
  EXPECT_TRUE(sameFile(a.c_str(), path("soft").c_str()));
  EXPECT_TRUE(sameFile(a.c_str(), path("sub/../data").c_str()));
  EXPECT_FALSE(sameFile(a.c_str(), path("other").c_str()));
  std::ofstream(path("copy")) << "0123456789";
  EXPECT_FALSE(sameFile(a.c_str(), path("copy").c_str()));
}

TEST_F(StreamTest, SameFileComparesNamesThatDoNotExistYet) {
  fs::create_directory(path("sub"));
  fs::create_directory_symlink("sub", path("link"));
  fs::create_symlink("sub/new", path("dangling"));
  EXPECT_TRUE(sameFile(path("sub/new").c_str(), path("link/new").c_str()));
  EXPECT_TRUE(sameFile(path("sub/new").c_str(), path("dangling").c_str()));
  EXPECT_FALSE(sameFile(path("sub/new").c_str(), path("new").c_str()));
  EXPECT_FALSE(sameFile(path("nowhere/new").c_str(), path("nowhere/new2").c_str()));
}

TEST_F(StreamTest, DevicesAreNeverTheSameFile) {
  EXPECT_FALSE(sameFile("/dev/null", "/dev/null"));
  EXPECT_FALSE(sameFile("/dev/full", "/dev/full"));
}

}  // namespace
}  // namespace statecut
