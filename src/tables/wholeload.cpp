// The tables that a cut always needs, and short reads for the lookups that work from the file.
#include "dbfiles/apiutil.h"
#include "log/utllgmsg.h"
#include "tables/dbapi.h"

namespace statecut {

namespace {

constexpr LogSource kDbapi{"dbapi", 3000};

}  // namespace

std::int32_t dbReadStateCutRefDb(Stream* file, const RefControlRec* controlRecord, ProcObj* proc) {
  constexpr TableReader* kReaders[] = {dbReadCityData, dbReadCityNames,   dbReadCityPhonetics,
                                       dbReadZipData,  dbReadCityByState, dbReadBytesTables};
  traceEntering(proc, kDbapi, __LINE__, "dbReadStateCutRefDb");
  for (TableReader* const reader : kReaders) {
    if (reader(file, controlRecord, proc) != 0) return -1;
  }
  traceLeaving(proc, kDbapi, __LINE__, "dbReadStateCutRefDb");
  return 0;
}

void dbReadRefRBA(std::uint32_t rba, unsigned char** out, std::int32_t length, ProcObj* proc) {
  constexpr std::int32_t kMaxLength = 100;
  static unsigned char buffer[kMaxLength];
  traceEntering(proc, kDbapi, __LINE__, "dbReadRefRBA");
  // Deliberate: a negative length passes unchanged and reads nothing.
  if (length == 0 || length > kMaxLength) length = kMaxLength;
  if (proc != nullptr && proc->files != nullptr)
    dbReadFile(proc->files->reference, rba, length, buffer, proc);
  if (out != nullptr) *out = buffer;
  traceLeaving(proc, kDbapi, __LINE__, "dbReadRefRBA");
}

}  // namespace statecut
