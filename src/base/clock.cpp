#include "base/clock.h"

#include <unistd.h>

namespace statecut {
namespace {

std::time_t systemTime() { return std::time(nullptr); }
std::int32_t systemProcessId() { return static_cast<std::int32_t>(::getpid()); }

}  // namespace

std::time_t (*currentTime)() = systemTime;
std::int32_t (*currentProcessId)() = systemProcessId;

char* formatLocalTime(char* to, std::size_t size, const char* format, std::time_t when) {
  const std::tm* local = std::localtime(&when);
  // The content of the buffer is undefined when strftime returns 0.
  if (local == nullptr || std::strftime(to, size, format, local) == 0) to[0] = '\0';
  return to;
}

}  // namespace statecut
