#pragma once
// The settings record: filled by the run driver's command line, read by the layers below it.

#include <cstdint>

namespace statecut {

inline constexpr std::int32_t kMaxStates = 66;
inline constexpr std::int32_t kMaxNameLength = 1024;  // of a file name, in bytes

struct CmdLine {
  std::int32_t logLevel;  // 0 to 5
  std::int32_t displayInfo;
  std::int32_t stateCount;
  std::int32_t prompt;
  // Owned heap copies, released by freeCmdLine; null when not given and before the defaults.
  char* logFile;
  char* configFile;
  char* refDb;
  char* rangeDb;
  char* stateFile;  // null = standard input
  char* refOut;
  char* rangeOut;
  char states[kMaxStates][3];  // upper case, terminated, sorted
  char topOfForm[2];
};

extern CmdLine cmdLine;

}  // namespace statecut
