// Opening, closing and checking the databases.
#include <algorithm>
#include <string>
#include <vector>

#include "base/cmdline.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"
#include "unit/dbfiles/records.h"

namespace statecut {
namespace {

using namespace test;
using Lines = std::vector<std::string>;

ProcObj* installedFor = nullptr;

class OpenTest : public test::LogFixture {
 protected:
  OpenTest() {
    cmdLine.refDb = ref_.data();
    cmdLine.rangeDb = rng_.data();
    installedFor = nullptr;
    dbLookupInstaller = nullptr;
  }
  ~OpenTest() override {
    cmdLine.refDb = nullptr;
    cmdLine.rangeDb = nullptr;
    dbLookupInstaller = nullptr;
    streamClose(proc_.files->reference);
    streamClose(proc_.files->range);
  }
  std::int32_t openRef(const Bytes& bytes) {
    write("ref", bytes);
    return openRefDb();
  }
  std::int32_t openRng(const Bytes& bytes) {
    write("rng", bytes);
    return openRangeDb();
  }
  std::int32_t evaluate(const Bytes& ref, const Bytes& rng) {
    RefControlRec refRec;
    RngControlRec rngRec;
    std::copy(ref.begin(), ref.end(), refRec.bytes.begin());
    std::copy(rng.begin(), rng.end(), rngRec.bytes.begin());
    return evalTimeStamps(&refRec, &rngRec, &proc_);
  }

  std::string ref_ = path("ref");
  std::string rng_ = path("rng");
  const std::string refSize_ =
      "INFO;dbaccess;0;Info Message;" + test::sizeLine("Reference Control Record", 844);
};

TEST_F(OpenTest, ReferenceDatabaseIsOpenedReadAndDumped) {
  EXPECT_EQ(openRef(refRecord()), 0);
  EXPECT_NE(proc_.files->reference, nullptr);
  ASSERT_NE(proc_.refControlRec, nullptr);
  const Lines found = records();
  ASSERT_EQ(found.size(), 2U + 85U);
  EXPECT_EQ(found[0], "INFO;dbaccess;0;Info;Opened ref/city db: " + ref_);
  EXPECT_EQ(found[1], refSize_);
  EXPECT_EQ(found[2],
            "DBG;apiutil;0;Debug Control Record;------- Reference database control record ------");
}

TEST_F(OpenTest, RangeDatabaseIsOpenedReadAndDumped) {
  EXPECT_EQ(openRng(rngRecord()), 0);
  EXPECT_NE(proc_.files->range, nullptr);
  ASSERT_NE(proc_.rngControlRec, nullptr);
  const Lines found = records();
  ASSERT_EQ(found.size(), 1U + 28U);
  EXPECT_EQ(found[0], "INFO;dbaccess;0;Info;Opened range/zip4 db: " + rng_);
}

TEST_F(OpenTest, MissingDatabases) {
  EXPECT_EQ(openRefDb(), kRefDbNotOpened);
  EXPECT_EQ(openRangeDb(), kRangeDbNotOpened);
  EXPECT_EQ(proc_.files->reference, nullptr);
  EXPECT_EQ(proc_.files->range, nullptr);
  EXPECT_EQ(records(), Lines({"ERR;dbaccess;0;Error;Could not open ref/city db: " + ref_ +
                                  "\nErrno = 2 : No such file or directory",
                              "ERR;dbaccess;0;Error;Could not open range/zip4 db: " + rng_ +
                                  "\nErrno = 2 : No such file or directory"}));
}

TEST_F(OpenTest, LongNamesAreNotCutInTheRecord) {
  std::string name = path("none/") + std::string(1000, 'x');
  cmdLine.refDb = name.data();
  EXPECT_EQ(openRefDb(), kRefDbNotOpened);
  const Lines found = records();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0], "ERR;dbaccess;0;Error;Could not open ref/city db: " + name +
                          "\nErrno = 2 : No such file or directory");
}

TEST_F(OpenTest, ShortReferenceRecordFailsUnderAWarningTitle) {
  Bytes bytes = refRecord();
  ASSERT_EQ(openRef(bytes), 0);
  records();
  bytes.pop_back();
  streamClose(proc_.files->reference);
  EXPECT_EQ(openRef(bytes), kControlRecNotRead);
  EXPECT_EQ(records(),
            Lines({"INFO;dbaccess;0;Info;Opened ref/city db: " + ref_, refSize_,
                   "ERR;apiutil;20045;RefDB Read Err;Could not read Reference db partition: "
                   "control record",
                   "ERR;dbaccess;0;Warning;Could not read ref/city db control record."}));
}

