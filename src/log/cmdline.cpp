#include "log/cmdline.h"

namespace statecut {

CmdLine cmdLine{};

}  // namespace statecut
