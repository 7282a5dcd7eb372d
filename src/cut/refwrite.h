#pragma once
// The tables and control records that a cut writes from memory.

#include <cstdint>

#include "base/procobj.h"
#include "base/stream.h"
#include "dbfiles/controlrec.h"

namespace statecut {

// Sets the state cut flag and time stamp of a control record of either kind.
template <typename ControlRec>
void markStateCut(ControlRec& record) {
  record.set(ControlRec::typeFlags, record.get(ControlRec::typeFlags) | kTypeStateCut);
  record.set(ControlRec::stateCutTimeStamp, stateCutTimeStamp());
}

// Appends the rewritten tables and writes the final control record over the first one. Always 0.
std::int32_t writeRefDb();

// 0 and the bytes written in totalRngBytes, or 1.
std::int32_t writeRngControlRec(Stream* stream);

// Appends to newRefDb and adds the bytes written to totalBytes. 0, or 1 when nothing was written
// because of a null buffer or stream or a stream in error.
std::int32_t writePartition(const void* buffer, std::uint32_t bytes);

}  // namespace statecut
