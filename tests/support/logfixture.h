#pragma once
// A run context with a real log file at level 5 in a temporary folder, and its records as texts.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/procobj.h"
#include "base/stream.h"
#include "support/files.h"

namespace statecut::test {

using Bytes = std::vector<unsigned char>;
using Words = std::vector<std::pair<std::size_t, std::uint32_t>>;  // byte offset, value

// `count` zero bytes with little-endian 32-bit words set.
Bytes bytesWith(std::size_t count, const Words& words);
void putWord(Bytes& bytes, std::size_t at, std::uint32_t value);

// The text of a table's size line.
std::string sizeLine(const std::string& table, std::int32_t bytes);

// Context in proc_, also reached through pProcObj; the local time is UTC.
class LogFixture : public ::testing::Test {
 protected:
  LogFixture();
  ~LogFixture() override;
  LogFixture(const LogFixture&) = delete;
  LogFixture& operator=(const LogFixture&) = delete;

  [[nodiscard]] std::string path(const std::string& name) const { return folder_.file(name); }
  // Writes a file of the folder; opens one (closed by the fixture, unless forgotten).
  std::string write(const std::string& name, const Bytes& bytes) const;
  Stream* opened(const std::string& file, const char* mode = "rb");
  Stream* holding(const Bytes& bytes, const std::string& name = "file");
  // A pipe, in which every seek fails.
  Stream* unseekable();
  // A folder, of which every read fails.
  Stream* unreadable() { return opened(folder_.path()); }
  void forget(const Stream* stream);
  [[nodiscard]] Bytes contents(const std::string& name) const;

  // The records since the last call, as "ERR;dbaccess;20002;DB Seek Error;rba=1, Illegal seek":
  // date, line and process id dropped, and the last new line.
  std::vector<std::string> records() { return recordsOf(false); }
  // The same with the line: "ERR;dbaccess:0123;20002;DB Seek Error;rba=1, Illegal seek".
  std::vector<std::string> recordsWithLines() { return recordsOf(true); }

  ProcObj proc_{};
  OptionsRecord options_{};

 private:
  std::vector<std::string> recordsOf(bool withLines);

  TempDir folder_;
  std::size_t seen_ = 0;  // bytes of the log already handed out
  std::vector<Stream*> streams_;
  int pipe_[2] = {-1, -1};
};

}  // namespace statecut::test
