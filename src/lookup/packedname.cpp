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
  if (!readable(refStream(proc))) return nullptr;
  unsigned char* bytes = nullptr;
  dbReadRefRBA(tableRba + offset, &bytes, 0, proc);
  return bytes == nullptr ? nullptr : packedName(bytes, length);
}

}  // namespace statecut
