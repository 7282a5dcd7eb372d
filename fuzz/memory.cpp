// Loads of every table and the lookups in memory, or as each first call decides, on a damaged pair;
// and the lookups of a Database.

#include "basepair.h"
#include "calls.h"
#include "databasecalls.h"
#include "lookup/tablesets.h"
#include "tables/dbapi.h"

using namespace statecut;
using namespace statecut::fuzz;

namespace {

// Settings, a byte of bits.
constexpr std::uint8_t kFirstMode = 1;
constexpr std::uint8_t kTrace = 2;
constexpr std::uint8_t kAllSets = 4;
constexpr std::uint8_t kWithRange = 8;
constexpr std::uint8_t kOtherReaders = 16;
constexpr std::uint8_t kLargeTables = 0xE0;  // all of them
constexpr std::uint8_t kDatabase = 0x20;     // without the highest: no session
constexpr std::uint8_t kHighest = 0x80;

// The readers that no lookup needs. Each fills slots of its own.
constexpr TableReader* kOtherTables[] = {
    dbReadPatternTables, dbReadCityByState, dbReadUniqueZips,    dbReadCountyData, dbReadURBNames,
    dbReadURBVariations, dbReadSCFTable,    dbReadMilitaryTable, dbReadPOBZone};

void readOthers(Session& session) {
  Stream* const file = session.proc()->files->reference;
  for (TableReader* reader : kOtherTables) {
    if (streamError(file)) return;
    reader(file, &session.ref(), session.proc());
  }
  unsigned char* bytes = nullptr;
  if (!streamError(file)) dbReadRefRBA(844, &bytes, 100, session.proc());
  (void)session.prepare(kZipBytesSet);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quietProcess();
  Input input(data, size);
  DamagedPair pair(input);
  const std::uint8_t bits = input.u8();
  DiskLimits limits;
  // Tables of more than this are refused as on a small machine: that they load is tested elsewhere.
  if ((bits & kLargeTables) == kLargeTables) limits.blockBytes = std::uint64_t{64} << 20;
  diskStart(limits);
  pair.mount();
  diskSink(kLogPath);
  if ((bits & (kHighest | kDatabase)) == kDatabase) {
    askDatabase(pair, input);
    expectNothingLeft("a closed database");
    return 0;
  }

  SessionSettings settings;
  settings.ref = kRefPath;
  if ((bits & kWithRange) != 0) settings.rng = kRngPath;
  settings.log = kLogPath;
  settings.mode = (bits & kFirstMode) != 0 ? LookupMode::kFirst : LookupMode::kIn;
  settings.trace = (bits & kTrace) != 0;
  settings.sets = (bits & kAllSets) != 0 ? kLookupSets : 0;
  {
    Session session;
    std::string error;
    if (session.open(settings, error)) {
      if ((bits & kOtherReaders) != 0) readOthers(session);
      constexpr int kMostCalls = 64;
      for (int calls = 0; calls < kMostCalls && !input.empty(); ++calls) makeCall(session, input);
    }
  }
  expectNothingLeft("a closed session");
  return 0;
}