TEST_F(OpenTest, ShortRangeRecordFailsUnderAnErrorTitle) {
  Bytes bytes = rngRecord();
  bytes.pop_back();
  EXPECT_EQ(openRng(bytes), kControlRecNotRead);
  EXPECT_EQ(records(),
            Lines({"INFO;dbaccess;0;Info;Opened range/zip4 db: " + rng_,
                   "ERR;apiutil;20044;RangeDB Read Err;Could not read Range db record: "
                   "Range Control Record",
                   "ERR;dbaccess;0;Error;Could not read range/zip4 db control record."}));
}

TEST_F(OpenTest, ReferenceDatabaseWithTheRangeBitAloneIsOfTheWrongType) {
  EXPECT_EQ(openRef(refRecord(2)), kDbWrongType);
  EXPECT_EQ(records(), Lines({"INFO;dbaccess;0;Info;Opened ref/city db: " + ref_, refSize_,
                              "ERR;dbaccess;0;RefDB Read Err;Could not read Reference db "
                              "partition: Ref/City DB Type Incorrect"}));
}

TEST_F(OpenTest, RangeDatabaseWithTheReferenceBitAloneIsOfTheWrongType) {
  EXPECT_EQ(openRng(rngRecord(1)), kDbWrongType);
  EXPECT_EQ(records(), Lines({"INFO;dbaccess;0;Info;Opened range/zip4 db: " + rng_,
                              "ERR;dbaccess;0;RngDB Err;Could not read Range db record: "
                              "Range/Zip4 DB Type Incorrect"}));
}

TEST_F(OpenTest, FolderFailsAtItsControlRecord) {
  std::string folder = path("");
  cmdLine.refDb = folder.data();
  cmdLine.rangeDb = folder.data();
  EXPECT_EQ(openRefDb(), kControlRecNotRead);
  EXPECT_EQ(openRangeDb(), kControlRecNotRead);
}

TEST_F(OpenTest, NullContextAndNullNamesAreFailedOpens) {
  cmdLine.refDb = nullptr;
  cmdLine.rangeDb = nullptr;
  EXPECT_EQ(openRefDb(), kRefDbNotOpened);
  EXPECT_EQ(openRangeDb(), kRangeDbNotOpened);
  EXPECT_EQ(records().size(), 2U);
  pProcObj = nullptr;
  EXPECT_EQ(openRefDb(), kRefDbNotOpened);
  EXPECT_EQ(openRangeDb(), kRangeDbNotOpened);
  EXPECT_EQ(records(), Lines());
}

TEST_F(OpenTest, EveryPlatformIsAccepted) {
  for (int endian = 0; endian < 256; ++endian)
    EXPECT_EQ(checkPlatform(static_cast<std::uint8_t>(endian),
                            static_cast<std::uint8_t>(255 - endian), "name"),
              0);
  Bytes bytes = refRecord();
  bytes[18] = bytes[19] = 2;
  EXPECT_EQ(openRef(bytes), 0);
}

TEST_F(OpenTest, LibraryOpenInstallsTheLookups) {
  dbLookupInstaller = [](ProcObj* proc) { installedFor = proc; };
  write("ref", refRecord());
  proc_.files->reference = dbOpenRefDB(&proc_, ref_.c_str());
  EXPECT_NE(proc_.files->reference, nullptr);
  EXPECT_EQ(installedFor, &proc_);
  EXPECT_EQ(records(), Lines({"DBG;apiutil;0;Cityfile filename;" + ref_}));
}

TEST_F(OpenTest, ProgramOpenAndRangeOpenInstallNothing) {
  dbLookupInstaller = [](ProcObj* proc) { installedFor = proc; };
  EXPECT_EQ(openRef(refRecord()), 0);
  EXPECT_EQ(installedFor, nullptr);
  write("rng", rngRecord());
  records();
  proc_.files->range = dbOpenRangeDB(&proc_, rng_.c_str());
  EXPECT_NE(proc_.files->range, nullptr);
  EXPECT_EQ(installedFor, nullptr);
  EXPECT_EQ(records(), Lines({"DBG;apiutil;0;Datafile filename;" + rng_}));
}

