#include "support/logfixture.h"

#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

#include "base/le.h"
#include "base/memory.h"
#include "log/utllgmsg.h"

namespace statecut::test {

Bytes bytesWith(std::size_t count, const Words& words) {
  Bytes bytes(count);
  for (const auto& [at, value] : words) putWord(bytes, at, value);
  return bytes;
}

void putWord(Bytes& bytes, std::size_t at, std::uint32_t value) {
  ASSERT_LE(at + 4, bytes.size());
  le::put<4>(bytes.data() + at, value);
}

std::string sizeLine(const std::string& table, std::int32_t bytes) {
  char text[120];
  std::snprintf(text, sizeof text, "%40s - required - %10d bytes", table.c_str(), bytes);
  return text;
}

LogFixture::LogFixture() {
  setenv("TZ", "UTC", 1);
  tzset();
  proc_.files = &proc_.fileRecord;
  proc_.stats = &proc_.statistics;
  proc_.options = &options_;
  pProcObj = &proc_;
  EXPECT_EQ(utlInitLog(5, path("log").c_str(), &proc_), 0);
  records();
}

LogFixture::~LogFixture() {
  freeTable(proc_.refControlRec);
  freeTable(proc_.rngControlRec);
  for (Stream* stream : streams_) streamClose(stream);
  utlLogMsgClose(&proc_.files->log);
  for (const int end : pipe_)
    if (end >= 0) close(end);
  pProcObj = nullptr;
}

std::string LogFixture::write(const std::string& name, const Bytes& bytes) const {
  std::ofstream file(path(name), std::ios::binary);
  std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
  return path(name);
}

Stream* LogFixture::opened(const std::string& file, const char* mode) {
  Stream* const stream = streamOpen(file.c_str(), mode);
  EXPECT_NE(stream, nullptr) << file;
  streams_.push_back(stream);
  return stream;
}

Stream* LogFixture::holding(const Bytes& bytes, const std::string& name) {
  return opened(write(name, bytes));
}

Stream* LogFixture::unseekable() {
  if (pipe_[0] < 0) {
    EXPECT_EQ(pipe(pipe_), 0);
  }
  return opened("/dev/fd/" + std::to_string(pipe_[0]));
}

void LogFixture::forget(const Stream* stream) {
  streams_.erase(std::remove(streams_.begin(), streams_.end(), stream), streams_.end());
}

Bytes LogFixture::contents(const std::string& name) const {
  std::ifstream file(path(name), std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

std::vector<std::string> LogFixture::recordsAs(const char* format) {
  static const std::regex kRecord(
      R"(\d\d/\d\d/\d\d \d\d:\d\d\.\d\d;([A-Z]*);(\w*):(\d{4,});\d+;(\d+;.*))");
  const Bytes log = contents("log");
  std::istringstream lines(
      std::string(log.begin() + static_cast<std::ptrdiff_t>(seen_), log.end()));
  seen_ = log.size();
  std::vector<std::string> found;
  for (std::string line; std::getline(lines, line);) {
    std::smatch fields;
    if (std::regex_match(line, fields, kRecord)) {
      found.push_back(fields.format(format));
    } else if (!found.empty()) {
      found.back() += "\n" + line;
    } else {
      found.push_back(line);
    }
  }
  return found;
}

}  // namespace statecut::test
