#pragma once
// A processing object with an open log, a fixed time and a fixed process id.

#include <ctime>
#include <string>

#include "base/clock.h"
#include "base/procobj.h"
#include "base/stream.h"
#include "log/utllgmsg.h"
#include "unit/log/sandbox.h"

namespace statecut::test {

class LogTest : public SandboxTest {
 protected:
  static constexpr std::int32_t kPid = 4711;

  LogTest() {
    ::setenv("TZ", "UTC0", 1);
    ::tzset();
    currentTime = [] { return std::time_t{1794742805}; };  // 2026-11-15 11:40:05
    currentProcessId = [] { return kPid; };
    proc_.files = &proc_.fileRecord;
    proc_.options = &options_;
    pProcObj = &proc_;
  }
  ~LogTest() override {
    utlLogMsgClose(&proc_.files->log);
    currentTime = savedTime_;
    currentProcessId = savedProcessId_;
    pProcObj = nullptr;
  }

  void openLog(std::int32_t level) { ASSERT_EQ(utlInitLog(level, "log.txt", &proc_), 0); }

  std::int32_t write(std::int32_t severity, const std::string& text, std::int32_t number = 10) {
    return utlWriteLogMsg(&proc_, "dbaccess", 1326, severity, "DB Seek Error", 20002, number,
                          text.c_str());
  }

  // The log's content so far.
  std::string log() {
    streamFlush(proc_.files->log);
    return readFile("log.txt");
  }

  ProcObj proc_{};
  OptionsRecord options_{};

 private:
  decltype(currentTime) savedTime_ = currentTime;
  decltype(currentProcessId) savedProcessId_ = currentProcessId;
};

}  // namespace statecut::test
