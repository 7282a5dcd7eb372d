#pragma once
// The settings of a run: from the command line into cmdLine, into the log, and released; the usage.

#include <cstdint>

#include "base/procobj.h"

namespace statecut {

// Fills cmdLine, whose strings were freed before, and reads the state list unless the states are
// only to be listed. 0 = go on, 1 = show the usage, negative = a name too long or no state file.
[[nodiscard]] std::int32_t parseCmdLine(int argc, char** argv);

// Writes the settings and the state list as text lines; a null stream is standard output.
void logCmdLine(Stream* log);

void printUsage(const char* programName);  // to standard error

void freeCmdLine();  // releases the strings of cmdLine and sets them to null

}  // namespace statecut
