// Table readers and the logs, whose Nth call of a kind fails.

#include <unistd.h>

#include <filesystem>

#include "dbfiles/apiutil.h"
#include "dbfiles/memory.h"
#include "faults.h"
#include "hash/namehash.h"
#include "log/clock.h"
#include "log/procobj.h"
#include "log/seedlog.h"
#include "log/utllgmsg.h"
#include "tables/dbapi.h"
#include "tables/refpointers.h"

namespace statecut::test {
namespace {

struct NamedReader {
  const char* name;
  TableReader* read;
};

constexpr NamedReader kReaders[] = {{"dbReadPatternTables", dbReadPatternTables},
                                    {"dbReadCityData", dbReadCityData},
                                    {"dbReadCityNames", dbReadCityNames},
                                    {"dbReadCityByState", dbReadCityByState},
                                    {"dbReadCityPhonetics", dbReadCityPhonetics},
                                    {"dbReadZipData", dbReadZipData},
                                    {"dbReadUniqueZips", dbReadUniqueZips},
                                    {"dbReadCountyData", dbReadCountyData},
                                    {"dbReadURBNames", dbReadURBNames},
                                    {"dbReadURBMultiZip", dbReadURBMultiZip},
                                    {"dbReadURBVariations", dbReadURBVariations},
                                    {"dbReadStreetNames", dbReadStreetNames},
                                    {"dbReadStreetPhonetics", dbReadStreetPhonetics},
                                    {"dbReadStreetStndrdzd", dbReadStreetStndrdzd},
                                    {"dbReadFirmNames", dbReadFirmNames},
                                    {"dbReadGenDelivery", dbReadGenDelivery},
                                    {"dbReadSCFTable", dbReadSCFTable},
                                    {"dbReadMultiZipTable", dbReadMultiZipTable},
                                    {"dbReadBytesTables", dbReadBytesTables},
                                    {"dbReadHashedNames", dbReadHashedNames},
                                    {"dbReadMilitaryTable", dbReadMilitaryTable},
                                    {"dbReadPOBZone", dbReadPOBZone},
                                    {"dbReadStateCutRefDb", dbReadStateCutRefDb}};

constexpr std::int32_t kNotOpened = -1000;

struct Load {
  std::int32_t code = kNotOpened;
  bool reported = false;  // an error was remembered
  std::vector<FileBytes> tables;
};

bool inPlace(std::size_t slot) {
  return slot == kSlotHashMask || slot == kSlotMilitaryHeader || slot == kSlotPobZoneCount;
}

// The tables with their zero tails.
std::vector<FileBytes> takeTables() {
  std::vector<FileBytes> tables;
  for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
    unsigned char* table = refPointers[slot].table;
    if (!inPlace(slot) && slot != kSlotMilitarySecond && table != nullptr) {
      tables.emplace_back(table, table + bytesOfBlock(table));
      freeTable(table);
    }
    refPointers[slot] = {};
  }
  return tables;
}

class LoggedRun {
 public:
  LoggedRun() {
    proc_.files = &proc_.fileRecord;
    proc_.stats = &proc_.statistics;
    proc_.options = &options_;
    pProcObj = &proc_;
  }
  ~LoggedRun() { pProcObj = nullptr; }
  LoggedRun(const LoggedRun&) = delete;
  LoggedRun& operator=(const LoggedRun&) = delete;

  Load load(TableReader* read, const std::string& path) {
    Load load;
    Stream* const stream = dbOpenRefDB(&proc_, path.c_str());
    if (stream != nullptr && dbReadRefControlRec(stream, &proc_) != nullptr && !streamError(stream))
      load.code = read(stream, proc_.refControlRec, &proc_);
    load.reported = proc_.firstErrorMessage != 0;
    freeTable(proc_.refControlRec);
    streamClose(stream);
    return load;
  }

  ProcObj& proc() { return proc_; }

 private:
  ProcObj proc_{};
  OptionsRecord options_{};
};

class LoadFaults : public testing::TestWithParam<FaultKind> {
 protected:
  LoadFaults() : pair_(longRun() ? tinyPair() : microPair()) {
    writeWholeFile(folder_.file("city.dir"), pair_.ref);
  }

  Load load(TableReader* read, const FaultPlan& plan) const {
    const std::string path = folder_.file("city.dir");
    armFaults(plan);
    Load load = LoggedRun().load(read, path);
    disarmFaults();
    load.tables = takeTables();
    return load;
  }

