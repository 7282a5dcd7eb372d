// Table readers and the logs, whose Nth call of a kind fails.

#include <unistd.h>

#include <filesystem>

#include "base/clock.h"
#include "base/memory.h"
#include "base/procobj.h"
#include "base/stream.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/controlrec.h"
#include "dbfiles/dbaccess.h"
#include "faults.h"
#include "hash/namehash.h"
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
  bool shrank = false;    // the file ended before its end
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
    load.shrank = stream != nullptr && streamShrank(stream);
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

bool failsReads(const FaultPlan& plan) {
  return plan.kind == FaultKind::kRead && !isHarmless(plan);
}

// What came is right, and what did not come is zero. A table whose count was not read is empty.
bool isRightAsFarAsRead(const FileBytes& got, const FileBytes& right) {
  if (got.size() > right.size()) return false;
  const auto differs = std::mismatch(got.begin(), got.end(), right.begin()).first;
  return std::all_of(differs, got.end(), [](auto byte) { return byte == 0; });
}

// Deliberate: where the file ends early a read counts as complete, what it should have brought
// stays zero, and the stream tells.
void expectSound(const FaultPlan& plan, const Load& got, const Load& right) {
  EXPECT_TRUE(got.code == 0 || got.code == kNotOpened || (got.code <= -1 && got.code >= -20))
      << got.code;
  if (isHarmless(plan) || faultsFired() == 0) {
    EXPECT_EQ(got.code, 0);
    EXPECT_FALSE(got.reported || got.shrank);
    EXPECT_TRUE(got.tables == right.tables);
  }
  if (plan.kind == FaultKind::kAllocate && faultsFired() != 0) {
    EXPECT_NE(got.code, 0);
  }
  if (got.code != 0) return;
  EXPECT_FALSE(got.reported);
  if (got.tables == right.tables) return;
  EXPECT_TRUE(failsReads(plan) && got.shrank) << "wrong tables, unsaid";
  ASSERT_EQ(got.tables.size(), right.tables.size());
  for (std::size_t i = 0; i < got.tables.size(); ++i)
    EXPECT_TRUE(isRightAsFarAsRead(got.tables[i], right.tables[i])) << "table " << i;
}

TEST_P(LoadFaults, EveryReaderLoadsItsTablesOrReportsAnError) {
  for (const NamedReader& reader : kReaders) {
    SCOPED_TRACE(reader.name);
    const Load right = load(reader.read, {});
    ASSERT_EQ(right.code, 0);
    ASSERT_FALSE(right.reported || right.shrank);
    ASSERT_FALSE(right.tables.empty());
    forEachFault(GetParam(),
                 [&](const FaultPlan& plan) { expectSound(plan, load(reader.read, plan), right); });
    if (HasFailure()) return;
  }
  EXPECT_EQ(readWholeFile(folder_.file("city.dir")), pair_.ref);
}

INSTANTIATE_TEST_SUITE_P(Kinds, LoadFaults,
                         testing::Values(FaultKind::kOpen, FaultKind::kSeek, FaultKind::kRead,
                                         FaultKind::kClose, FaultKind::kAllocate, FaultKind::kNew),
                         [](const auto& info) { return kindName(info.param); });

const std::string kLongest = std::string(70000, 'y') + '\n';
constexpr std::size_t kSeedLineBytes = 181;

class LogFaults : public testing::TestWithParam<FaultKind> {
 protected:
  LogFaults() : home_(std::filesystem::current_path()) {
    currentTime = [] { return std::time_t{1767225600}; };
    currentProcessId = [] { return std::int32_t{4711}; };
    std::filesystem::current_path(folder_.path());
  }
  ~LogFaults() override { std::filesystem::current_path(home_); }

  // A log with records short and long, through the buffer, and a text that goes past it. 0 or the
  // first failure.
  std::int32_t writeLog(const FaultPlan& plan) const {
    ::unlink("log");
    const std::string longText(3000, 'x');
    std::array<std::string, 30> lines;
    for (std::size_t i = 0; i < lines.size(); ++i) lines[i] = "line " + std::to_string(i) + '\n';
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
      if (proc.files->log == nullptr) continue;  // text would go to standard output
      if (i == 15) note(utlWriteText(kLongest.c_str(), proc.files->log, proc.topOfForm));
      note(utlWriteText(lines[static_cast<std::size_t>(i)].c_str(), proc.files->log,
                        proc.topOfForm));
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
    const auto record = [&](int number, const char* type) {
      char text[kSeedRecordSize] = {};
      std::snprintf(text, sizeof text, "behind the prefix: %s %d", type, number);
      utlLogSeedDetail(&run.proc(), text, type);
    };
    for (int batch = 0; batch < 2; ++batch) {
      for (int i = 0; i < 3; ++i) record(batch * 3 + i, i == 0 ? "LD" : "DD");
      for (const char* header : {"DH", "LH"}) record(batch, header);
    }
    disarmFaults();
    // What a failed open left waiting goes out with the next headers.
    for (const char* header : {"DH", "LH"}) record(2, header);
    EXPECT_EQ(DPVRecords, nullptr);
    EXPECT_EQ(LACSRecords, nullptr);
  }

  TempDir folder_;
  std::filesystem::path home_;
};

bool isForGood(const FaultPlan& plan) {
  return plan.mode == FaultMode::kForGood || plan.mode == FaultMode::kNothingForGood;
}