TEST_F(OpenTest, FailedLibraryOpensAreLoggedAndInstallNothing) {
  dbLookupInstaller = [](ProcObj* proc) { installedFor = proc; };
  EXPECT_EQ(dbOpenRefDB(&proc_, ref_.c_str()), nullptr);
  EXPECT_EQ(dbOpenRangeDB(&proc_, rng_.c_str()), nullptr);
  EXPECT_EQ(installedFor, nullptr);
  EXPECT_EQ(records(),
            Lines({"DBG;apiutil;0;Cityfile filename;" + ref_,
                   "ERR;apiutil;20025;Cityfile DB Open Error;Failed to open (2) " + ref_,
                   "DBG;apiutil;0;Datafile filename;" + rng_,
                   "ERR;apiutil;20024;Datafile DB Open Error;Failed to open (2) " + rng_}));
  EXPECT_EQ(dbOpenRefDB(nullptr, ref_.c_str()), nullptr);
  EXPECT_EQ(dbOpenRangeDB(nullptr, rng_.c_str()), nullptr);
  EXPECT_EQ(records(), Lines());
}

TEST_F(OpenTest, LibraryCloseLeavesThePointerAsItIs) {
  write("ref", refRecord());
  Stream* const ref = proc_.files->reference = dbOpenRefDB(&proc_, ref_.c_str());
  Stream* const rng = proc_.files->range = dbOpenRangeDB(&proc_, ref_.c_str());
  dbCloseRefDB();
  EXPECT_EQ(proc_.files->reference, ref);
  EXPECT_EQ(dbCloseRangeDB(), 0);
  EXPECT_EQ(proc_.files->range, rng);
  proc_.files->reference = nullptr;
  proc_.files->range = nullptr;
}

TEST_F(OpenTest, LibraryCloseOfNothingDoesNothing) {
  dbCloseRefDB();
  EXPECT_EQ(dbCloseRangeDB(), 0);
  pProcObj = nullptr;
  dbCloseRefDB();
  EXPECT_EQ(dbCloseRangeDB(), 0);
}

TEST_F(OpenTest, PairIsShownFromTheRangeRecord) {
  Bytes rng = rngRecord();
  rng[0] = '2';
  rng[12] = '5';
  EXPECT_EQ(evaluate(refRecord(), rng), 0);
  EXPECT_EQ(records(), Lines({"INFO;apiutil;0;Info Message;DB Timestamp          : 03-15-2017 "
                              "00:00:00",
                              "INFO;apiutil;0;Info Message;DB Version            : 20.00.0.O.F1",
                              "INFO;apiutil;0;Info Message;DB Copyright Date     : 03-15-2015"}));
}

TEST_F(OpenTest, CutPairIsShownWithItsCutStamp) {
  EXPECT_EQ(evaluate(refRecord(5, test::kCutStamp), rngRecord(6, test::kCutStamp)), 0);
  const Lines found = records();
  ASSERT_EQ(found.size(), 4U);
  EXPECT_EQ(found[0], "INFO;apiutil;0;Info Message;State Cut DB Timestamp: 03-16-2017 00:01:01");
}

TEST_F(OpenTest, DifferentBuildStampsAreReportedFirst) {
  ASSERT_EQ(evaluate(refRecord(), rngRecord()), 0);
  records();
  Bytes rng = rngRecord(6, test::kCutStamp);
  putWord(rng, 20, test::kBuildStamp + 1);
  EXPECT_EQ(evaluate(refRecord(), rng), -1);
  EXPECT_EQ(records(), Lines({"ERR;apiutil;20113;DB Error;DB Timestamps are not the same."}));
}

TEST_F(OpenTest, CutFileDoesNotPairWithAnUncutOne) {
  const Lines expected = {"ERR;apiutil;0;DB Error;Ref or Range DB State Cut but not the other"};
  EXPECT_EQ(evaluate(refRecord(5, test::kCutStamp), rngRecord()), -1);
  EXPECT_EQ(records(), expected);
  EXPECT_EQ(evaluate(refRecord(), rngRecord(6, test::kCutStamp)), -1);
  EXPECT_EQ(records(), expected);
}

TEST_F(OpenTest, CutFilesWithDifferentStampsDoNotPair) {
  EXPECT_EQ(evaluate(refRecord(5, test::kCutStamp), rngRecord(6, test::kCutStamp + 1)), -1);
  EXPECT_EQ(records(),
            Lines({"ERR;apiutil;20113;DB Error;State Cut DB Timestamps are not the same."}));
}

TEST_F(OpenTest, NothingPairsWithNothing) {
  RefControlRec ref{};
  RngControlRec rng{};
  EXPECT_EQ(evalTimeStamps(&ref, &rng, &proc_), 0);
  records();
  EXPECT_EQ(evalTimeStamps(nullptr, &rng, &proc_), -1);
  EXPECT_EQ(evalTimeStamps(&ref, nullptr, &proc_), -1);
  EXPECT_EQ(evalTimeStamps(&ref, &rng, nullptr), -1);
  EXPECT_EQ(records(), Lines());
}

}  // namespace
}  // namespace statecut
