#include "cuts/children.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>

namespace statecut::cuts {

namespace {

constexpr int kNotStarted = 127;

// A file in memory, which takes any amount and is read when the child has ended.
Descriptor memoryFile(const char* name) { return Descriptor(::memfd_create(name, MFD_CLOEXEC)); }

void becomeChild(pid_t parent) {
  (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(kNotStarted);  // it died in between
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) (void)std::signal(signal, SIG_IGN);
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

Ended endedOf(int state) {
  Ended ended;
  ended.ended = true;
  if (WIFSIGNALED(state)) ended.signal = WTERMSIG(state);
  if (WIFEXITED(state)) ended.status = WEXITSTATUS(state);
  return ended;
}

Ended wait(const Child& child, int options) {
  if (child.pid < 0) return {true, 0, kNotStarted};
  int state = 0;
  pid_t got = 0;
  do got = ::waitpid(child.pid, &state, options);
  while (got < 0 && errno == EINTR);
  return got == child.pid ? endedOf(state) : Ended{};
}

}  // namespace

std::string findProgram(const std::string& name) {
  std::error_code ignored;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ignored);
  const auto runs = [](const std::string& path) { return ::access(path.c_str(), X_OK) == 0; };
  if (std::string beside = (self.parent_path() / name).string(); !self.empty() && runs(beside))
    return beside;
  const char* path = std::getenv("PATH");
  std::string folders = path == nullptr ? "" : path;
  folders += ':';
  for (std::size_t at = 0, end; (end = folders.find(':', at)) != std::string::npos; at = end + 1) {
    const std::string folder = folders.substr(at, end - at);
    std::string one =
        std::filesystem::absolute((folder.empty() ? "." : folder) + "/" + name, ignored).string();
    if (runs(one)) return one;
  }
  return {};
}

std::string Child::written() const {
  std::string text;
  std::array<char, 4096> buffer;
  off_t at = 0;
  for (;;) {
    const ssize_t got = ::pread(output.get(), buffer.data(), buffer.size(), at);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(got));
    at += got;
  }
}

Child startProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& folder, const std::string& input) {
  Child child;
  const Descriptor in = memoryFile("input");
  child.output = memoryFile("output");
  const Descriptor null(::open("/dev/null", O_RDWR | O_CLOEXEC));
  if (!in || !child.output || !null || !writeAll(in.get(), input) ||
      ::lseek(in.get(), 0, SEEK_SET) != 0)
    return child;
  std::vector<char*> words = {const_cast<char*>(program.c_str())};
  for (const std::string& one : arguments) words.push_back(const_cast<char*>(one.c_str()));
  words.push_back(nullptr);
  const pid_t parent = ::getpid();
  child.pid = ::fork();
  if (child.pid != 0) return child;
  becomeChild(parent);
  if (::dup2(in.get(), STDIN_FILENO) < 0 || ::dup2(null.get(), STDOUT_FILENO) < 0 ||
      ::dup2(child.output.get(), STDERR_FILENO) < 0 || ::chdir(folder.c_str()) != 0)
    ::_exit(kNotStarted);
  ::execv(words[0], words.data());
  std::_Exit(kNotStarted);
}

Child startFunction(const std::function<std::string()>& function) {
  Child child;
  child.output = memoryFile("result");
  if (!child.output) return child;
  const pid_t parent = ::getpid();
  child.pid = ::fork();
  if (child.pid != 0) return child;
  becomeChild(parent);
  try {
    ::_exit(writeAll(child.output.get(), function()) ? 0 : 1);
  } catch (const std::exception& error) {
    (void)writeAll(child.output.get(), error.what());
    ::_exit(1);
  }
}

Ended poll(const Child& child) { return wait(child, WNOHANG); }

Ended waitFor(const Child& child) { return wait(child, 0); }

void killChild(const Child& child) {
  if (child.pid < 0) return;
  (void)::kill(child.pid, SIGKILL);
  (void)waitFor(child);
}

std::string describe(const Ended& ended) {
  if (ended.signal == 0) return "ended with status " + std::to_string(ended.status);
  return "ended by signal " + std::to_string(ended.signal) + " (" + ::strsignal(ended.signal) + ")";
}

}  // namespace statecut::cuts
