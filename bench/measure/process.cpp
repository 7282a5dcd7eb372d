#include "measure/process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <stdexcept>

extern char** environ;

namespace statecut::bench {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const Command& command, const std::string& reason) {
  std::string text;
  for (const std::string& word : command.words) text += word + " ";
  throw std::runtime_error(text + "- " + reason);
}

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

struct FileActions {
  posix_spawn_file_actions_t value{};
  FileActions() { posix_spawn_file_actions_init(&value); }
  ~FileActions() { posix_spawn_file_actions_destroy(&value); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  void open(int descriptor, const char* path, int flags) {
    posix_spawn_file_actions_addopen(&value, descriptor, path, flags, 0644);
  }
  void duplicate(int from, int to) { posix_spawn_file_actions_adddup2(&value, from, to); }
};

pid_t start(const Command& command, FileActions& actions) {
  std::vector<char*> words;
  for (const std::string& word : command.words) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  pid_t child = 0;
  const int wrong =
      posix_spawnp(&child, words.front(), &actions.value, nullptr, words.data(), environ);
  if (wrong != 0) fail(command, std::strerror(wrong));
  return child;
}

Usage waitFor(const Command& command, pid_t child, Clock::time_point began) {
  int status = 0;
  rusage used{};
  pid_t ended = 0;
  do ended = wait4(child, &status, 0, &used);
  while (ended == -1 && errno == EINTR);
  if (ended == -1) fail(command, std::strerror(errno));
  Usage usage;
  usage.wall = secondsSince(began);
  usage.cpu = seconds(used.ru_utime) + seconds(used.ru_stime);
  usage.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return usage;
}

struct Pipe {
  int read = -1;
  int write = -1;
  Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error(std::strerror(errno));
    read = ends[0];
    write = ends[1];
  }
  ~Pipe() {
    shut(read);
    shut(write);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  static void shut(int& end) {
    if (end != -1) ::close(end);
    end = -1;
  }
};

// One write of what the pipe takes; closes it behind the last byte.
void feed(Pipe& pipe, std::string_view& input) {
  const ssize_t wrote = ::write(pipe.write, input.data(), input.size());
  if (wrote >= 0) input.remove_prefix(static_cast<std::size_t>(wrote));
  if (input.empty() || (wrote < 0 && errno != EAGAIN && errno != EINTR)) Pipe::shut(pipe.write);
}

// One read; false at the end.
bool drain(const Pipe& pipe, std::string* output) {
  static std::array<char, 1 << 16> buffer;
  const ssize_t got = ::read(pipe.read, buffer.data(), buffer.size());
  if (got < 0) return errno == EINTR;
  if (output != nullptr) output->append(buffer.data(), static_cast<std::size_t>(got));
  return got != 0;
}

void exchange(Pipe& in, Pipe& out, std::string_view input, std::string* output) {
  std::signal(SIGPIPE, SIG_IGN);
  fcntl(in.write, F_SETFL, O_NONBLOCK);
  for (;;) {
    std::array<pollfd, 2> ends = {{{out.read, POLLIN, 0}, {in.write, POLLOUT, 0}}};
    if (poll(ends.data(), in.write == -1 ? 1 : 2, -1) < 0 && errno != EINTR) return;
    if (in.write != -1 && ends[1].revents != 0) feed(in, input);
    if (ends[0].revents != 0 && !drain(out, output)) return;
  }
}

}  // namespace

Usage run(const Command& command) {
  FileActions actions;
  actions.open(STDIN_FILENO, "/dev/null", O_RDONLY);
  actions.open(STDOUT_FILENO, command.out.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
  actions.open(STDERR_FILENO, command.err.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
  const Clock::time_point began = Clock::now();
  const pid_t child = start(command, actions);
  return waitFor(command, child, began);
}

Usage runWell(const Command& command) {
  const Usage usage = run(command);
  if (usage.status != 0) fail(command, "status " + std::to_string(usage.status));
  return usage;
}

Usage runPiped(const Command& command, std::string_view input, std::string* output) {
  Pipe in;
  Pipe out;
  FileActions actions;
  actions.duplicate(in.read, STDIN_FILENO);
  actions.duplicate(out.write, STDOUT_FILENO);
  actions.open(STDERR_FILENO, command.err.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
  const Clock::time_point began = Clock::now();
  const pid_t child = start(command, actions);
  Pipe::shut(in.read);
  Pipe::shut(out.write);
  exchange(in, out, input, output);
  return waitFor(command, child, began);
}

std::string outputOf(const Command& command) {
  std::string text;
  const Usage usage = runPiped(command, {}, &text);
  if (usage.status != 0) fail(command, "status " + std::to_string(usage.status));
  return text;
}

}  // namespace statecut::bench
