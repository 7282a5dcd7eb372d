#pragma once
// statedb as a function: what its main calls with its arguments, and the exit status.

namespace statecut {

int runStatedb(int argc, char** argv);

}  // namespace statecut
