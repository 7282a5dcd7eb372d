#include "run/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace statecut {

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
}

}  // namespace statecut
