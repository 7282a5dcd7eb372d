#include "run/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace statecut {
namespace {

std::terminate_handler endOfOthers = nullptr;

// When memory is so short that the exception that tells of it finds none, nothing is thrown and
// nothing can be caught: the run ends here, as it does where the exception is caught.
[[noreturn]] void endWithoutMemory() {
  if (std::current_exception() != nullptr) endOfOthers();
  std::fputs("statecut: out of memory\n", stderr);
  (void)std::fflush(stdout);
  std::_Exit(255);
}

}  // namespace

void guardStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) != -1) continue;
    // The lowest free descriptor is this one. Without a null device the root folder holds the
    // place: it can be opened everywhere and takes no byte.
    if (::open("/dev/null", O_RDWR) == -1) (void)::open("/", O_RDONLY | O_DIRECTORY);
  }
}

void prepareProcess() {
  guardStandardDescriptors();
  // A file at its size limit and a pipe that nobody reads are write errors, reported as such.
  (void)std::signal(SIGXFSZ, SIG_IGN);
  (void)std::signal(SIGPIPE, SIG_IGN);
  endOfOthers = std::set_terminate(endWithoutMemory);
}

}  // namespace statecut
