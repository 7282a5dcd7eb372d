#include "base/cmdline.h"

namespace statecut {

CmdLine cmdLine{};

}  // namespace statecut
