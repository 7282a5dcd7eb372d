#include "run/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace statecut {
namespace {

std::terminate_handler handlerBefore = nullptr;

// Throwing std::bad_alloc takes memory, too. Where there is none even for that, the library calls
// this with no exception under way, and the run ends with the message and status of a bad_alloc
// that was caught. Any other exception that nobody caught goes to the handler that was there
// before.
[[noreturn]] void endWithoutMemory() {
  if (std::current_exception() != nullptr) handlerBefore();
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
  handlerBefore = std::set_terminate(endWithoutMemory);
}

}  // namespace statecut
