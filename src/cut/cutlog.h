#pragma once
// The forms of record that the cut writes to the log.

#include <cstdint>

#include "cut/logsites.h"

namespace statecut {

// "<name> - required - <size> bytes"; the size is shown as a signed number of its low 32 bits.
void logRequired(LogSite site, const char* title, const char* name, std::uint64_t bytes);
void logNoMemory(LogSite site, const char* name);
void logText(LogSite site, std::int32_t severity, const char* title, const char* text);
void logNumber(LogSite site, const char* title, const char* text, std::uint32_t number);

// An ERR record "path;text".
void logPathError(LogSite site, const char* title, std::uint32_t reason, const char* path,
                  const char* text);

}  // namespace statecut
