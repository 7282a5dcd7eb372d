#pragma once
// The usage text.

namespace statecut {

void printUsage(const char* programName);  // to standard error

}  // namespace statecut
