#pragma once
// The settings of a cut: filled by run/settings.h and run/statelist.h from the command line and the
// state list, read by run/, the cut and the opening of its databases. The library has its own.

#include <cstdint>

namespace statecut {

inline constexpr std::int32_t kMaxStates = 66;
inline constexpr std::int32_t kMaxNameLength = 1024;  // of a file name, in bytes

struct CmdLine {
  std::int32_t logLevel;     // 0 to 5; read when the log opens
  std::int32_t displayInfo;  // 1: the states are only listed
  std::int32_t stateCount;   // of `states`; filled by the state list, read by the selection
  std::int32_t prompt;       // 1: the run ends by waiting for a key
  // Owned heap copies, released by freeCmdLine; null when not given and before the defaults.
  char* logFile;
  char* configFile;  // read by nothing
  char* refDb;       // read by openRefDb
  char* rangeDb;     // read by openRangeDb
  char* stateFile;   // null = standard input
  char* refOut;      // this and the next: read by the cut when it creates its outputs
  char* rangeOut;
  char states[kMaxStates][3];  // upper case, terminated, sorted; the selection takes them in order
  char topOfForm[2];           // set when the run starts, handed to the log, read by nothing
};

extern CmdLine cmdLine;

}  // namespace statecut
