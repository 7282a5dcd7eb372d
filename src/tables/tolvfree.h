#pragma once
// Release of the loaded tables. Each numbered function frees its slots and logs the empty ones.

#include <cstdint>

#include "../base/procobj.h"

namespace statecut {

inline constexpr char kTolvfree[] = "tolvfree";  // source name in log records

extern std::uint32_t referenceCount;  // users of the loaded tables; nothing here raises it

void memoryWarn(const char* name, ProcObj* proc);

using TableRelease = std::int32_t(ProcObj* proc);  // always 0
TableRelease free1, free2, free3, free4, free5, free6, free7, free8, free9, free10, free11, free12,
    free13, free14, free16, free18, freeMilitary, freePBZones;

std::int32_t dbTerminate(ProcObj* proc);  // 0, or -1 if a release function failed (none does)

}  // namespace statecut
