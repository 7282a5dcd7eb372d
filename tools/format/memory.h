#pragma once
// Memory of a program that does the same many times.

namespace statecut::format {

// What is freed serves the next time instead of going back to the system, which would have to clear
// it again. For programs, once.
void keepFreedMemory();

}  // namespace statecut::format
