#pragma once
// Where the ZIP codes of the national profile are.

#include <string>

namespace statecut {

// The file in the folder that STATECUT_DATA names, or else beside the running program, or else in
// the data folder that was installed with it. Empty, with a reason, when there is none.
[[nodiscard]] std::string findZipsFile(std::string& error);

}  // namespace statecut
