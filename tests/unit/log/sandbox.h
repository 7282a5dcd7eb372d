#pragma once
// A temporary working folder, and a child process with redirected standard streams: what the tests
// of the log and of the run driver need to see files, exit paths and both output streams.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "support/files.h"

namespace statecut::test {

// Makes a temporary folder the working folder; removed again with everything in it.
class SandboxTest : public ::testing::Test {
 protected:
  SandboxTest() { std::filesystem::current_path(folder_.path()); }
  ~SandboxTest() override { std::filesystem::current_path(before_); }
  [[nodiscard]] std::string path(const std::string& name) const { return folder_.file(name); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
  TempDir folder_;
};

inline bool fileExists(const std::string& name) { return std::filesystem::exists(name); }

// Empty when there is no such file.
inline std::string readFile(const std::string& name) { return readTextFile(name); }

inline void writeFile(const std::string& name, const std::string& bytes) {
  std::ofstream(name, std::ios::binary) << bytes;
}

struct ChildResult {
  int status;          // exit status, or -1 after a signal
  std::string out;     // standard output
  std::string err;     // standard error
  std::string report;  // what the body returned
};

inline void redirect(int descriptor, const char* name, int flags) {
  const int file = ::open(name, flags, 0600);
  if (file == -1 || ::dup2(file, descriptor) == -1) ::_exit(99);
  ::close(file);
}

// Runs `body` in a child process whose standard input holds `input`. The four files of its streams
// stand in the working folder, so a SandboxTest is needed.
inline ChildResult inChild(const std::string& input, const std::function<std::string()>& body) {
  writeFile(".in", input);
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    redirect(STDIN_FILENO, ".in", O_RDONLY);
    redirect(STDOUT_FILENO, ".out", O_WRONLY | O_CREAT | O_TRUNC);
    redirect(STDERR_FILENO, ".err", O_WRONLY | O_CREAT | O_TRUNC);
    writeFile(".report", body());
    std::fflush(nullptr);
    ::_exit(0);
  }
  int status = 0;
  if (child == -1 || ::waitpid(child, &status, 0) != child) std::abort();
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(".out"), readFile(".err"),
          readFile(".report")};
}

}  // namespace statecut::test
