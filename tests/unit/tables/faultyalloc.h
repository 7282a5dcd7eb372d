#pragma once
// This test program brings its own allocTable, which can be told to fail.

namespace statecut::test {

// The allocation after `successes` more fails, once; those behind it succeed again.
void failAllocationAfter(int successes);

}  // namespace statecut::test