TEST_P(LogFaults, LogLosesOnlyWholeRecordsAndOnlyWhereItMay) {
  ASSERT_EQ(writeLog({}), 0);
  const std::string right = readTextFile("log");
  ASSERT_GT(right.size(), 160000U);
  std::string withoutLongest = right;
  withoutLongest.erase(right.find(kLongest), kLongest.size());
  std::string withoutSecond = right;
  const std::size_t second = right.find('\n') + 1;
  withoutSecond.erase(second, right.find('\n', second) + 1 - second);
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    const std::int32_t result = writeLog(plan);
    const std::string log = readTextFile("log");
    const bool opens = plan.kind == FaultKind::kOpen || plan.kind == FaultKind::kNew;
    if (faultsFired() != 0 && opens) {
      EXPECT_EQ(result, kLogOpenFailed);
      EXPECT_EQ(log, "");
    } else if (faultsFired() != 0 && !isHarmless(plan) && plan.kind == FaultKind::kWrite) {
      EXPECT_EQ(result, -1);
      EXPECT_TRUE(log == withoutLongest) << log.size();
    } else if (faultsFired() != 0 && !isHarmless(plan) && plan.kind == FaultKind::kFlush) {
      // A record whose flush fails is a failed write; the next flush writes its bytes. The first
      // one's failure leaves the second out; nobody looks at the third's.
      const bool atClose = callsOf(FaultKind::kFlush) == plan.n;
      const bool unseen = atClose || (plan.n == 3 && !isForGood(plan));
      EXPECT_TRUE(unseen ? result == 0 : result == -1 || result == kLogWriteFailed) << result;
      const std::string& expected = plan.n == 1 ? withoutSecond : right;
      EXPECT_TRUE(atClose || isForGood(plan) ? expected.starts_with(log) : log == expected)
          << log.size();
      EXPECT_TRUE(log.empty() || log.back() == '\n');
    } else {
      EXPECT_EQ(result, 0);
      EXPECT_TRUE(log == right) << log.size();
    }
  });
}

std::multiset<std::string> seedLines(const std::string& log) {
  std::multiset<std::string> lines;
  for (std::size_t at = 0; at < log.size(); at += kSeedLineBytes)
    lines.insert(log.substr(at, kSeedLineBytes));
  return lines;
}

bool isHeader(const std::string& line) {
  return line.find("DD") == std::string::npos && line.find("LD") == std::string::npos;
}

TEST_P(LogFaults, SeedLogLosesOnlyWholeLinesAndOnlyWhereItMay) {
  writeSeedLog({});
  const std::string right = readTextFile("seedlog.txt");
  const std::multiset<std::string> rightLines = seedLines(right);
  ASSERT_EQ(right.size(), 12 * kSeedLineBytes);
  ASSERT_EQ(std::count_if(rightLines.begin(), rightLines.end(), isHeader), 6);
  forEachFault(GetParam(), [&](const FaultPlan& plan) {
    writeSeedLog(plan);
    const std::string log = readTextFile("seedlog.txt");
    ASSERT_EQ(log.size() % kSeedLineBytes, 0U);
    const std::multiset<std::string> lines = seedLines(log);
    ASSERT_TRUE(std::includes(rightLines.begin(), rightLines.end(), lines.begin(), lines.end()));
    std::vector<std::string> lost;
    std::set_difference(rightLines.begin(), rightLines.end(), lines.begin(), lines.end(),
                        std::back_inserter(lost));
    if (isHarmless(plan) || plan.kind == FaultKind::kSeek || plan.kind == FaultKind::kClose) {
      EXPECT_EQ(log, right);
    } else if (plan.kind == FaultKind::kOpen) {
      EXPECT_TRUE(std::all_of(lost.begin(), lost.end(), isHeader));  // its records wait
    } else if (plan.kind == FaultKind::kNew && !isForGood(plan)) {
      EXPECT_LE(lost.size(), 1U);
    } else if (!isForGood(plan)) {
      EXPECT_LE(lost.size(), 3U);  // what one close had to write
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Kinds, LogFaults,
                         testing::Values(FaultKind::kOpen, FaultKind::kSeek, FaultKind::kWrite,
                                         FaultKind::kFlush, FaultKind::kClose, FaultKind::kNew),
                         [](const auto& info) { return kindName(info.param); });

TEST(ControlRecord, WithoutMemoryIsNotRead) {
  const TempDir folder;
  writeWholeFile(folder.file("ref"), tinyPair().ref);
  Stream* stream = streamOpen(folder.file("ref").c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  ProcObj proc{};
  proc.files = &proc.fileRecord;
  proc.stats = &proc.statistics;
  for (const std::uint32_t failing : {0u, 1u}) {
    proc.refControlRec = nullptr;
    armFaults({FaultKind::kAllocate, failing});
    RefControlRec* const record = ReadRefControlRec(stream, &proc);
    disarmFaults();
    EXPECT_EQ(record == nullptr, failing != 0);
    EXPECT_EQ(proc.refControlRec, record);
    freeTable(record);
  }
  EXPECT_EQ(streamClose(stream), 0);
}

TEST(Reads, SmallPiecesInARowAreReadTogether) {
  constexpr std::size_t kPiece = 16;
  constexpr std::size_t kPieces = 4096;
  const TempDir folder;
  FileBytes bytes(kPiece * kPieces);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i / 7);
  writeWholeFile(folder.file("pieces"), bytes);
  Stream* stream = streamOpen(folder.file("pieces").c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  FileBytes read(bytes.size());
  armFaults({});
  for (std::size_t i = 0; i < kPieces; ++i)
    EXPECT_EQ(streamRead(stream, read.data() + i * kPiece, kPiece), kPiece);
  disarmFaults();
  EXPECT_LT(callsOf(FaultKind::kRead), kPieces / 64);
  EXPECT_EQ(read, bytes);
  EXPECT_EQ(streamClose(stream), 0);
}

}  // namespace
}  // namespace statecut::test
