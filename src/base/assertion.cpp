#include "base/assertion.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace statecut {

void assertionFailed(const char* expression, const char* source, std::int32_t line,
                     const char* function) {
  std::fprintf(stderr, "%s: %s:%d: %s: Assertion `%s' failed.\n", program_invocation_short_name,
               source, line, function, expression);
  std::fflush(stderr);
  std::abort();
}

}  // namespace statecut
