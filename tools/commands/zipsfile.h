#pragma once
// Where the ZIP codes of the national profile are.

#include <string>

namespace statecut {

// The file that was installed with the running program, else that of the source tree. Empty, with a
// reason, when neither is there.
[[nodiscard]] std::string findZipsFile(std::string& error);

}  // namespace statecut
