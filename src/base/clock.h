#pragma once
// The one place that asks for the time and the process id, so that tests can fix both.

#include <cstddef>
#include <cstdint>
#include <ctime>

namespace statecut {

extern std::time_t (*currentTime)();
extern std::int32_t (*currentProcessId)();

// `when` in local time by a strftime format, terminated; empty when it cannot be told or does not
// fit. Returns `to`.
char* formatLocalTime(char* to, std::size_t size, const char* format, std::time_t when);

}  // namespace statecut
