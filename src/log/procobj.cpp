#include "log/procobj.h"

namespace statecut {

ProcObj* pProcObj = nullptr;
std::time_t dateAndTime = 0;

}  // namespace statecut
