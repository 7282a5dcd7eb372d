#include "base/procobj.h"

#include <cstdlib>

#include "base/cmdline.h"

namespace statecut {

CmdLine cmdLine{};
ProcObj* pProcObj = nullptr;
std::time_t dateAndTime = 0;

std::uint32_t stateCutTimeStamp() {
  const auto clock = static_cast<std::uint32_t>(dateAndTime);
  const char* epoch = std::getenv("SOURCE_DATE_EPOCH");
  if (epoch == nullptr || *epoch == '\0') return clock;
  std::uint32_t stamp = 0;
  for (; *epoch != '\0'; ++epoch) {
    if (*epoch < '0' || *epoch > '9') return clock;
    stamp = stamp * 10U + static_cast<std::uint32_t>(*epoch - '0');  // modulo 2^32
  }
  return stamp;
}

}  // namespace statecut
