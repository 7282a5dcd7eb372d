// statedb: builds, describes, verifies and queries database pairs.

#include <csignal>

#include "commands/statedb.h"
#include "run/process.h"

int main(int argc, char** argv) {
  statecut::guardStandardDescriptors();
  (void)std::signal(SIGXFSZ, SIG_IGN);  // a file at its size limit is a write error
  return statecut::runStatedb(argc, argv);
}
