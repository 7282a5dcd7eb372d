// The lines that the second derivation expects in the log.

#include <cstdio>

#include "support/linepattern.h"
#include "support/secondcut_state.h"

namespace statecut::secondcut {
namespace {

const std::string kTwoDigits = {test::kDigit, test::kDigit};

std::string severityName(Severity severity) {
  switch (severity) {
    case kError:
      return "ERR";
    case kWarning:
      return "WARN";
    case kInfo:
      return "INFO";
    case kDebug:
      return "DBG";
  }
  return {};
}

std::string lineField(int line) {
  if (line == kAnyLine) return {test::kDigits};
  char text[16];
  std::snprintf(text, sizeof text, "%04d", line);
  return text;
}

}  // namespace

LogBook::LogBook(const Inputs& inputs, Outcome& outcome)
    : outcome_(outcome), level_(inputs.logLevel), hasFile_(false) {
  if (level_ == 0) return;
  if (inputs.logName.empty()) {
    level_ = 2;
    return;
  }
  hasFile_ = true;
  outcome_.logCreated = true;
  const std::string year = kTwoDigits + kTwoDigits;
  record(kInfo, "utllgmsg", kAnyLine, 0, "Log",
         "Date: " + year + "-" + kTwoDigits + "-" + kTwoDigits);
  record(kInfo, "utllgmsg", kAnyLine, 0, "Log", "Log file = <" + inputs.logName + ">");
  record(kInfo, "utllgmsg", kAnyLine, 0, "Velandor Engine", "10.00.0.O.F1");
}

void LogBook::text(const std::string& line) {
  for (const std::string& each : test::splitLines(line))
    (hasFile_ ? outcome_.log : outcome_.out).push_back(each);
}

void LogBook::record(Severity severity, const std::string& source, int line, unsigned reason,
                     const std::string& title, const std::string& message) {
  if (level_ == 0 || severity > level_) return;
  const std::string date = kTwoDigits + "/" + kTwoDigits + "/" + kTwoDigits + " " + kTwoDigits +
                           ":" + kTwoDigits + "." + kTwoDigits;
  const std::string whole = date + ";" + severityName(severity) + ";" + source + ":" +
                            lineField(line) + ";" + test::kDigits + ";" + std::to_string(reason) +
                            ";" + title + ";" + message;
  // A message may hold a new line of its own: the record then takes two lines of the file.
  const std::vector<std::string> lines = test::splitLines(whole);
  if (hasFile_) {
    outcome_.log.insert(outcome_.log.end(), lines.begin(), lines.end());
    return;
  }
  if (failureReported_) return;
  failureReported_ = true;
  outcome_.err.emplace_back("Could not write log message.");
  outcome_.err.insert(outcome_.err.end(), lines.begin(), lines.end());
  outcome_.err.push_back(std::string("Errno = ") + test::kDigits + " : " + test::kAnyText);
}

void LogBook::required(const std::string& source, int line, const std::string& title,
                       const std::string& name, std::uint64_t size) {
  char text[128];
  std::snprintf(text, sizeof text, "%40s - required - %10d bytes", name.c_str(),
                static_cast<std::int32_t>(static_cast<std::uint32_t>(size)));
  record(kInfo, source, line, 0, title, text);
}

void LogBook::memoryError(const std::string& name) {
  record(kError, "apiutil", kAnyLine, 20001, "Mem Alloc Err",
         "Could not allocate memory for " + name + ".");
}

void LogBook::memoryWarning(const std::string& name) {
  record(kWarning, "apiutil", kAnyLine, 20001, "Mem Alloc",
         "Could not allocate memory for " + name + ".");
}

void LogBook::readRefError(const std::string& name) {
  record(kError, "apiutil", kAnyLine, 20045, "RefDB Read Err",
         "Could not read Reference db partition: " + name);
}

void LogBook::readRangeError(const std::string& name) {
  record(kError, "apiutil", kAnyLine, 20044, "RangeDB Read Err",
         "Could not read Range db record: " + name);
}

}  // namespace statecut::secondcut
