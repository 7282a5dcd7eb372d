#pragma once
// Guards against programming errors, active in every build type.

#include <cstdint>

namespace statecut {

// Prints the standard assertion text, naming a source file of the system, and aborts.
[[noreturn]] void assertionFailed(const char* expression, const char* source, std::int32_t line,
                                  const char* function);

#define STATECUT_ASSERT(condition, expression, source, function) \
  ((condition) ? static_cast<void>(0)                            \
               : ::statecut::assertionFailed(expression, source, __LINE__, function))

}  // namespace statecut
