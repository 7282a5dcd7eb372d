#pragma once
// What the long suites did, in numbers: lines "COUNT NAME" in the file that STATECUT_COUNTS names,
// summed by name at the end of a run.

#include <cstdint>

namespace statecut::test {

void addCount(const char* name, std::uint64_t count);  // nothing when the variable is not set

[[nodiscard]] bool longRun();  // STATECUT_LONG is set

// The value of a variable as a number, `fallback` when it is not set.
[[nodiscard]] std::uint64_t envNumber(const char* variable, std::uint64_t fallback);

}  // namespace statecut::test
