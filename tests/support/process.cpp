#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <system_error>

namespace statecut::test {
namespace {

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A pipe whose ends close themselves and are not inherited.
struct Pipe {
  std::array<int, 2> ends = {-1, -1};
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) fail("pipe2");
  }
  ~Pipe() {
    close(0);
    close(1);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void close(std::size_t end) {
    if (ends[end] >= 0) ::close(ends[end]);
    ends[end] = -1;
  }
};

[[noreturn]] void becomeProgram(const Command& command, char* const* arguments,
                                char* const* environment, const Pipe& in, const Pipe& out,
                                const Pipe& err) {
  dup2(in.ends[0], STDIN_FILENO);
  dup2(out.ends[1], STDOUT_FILENO);
  dup2(err.ends[1], STDERR_FILENO);
  signal(SIGPIPE, SIG_DFL);
  if (command.folder.empty() || chdir(command.folder.c_str()) == 0)
    execve(arguments[0], arguments, environment);
  _exit(127);
}

std::vector<std::string> mergedEnvironment(const Command& command) {
  std::vector<std::string> merged;
  for (char** each = environ; *each != nullptr; ++each) {
    const std::string entry = *each;
    if (command.environment.count(entry.substr(0, entry.find('='))) == 0) merged.push_back(entry);
  }
  for (const auto& [name, value] : command.environment) merged.push_back(name + "=" + value);
  return merged;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

// Moves what the pipe holds to the text; closes it at its end.
void drain(Pipe& pipe, std::string& text) {
  std::array<char, 65536> buffer{};
  const ssize_t got = read(pipe.ends[0], buffer.data(), buffer.size());
  if (got > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(got));
  } else if (got == 0 || errno != EINTR) {
    pipe.close(0);
  }
}

void feed(Pipe& pipe, const std::string& input, std::size_t& sent) {
  const ssize_t put = write(pipe.ends[1], input.data() + sent, input.size() - sent);
  if (put > 0) sent += static_cast<std::size_t>(put);
  if (sent == input.size() || (put < 0 && errno != EINTR && errno != EAGAIN)) pipe.close(1);
}

// Feeds and reads until both outputs end. False when the time ran out first.
bool converse(const Command& command, Pipe& in, Pipe& out, Pipe& err, ProcessResult& result) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(command.timeoutSeconds);
  std::size_t sent = 0;
  if (command.input.empty()) in.close(1);
  while (out.ends[0] >= 0 || err.ends[0] >= 0) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    std::array<pollfd, 3> polled = {
        {{in.ends[1], POLLOUT, 0}, {out.ends[0], POLLIN, 0}, {err.ends[0], POLLIN, 0}}};
    if (poll(polled.data(), polled.size(), static_cast<int>(left.count())) < 0) {
      if (errno != EINTR) fail("poll");
      continue;
    }
    if (polled[0].revents != 0) feed(in, command.input, sent);
    if (polled[1].revents != 0) drain(out, result.out);
    if (polled[2].revents != 0) drain(err, result.err);
  }
  return true;
}

}  // namespace

ProcessResult runProcess(const Command& command) {
  std::vector<std::string> arguments = {command.program};
  arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
  std::vector<std::string> environment = mergedEnvironment(command);
  const std::vector<char*> argv = pointers(arguments);
  const std::vector<char*> envp = pointers(environment);
  // A program that ends without reading its input must not end the test with it.
  signal(SIGPIPE, SIG_IGN);
  Pipe in;
  Pipe out;
  Pipe err;
  const pid_t child = fork();
  if (child < 0) fail("fork");
  if (child == 0) becomeProgram(command, argv.data(), envp.data(), in, out, err);
  in.close(0);
  out.close(1);
  err.close(1);
  ProcessResult result;
  result.timedOut = !converse(command, in, out, err, result);
  if (result.timedOut) ::kill(child, SIGKILL);
  int status = 0;
  while (waitpid(child, &status, 0) < 0)
    if (errno != EINTR) fail("waitpid");
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  if (WIFEXITED(status)) result.exitStatus = WEXITSTATUS(status);
  return result;
}

}  // namespace statecut::test
