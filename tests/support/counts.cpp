#include "support/counts.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace statecut::test {

void addCount(const char* name, std::uint64_t count) {
  const char* path = std::getenv("STATECUT_COUNTS");
  if (path == nullptr) return;
  std::ostringstream line;
  line << count << ' ' << name << '\n';
  std::ofstream(path, std::ios::app)
      << line.str() << std::flush;  // one write: tests run in parallel
}

bool longRun() { return std::getenv("STATECUT_LONG") != nullptr; }

std::uint64_t envNumber(const char* variable, std::uint64_t fallback) {
  const char* text = std::getenv(variable);
  return text == nullptr ? fallback : std::strtoull(text, nullptr, 10);
}

}  // namespace statecut::test
