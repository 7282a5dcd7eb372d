// A program of the fixed interface: opens a reference database without a session, and calls lookups
// through the members of its processing object: fixed REFERENCE STATE CITY

#include <statecut/files.h>
#include <statecut/lookup.h>
#include <statecut/tables.h>

#include <cstdio>
#include <cstring>
#include <string>

using namespace statecut;

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  ProcObj proc{};
  OptionsRecord options{};
  proc.files = &proc.fileRecord;
  proc.stats = &proc.statistics;
  proc.options = &options;
  pProcObj = &proc;
  proc.files->reference = dbOpenRefDB(pProcObj, argv[1]);
  if (proc.files->reference == nullptr) return 1;
  if (dbReadRefControlRec(proc.files->reference, pProcObj) == nullptr) return 1;

  const auto length = static_cast<std::int32_t>(std::strlen(argv[3]));
  const std::int32_t index = pProcObj->pfnFindCityIndex(argv[2], argv[3], length);
  const CityNameRow* city = pProcObj->pfnGetCityUSPS(index);
  std::printf("%s: %s\n", argv[3], city == nullptr ? "no city" : "a city");

  const std::string key = std::string(argv[2]) + argv[3];
  const auto* bytes = reinterpret_cast<const unsigned char*>(key.data());
  const auto keyLength = static_cast<std::int32_t>(key.size());
  const std::uint32_t onDisk = dbHashFindOff(bytes, keyLength, kCityNames, pProcObj);
  std::printf("by the index: %s\n", onDisk != static_cast<std::uint32_t>(index) ? "another"
                                    : dbHashFind(bytes, keyLength, kCityNames, pProcObj) != onDisk
                                        ? "not in memory"
                                        : "the same");
  std::int32_t firmLength = 0;
  const char* firm = pProcObj->pfnGetFirmName(0, &firmLength, pProcObj);
  const std::int32_t found = pProcObj->pfnFindFirm(firm, firmLength, pProcObj);
  std::printf("firm at %d, %s\n", found, lookupsFailed() ? "failed" : "read");
  std::printf("hash of nothing: %u\n", fnv_32_buf(nullptr, 0, kFnvOffsetBasis));
  referenceCount = 1;
  const std::int32_t status = dbTerminate(pProcObj);
  dbCloseRefDB();
  return status;
}
