#include "support/childcut.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "run/rundriver.h"

namespace statecut::test {

namespace {

constexpr unsigned kLongest = 60;  // seconds

[[noreturn]] void become(const TempDir& folder, int level, const std::function<void()>& arm) {
  for (const auto& [name, target] :
       {std::pair("out", STDOUT_FILENO), std::pair("err", STDERR_FILENO)}) {
    const int file = ::open(folder.file(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    ::dup2(file, target);
  }
  ::setenv("SOURCE_DATE_EPOCH", "1767225600", 1);
  ::alarm(kLongest);
  std::vector<std::string> words = {"statecut",
                                    "-s" + folder.file("states"),
                                    "-l" + folder.file("log"),
                                    "-f" + folder.file("city.dir"),
                                    "-g" + folder.file("zip4us.dir"),
                                    "-o" + folder.file("city.sc"),
                                    "-z" + folder.file("zip4us.sc"),
                                    "-v" + std::to_string(level)};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  arm();
  std::exit(runMain(static_cast<int>(words.size()), arguments.data()) & 0xFF);
}

}  // namespace

ChildCut runChildCut(const TempDir& folder, int level, const std::function<void()>& arm) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) become(folder, level, arm);
  int status = 0;
  ::waitpid(child, &status, 0);
  ChildCut ended;
  if (WIFSIGNALED(status)) ended.signal = WTERMSIG(status);
  if (WIFEXITED(status)) ended.status = WEXITSTATUS(status);
  return ended;
}

void removeOutputs(const TempDir& folder) {
  for (const char* name : {"log", "city.sc", "zip4us.sc"}) ::unlink(folder.file(name).c_str());
}

}  // namespace statecut::test
