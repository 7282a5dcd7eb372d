#include "support/logfixture.h"

#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>

#include "base/le.h"
#include "base/memory.h"
#include "log/utllgmsg.h"

namespace statecut::test {

namespace {

// Whether the text looks like the shape: '0' stands for a digit.
bool looksLike(std::string_view text, std::string_view shape) {
  return std::equal(text.begin(), text.end(), shape.begin(), shape.end(), [](char c, char like) {
    return like == '0' ? std::isdigit(static_cast<unsigned char>(c)) != 0 : c == like;
  });
}

bool isNumber(std::string_view text) {
  return looksLike(text, std::string(std::max<std::size_t>(text.size(), 1), '0'));
}

// "01/31/26 23:59.59;ERR;dbaccess:0123;42;20002;text" as "ERR;dbaccess;20002;text", or with the
// line behind the source; none: the line begins no record.
std::optional<std::string> recordOf(const std::string& line, bool withLines) {
  std::array<std::string, 4> field;  // time, severity, source and line, count
  std::istringstream in(line);
  for (std::string& each : field)
    if (!std::getline(in, each, ';')) return {};
  std::string rest;  // the number of the message, its text
  std::getline(in, rest);
  const auto& [time, severity, place, count] = field;
  const std::size_t colon = place.find(':');
  if (!looksLike(time, "00/00/00 00:00.00") || !isNumber(count) || colon == std::string::npos ||
      !isNumber(std::string_view(place).substr(colon + 1)) || place.size() - colon < 5 ||
      !isNumber(rest.substr(0, rest.find(';'))) || rest.find(';') == std::string::npos)
    return {};
  return severity + ';' + (withLines ? place : place.substr(0, colon)) + ';' + rest;
}

}  // namespace

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

std::vector<std::string> LogFixture::recordsOf(bool withLines) {
  const Bytes log = contents("log");
  std::istringstream lines(
      std::string(log.begin() + static_cast<std::ptrdiff_t>(seen_), log.end()));
  seen_ = log.size();
  std::vector<std::string> found;
  for (std::string line; std::getline(lines, line);) {
    if (const std::optional<std::string> record = recordOf(line, withLines)) {
      found.push_back(*record);
    } else if (!found.empty()) {
      found.back() += "\n" + line;
    } else {
      found.push_back(line);
    }
  }
  return found;
}

}  // namespace statecut::test
