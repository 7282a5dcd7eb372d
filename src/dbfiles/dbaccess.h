#pragma once
// The cut program's file access: block reads and writes by RBA, opening and checking a database.

#include <cstdint>

#include "base/procobj.h"
#include "base/stream.h"
#include "dbfiles/controlrec.h"

namespace statecut {

inline constexpr char kDbaccess[] = "dbaccess";  // source name in log records

// Reads `count` bytes at `rba`. The requested count, also when the file ended early (the rest of
// the buffer stays as it was); -1 when the seek failed or the count is above 2147483647.
std::int32_t readFile(Stream* fp, std::uint32_t rba, std::uint32_t count, void* buffer,
                      ProcObj* proc);

// Appends `count` bytes. The bytes written (logged when short), or -1 for a null stream or
// buffer or a stream in error.
std::int32_t writeFile(Stream* fp, std::uint32_t count, const void* buffer, ProcObj* proc);

// As streamAppend and streamFlush (null: 0); a flush that fails is logged as a failed write of what
// the buffer held.
std::size_t appendFile(Stream* to, Stream* from, std::uint64_t rba, std::uint64_t count,
                       Pages pages, ProcObj* proc);
int flushFile(Stream* fp, ProcObj* proc);

Stream* openWriteFile(ProcObj* proc, const char* path);

// Statuses of opening a database.
inline constexpr std::int32_t kDbWrongType = -1;
inline constexpr std::int32_t kRefDbNotOpened = -10;
inline constexpr std::int32_t kRangeDbNotOpened = -11;
inline constexpr std::int32_t kControlRecNotRead = -12;
inline constexpr std::int32_t kPlatformRefused = -14;

// Open the database named in cmdLine into pProcObj's file record, read, check and dump its
// control record. 0 or a status above. Nothing opened is closed on failure.
std::int32_t openRefDb();
std::int32_t openRangeDb();
std::int32_t checkPlatform(std::uint8_t endianType, std::uint8_t characterType, const char* name);

// A newly allocated control record, or null (logged). The caller owns it; the reference one is
// also stored in proc. Release with freeTable.
RefControlRec* ReadRefControlRec(Stream* fp, ProcObj* proc);
RngControlRec* ReadRangeControlRec(Stream* fp, ProcObj* proc);

}  // namespace statecut
