#pragma once
// The processing object, the message log with its debug trace, and the seed log.

#include "core/base/procobj.h"
#include "core/log/seedlog.h"
#include "core/log/utllgmsg.h"