  TempDir folder_;
  const SmallPair& pair_;
};

// A read that fails counts as a complete one in the result; that is meant, the error is reported.
TEST_P(LoadFaults, EveryReaderLoadsItsTablesOrReportsAnError) {
  for (const NamedReader& reader : kReaders) {
    SCOPED_TRACE(reader.name);
    const Load right = load(reader.read, {});
    ASSERT_EQ(right.code, 0);
    ASSERT_FALSE(right.tables.empty());
    forEachFault(GetParam(), [&](const FaultPlan& plan) {
      const Load got = load(reader.read, plan);
      if (isHarmless(plan)) {
        EXPECT_EQ(got.code, 0);
      }
      EXPECT_TRUE(got.code == 0 || got.code == kNotOpened || (got.code <= -1 && got.code >= -20))
          << got.code;
      if (got.code == 0 && !got.reported) {
        EXPECT_TRUE(got.tables == right.tables) << "wrong tables, unsaid";
      }
      if (plan.kind == FaultKind::kAllocate && faultsFired() != 0) {
        EXPECT_NE(got.code, 0);
      }
    });
    if (HasFailure()) return;
  }
  EXPECT_EQ(readWholeFile(folder_.file("city.dir")), pair_.ref);
}

INSTANTIATE_TEST_SUITE_P(Kinds, LoadFaults,
                         testing::Values(FaultKind::kOpen, FaultKind::kSeek, FaultKind::kRead,
                                         FaultKind::kClose, FaultKind::kAllocate, FaultKind::kNew),
                         [](const auto& info) { return kindName(info.param); });

class LogFaults : public testing::TestWithParam<FaultKind> {
 protected:
  LogFaults() : home_(std::filesystem::current_path()) {
    currentTime = [] { return std::time_t{1767225600}; };
    currentProcessId = [] { return std::int32_t{4711}; };
    std::filesystem::current_path(folder_.path());
  }
  ~LogFaults() override { std::filesystem::current_path(home_); }

  // A log with records short and long, through the buffer and past it. 0 or the first failure.
  std::int32_t writeLog(const FaultPlan& plan) const {
    ::unlink("log");
    const std::string longText(3000, 'x');
    LoggedRun run;
    ProcObj& proc = run.proc();
    armFaults(plan);
    std::int32_t first = 0;
    const auto note = [&first](std::int32_t result) {
      if (first == 0 && result < 0) first = result;
    };
    note(utlInitLog(kDebug, "log", &proc));
    for (int i = 0; i < 30; ++i) {
      note(utlWriteLogMsg(&proc, "test", i, kInfo, "Title", 0, kMsgText, longText.c_str()));
      note(utlWriteText("a line of text\n", proc.files->log, proc.topOfForm));
    }
    utlLogMsgClose(&proc.files->log);
    disarmFaults();
    return first;
  }

  void writeSeedLog(const FaultPlan& plan) const {
    ::unlink("seedlog.txt");
    LoggedRun run;
    run.proc().seedLogSwitches[0] = 1;
    armFaults(plan);
    for (int batch = 0; batch < 2; ++batch) {
      for (int i = 0; i < 3; ++i) utlLogSeedDetail(&run.proc(), "detail", i == 0 ? "LD" : "DD");
      utlLogSeedDetail(&run.proc(), "header", "DH");
      utlLogSeedDetail(&run.proc(), "header", "LH");
    }
    disarmFaults();
    // What a failed open left waiting goes out with the next headers.
    for (const char* header : {"DH", "LH"}) utlLogSeedDetail(&run.proc(), "header", header);
    EXPECT_EQ(DPVRecords, nullptr);
    EXPECT_EQ(LACSRecords, nullptr);
  }

  TempDir folder_;
  std::filesystem::path home_;
};

TEST_P(LogFaults, LogHoldsTheRightBytesUpToSomePlace) {
  ASSERT_EQ(writeLog({}), 0);
  const std::string right = readTextFile("log");
  ASSERT_GT(right.size(), 90000U);
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    const std::int32_t result = writeLog(plan);
    EXPECT_TRUE(result == 0 || result == -1 || result == kLogOpenFailed ||
                result == kLogWriteFailed)
        << result;
    const std::string log = readTextFile("log");
    EXPECT_TRUE(right.starts_with(log)) << "a log of other bytes";
    if (isHarmless(plan)) {
      EXPECT_EQ(log.size(), right.size());
      EXPECT_EQ(result, 0);
    }
  });
}

TEST_P(LogFaults, SeedLogKeepsNothingAndCrashesNowhere) {
  writeSeedLog({});
  const std::string right = readTextFile("seedlog.txt");
  ASSERT_EQ(right.size() % 181, 0U);
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    writeSeedLog(plan);
    if (isHarmless(plan)) {
      EXPECT_EQ(readTextFile("seedlog.txt"), right);
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Kinds, LogFaults,
                         testing::Values(FaultKind::kOpen, FaultKind::kSeek, FaultKind::kWrite,
                                         FaultKind::kFlush, FaultKind::kClose, FaultKind::kNew),
                         [](const auto& info) { return kindName(info.param); });

}  // namespace
}  // namespace statecut::test
