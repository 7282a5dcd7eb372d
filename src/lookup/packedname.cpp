#include "lookup/packedname.h"

#include "lookup/support.h"

namespace statecut {

const char* packedName(const unsigned char* at, std::int32_t* length) {
  *length = static_cast<signed char>(*at);
  return reinterpret_cast<const char*>(at + 1);
}

const char* packedNameIn(SlotNumber slot, std::uint32_t offset, std::uint32_t bytes,
                         std::int32_t* length) {
  if (!loaded(slot) || offset >= bytes) return nullptr;
  return packedName(refPointers[slot].table + offset, length);
}

const char* packedNameOff(std::uint32_t tableRba, std::uint32_t offset, std::int32_t* length,
                          ProcObj* proc) {
  const std::uint32_t rba = tableRba + offset;
  Stream* file = refStream(proc);
  // The reader below tells nothing of a failure.
  if (!readable(file) || streamSeek(file, rba) != 0) return nullptr;
  unsigned char* bytes = nullptr;
  dbReadRefRBA(rba, &bytes, 0, proc);
  return lost(file) ? nullptr : packedName(bytes, length);
}

}  // namespace statecut
