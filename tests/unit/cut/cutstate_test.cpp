// Whole cuts of a built database, and the guards around their files.

#include "cut/cutstate.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <regex>

#include "base/cmdline.h"
#include "base/stream.h"
#include "cut/refcopy.h"
#include "dbbuilder/places.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "unit/cut/cutfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

RefControlRec controlRecordOf(const Bytes& file) {
  RefControlRec record{};
  std::copy_n(file.begin(), RefControlRec::size, record.bytes.begin());
  return record;
}

class CutState : public CutFixture {
 protected:
  CutState() : model(builder::makeModel(builder::tinyPlaces(), builder::tinyOptions())) {
    setNames("city.dir", "zip4us.dir", "city.sc", "zip4us.sc");
    for (std::size_t i = 1; i < model.zipBytes.size() && states_.size() < 1; ++i)
      if (!model.zipBytes[i].state.empty()) states_.push_back(model.zipBytes[i].state);
    setStates(states_);
    ::unsetenv("SOURCE_DATE_EPOCH");
    dateAndTime = 1700000000;
  }

  void writeSources() {
    write("city.dir", builder::referenceFile(model).bytes);
    write("zip4us.dir", builder::rangeFile(model.range));
  }
  std::int32_t cut() {
    writeSources();
    return run();
  }
  std::int32_t run() {
    const std::int32_t status = cutStates();
    keepTables();
    return status;
  }
  std::string lastErrors() {
    std::string errors;
    for (const std::string& line : log())
      if (line.rfind("ERR;", 0) == 0) errors += line + "\n";
    return errors;
  }
  // The ERR records without their source lines.
  std::string errorTexts() {
    std::string texts;
    for (const std::string& line : log()) {
      if (line.rfind("ERR;", 0) == 0) texts += line.substr(line.find(';', 4) + 1) + "\n";
    }
    return texts;
  }

  builder::Model model;
  std::vector<std::string> states_;
};

TEST_F(CutState, CutPairIsMarkedStampedAndComplete) {
  ASSERT_EQ(cut(), 0);
  const Bytes ref = contents("city.sc");
  const Bytes rng = contents("zip4us.sc");
  const RefControlRec record = controlRecordOf(ref);
  EXPECT_EQ(record.get(RefControlRec::typeFlags), 5u);
  EXPECT_EQ(record.get(RefControlRec::stateCutTimeStamp), 1700000000u);
  ASSERT_GT(rng.size(), 624u);
  EXPECT_EQ(le::get<4>(rng.data() + 24), 6u);
  EXPECT_EQ(le::get<4>(rng.data() + 28), 1700000000u);
  EXPECT_EQ(lastErrors(), "");
}

TEST_F(CutState, ZipRecordsOfTheCutPointAtTheirPartitions) {
  ASSERT_EQ(cut(), 0);
  const Bytes ref = contents("city.sc");
  const Bytes rng = contents("zip4us.sc");
  const Bytes sourceRef = contents("city.dir");
  const Bytes sourceRng = contents("zip4us.dir");
  const RefControlRec record = controlRecordOf(ref);
  const RefControlRec source = controlRecordOf(sourceRef);
  int checked = 0;
  for (std::uint32_t key = 1; key < record.get(RefControlRec::zipDataCount); ++key) {
    if (model.zipBytes[key].state != states_[0]) continue;
    const std::size_t old = source.get(RefControlRec::zipDataRba) + key * 52 + 8;
    const std::size_t now = record.get(RefControlRec::zipDataRba) + key * 52 + 8;
    const std::uint32_t bytes =
        le::get<4>(&sourceRef[source.get(RefControlRec::zipBytesRba) + key * 12 + 8]);
    const std::uint32_t oldRba = le::get<4>(&sourceRef[old]);
    if (oldRba == 0) continue;
    EXPECT_EQ(slice(rng, le::get<4>(&ref[now]), bytes), slice(sourceRng, oldRba, bytes)) << key;
    ++checked;
  }
  EXPECT_GT(checked, 0);
}

TEST_F(CutState, FirstFourTablesKeepTheirPlace) {
  ASSERT_EQ(cut(), 0);
  const Bytes ref = contents("city.sc");
  const RefControlRec record = controlRecordOf(ref);
  const std::uint32_t end =
      record.get(RefControlRec::streetNamesRba) + record.get(RefControlRec::streetNamesBytes);
  EXPECT_EQ(slice(ref, 844, end - 844), slice(contents("city.dir"), 844, end - 844));
  EXPECT_EQ(record.get(RefControlRec::firmsRba), end);
}

TEST_F(CutState, StateWithoutZipsGivesAValidPairAndAWarning) {
  setStates({"ZZ"});
  ASSERT_EQ(cut(), 0);
  const RefControlRec record = controlRecordOf(contents("city.sc"));
  EXPECT_EQ(record.get(RefControlRec::cityNamesCount), 1u);
  EXPECT_EQ(contents("zip4us.sc").size(), 624u);
  const std::vector<std::string> lines = log();
  EXPECT_EQ(std::count(lines.begin(), lines.end(),
                       "WARN;cutstate:1758;0;State Selection;No zip entries found for selected "
                       "states."),
            1);
}

TEST_F(CutState, DifferentTimeStampsEndAfterTheReferenceWasStarted) {
  model.range.header.buildStamp = model.header.buildStamp + 1;
  EXPECT_EQ(cut(), -13);
  EXPECT_EQ(lastErrors(), "ERR;cutstate:1907;0;DB Error;DB Timestamps are not the same.\n");
  EXPECT_FALSE(std::filesystem::exists(path("zip4us.sc")));
  streamFlush(newRefDb);
  EXPECT_GT(contents("city.sc").size(), 844u);
}

TEST_F(CutState, RangeStatusesPassReferenceStatusesDoNot) {
  writeSources();
  std::filesystem::remove(path("zip4us.dir"));
  EXPECT_EQ(run(), -11);
  write("zip4us.dir", Bytes(623));
  EXPECT_EQ(run(), -12);
  write("city.dir", Bytes(843));
  EXPECT_EQ(run(), -1);
  std::filesystem::remove(path("city.dir"));
  EXPECT_EQ(run(), -1);
}

TEST_F(CutState, ReferenceOutputThatCannotBeOpenedIsLogged) {
  setNames("city.dir", "zip4us.dir", "no/city.sc", "zip4us.sc");
  EXPECT_EQ(cut(), -1);
  EXPECT_EQ(lastErrors(), "ERR;cutstate:1877;20003;Open Error;" + path("no/city.sc") +
                              ";No such file or directory\n");
}

TEST_F(CutState, RangeOutputThatCannotBeOpenedIsNotLogged) {
  setNames("city.dir", "zip4us.dir", "city.sc", "no/zip4us.sc");
  EXPECT_EQ(cut(), -1);
  EXPECT_EQ(lastErrors(), "");
}

// Without a zero byte a name of 255 bytes is the longest that an output may have.
std::string nameOf(const std::string& folder, std::size_t length) {
  std::string name = folder;
  while (name.size() + 2 < length) name += "/.";
  return name.size() + 1 < length ? name + "/x" : name + "y";
}

TEST_F(CutState, OutputNamesOf256BytesAreRefused) {
  const std::string longest = nameOf(path("."), 255);
  const std::string tooLong = nameOf(path("."), 256);
  ASSERT_EQ(longest.size(), 255u);
  ASSERT_EQ(tooLong.size(), 256u);
  setNames("city.dir", "zip4us.dir", longest, "zip4us.sc");
  ASSERT_EQ(cut(), 0);
  setNames("city.dir", "zip4us.dir", "city.sc", longest);
  ASSERT_EQ(cut(), 0);
  log();
  setNames("city.dir", "zip4us.dir", tooLong, "zip4us.sc");
  EXPECT_EQ(cut(), -1);
  EXPECT_EQ(lastErrors(),
            "ERR;cutstate:1877;20003;Open Error;" + tooLong + ";File name too long\n");
  setNames("city.dir", "zip4us.dir", "city.sc", tooLong);
  EXPECT_EQ(cut(), -1);
  EXPECT_EQ(lastErrors(), "");
}

class SharedNames : public CutState {
 protected:
  // Cuts, and expects that `output` is refused for `other` with every file untouched.
  void expectRefused(const std::string& output, const std::string& other) {
    const Bytes ref = contents("city.dir");
    const Bytes rng = contents("zip4us.dir");
    EXPECT_EQ(run(), -1);
    EXPECT_EQ(errorTexts(),
              "20003;Open Error;" + path(output) + ";same file as " + path(other) + "\n");
    EXPECT_EQ(contents("city.dir"), ref);
    EXPECT_EQ(contents("zip4us.dir"), rng);
  }
};

TEST_F(SharedNames, OutputThatIsAnInputIsRefusedHoweverAliased) {
  ASSERT_EQ(cut(), 0);
  log();
  setNames("city.dir", "zip4us.dir", "city.dir", "zip4us.sc");
  expectRefused("city.dir", "city.dir");
  std::filesystem::create_hard_link(path("zip4us.dir"), path("hard"));
  setNames("city.dir", "zip4us.dir", "hard", "zip4us.sc");
  expectRefused("hard", "zip4us.dir");
  std::filesystem::create_symlink("city.dir", path("soft"));
  setNames("city.dir", "zip4us.dir", "fresh.sc", "soft");
  expectRefused("soft", "city.dir");
  EXPECT_FALSE(std::filesystem::exists(path("fresh.sc")));
}

TEST_F(SharedNames, OutputThatIsTheStateFileIsRefused) {
  writeSources();
  write("states", Bytes{'O', 'K', '\n'});
  setNames("city.dir", "zip4us.dir", "city.sc", "states", "states");
  expectRefused("states", "states");
  EXPECT_EQ(contents("states").size(), 3u);
}

TEST_F(SharedNames, OutputsThatAreOneFileAreRefused) {
  writeSources();
  setNames("city.dir", "zip4us.dir", "one.sc", "./one.sc");
  expectRefused("./one.sc", "one.sc");
  EXPECT_FALSE(std::filesystem::exists(path("one.sc")));
}

TEST_F(CutState, DevicesMayBeSharedAsOutputs) {
  setNames("city.dir", "zip4us.dir", "/dev/null", "/dev/null");
  EXPECT_EQ(cut(), 0);
}

TEST_F(CutState, FullDiskUnderTheReferenceEndsTheCut) {
  setNames("city.dir", "zip4us.dir", "/dev/full", "zip4us.sc");
  EXPECT_EQ(cut(), -1);
  const std::string errors = errorTexts();
  const std::string own = "20006;DB Write Error;/dev/full;No space left on device\n";
  const std::size_t at = errors.find(own);
  ASSERT_NE(at, std::string::npos) << errors;
  EXPECT_EQ(at + own.size(), errors.size());  // the last one, and once
  EXPECT_EQ(errors.find(own), errors.rfind(own));
}

TEST_F(CutState, FullDiskUnderTheRangeEndsTheCut) {
  setNames("city.dir", "zip4us.dir", "city.sc", "/dev/full");
  testing::internal::CaptureStdout();
  EXPECT_EQ(cut(), -1);
  testing::internal::GetCapturedStdout();
  const std::string errors = errorTexts();
  EXPECT_NE(errors.find("20006;DB Write Error;/dev/full;No space left on device\n"),
            std::string::npos)
      << errors;
}

TEST_F(CutState, FullDiskUnderEitherOutputLeavesTheSameKindsOfRecords) {
  const auto kinds = [this](const std::string& refOut, const std::string& rangeOut) {
    setNames("city.dir", "zip4us.dir", refOut, rangeOut);
    testing::internal::CaptureStdout();
    EXPECT_EQ(cut(), -1);
    testing::internal::GetCapturedStdout();
    return std::regex_replace(errorTexts(), std::regex("[0-9]+, Actual bytes written: [0-9]+"),
                              "N, Actual bytes written: N");
  };
  const std::string expected =
      "20006;DB Write Error;Requested bytes: N, Actual bytes written: N\n"
      "20006;DB Write Error;/dev/full;No space left on device\n";
  EXPECT_EQ(kinds("/dev/full", "zip4us.sc"), expected);
  EXPECT_EQ(kinds("city.sc", "/dev/full"), expected);
}

TEST_F(CutState, FailureOfOneCutIsForgottenByTheNext) {
  setNames("city.dir", "zip4us.dir", "city.sc", "/dev/full");
  ASSERT_EQ(cut(), -1);
  setNames("city.dir", "zip4us.dir", "city.sc", "zip4us.sc");
  EXPECT_EQ(run(), 0);
}

TEST_F(CutState, OutputThatCannotBeRewoundIsAFailedWrite) {
  ASSERT_EQ(std::system(("mkfifo " + path("pipe")).c_str()), 0);
  setNames("city.dir", "zip4us.dir", "pipe", "zip4us.sc");
  writeSources();
  std::FILE* drain = ::popen(("cat " + path("pipe") + " > /dev/null").c_str(), "w");
  EXPECT_EQ(run(), -1);
  EXPECT_EQ(errorTexts(), "20006;DB Write Error;" + path("pipe") + ";Illegal seek\n");
  streamClose(newRefDb);
  newRefDb = nullptr;
  ::pclose(drain);
}

TEST_F(CutState, CutOfACutIsRefused) {
  ASSERT_EQ(cut(), 0);
  log();
  setNames("city.sc", "zip4us.sc", "again.sc", "again4.sc");
  EXPECT_EQ(run(), -1);
  EXPECT_EQ(errorTexts(),
            "20045;RefDB Read Err;Could not read Reference db partition: Zip Bytes Table\n");
}

TEST_F(CutState, DatabaseWithoutMilitaryAndZoneTablesIsCutWithoutThem) {
  model.military.reset();
  model.poBoxZones.reset();
  ASSERT_EQ(cut(), 0);
  const RefControlRec record = controlRecordOf(contents("city.sc"));
  EXPECT_EQ(record.get(RefControlRec::militaryRba), 0u);
  EXPECT_EQ(record.get(RefControlRec::pobZonesRba), 0u);
}

class RefCopy : public CutState {
 protected:
  void open() {
    const Bytes ref = builder::referenceFile(model).bytes;
    openSources(ref, builder::rangeFile(model.range));
    openOutputs();
    std::copy_n(ref.begin(), RefControlRec::size, proc.refControlRec->bytes.begin());
  }
  std::int32_t kept(std::int32_t (*step)()) {
    const std::int32_t status = step();
    keepTables();
    return status;
  }
};

TEST_F(RefCopy, PlaceholderAndLoadedTablesAreLeft) {
  open();
  refPointers[kSlotScfs].table = reinterpret_cast<unsigned char*>(this);  // cleared first
  EXPECT_EQ(kept(copyRefDb), 0);
  EXPECT_EQ(refPointers[kSlotScfs].table, nullptr);
  for (const SlotNumber slot :
       {kSlotCityData, kSlotCityMultiZipRbas, kSlotFinMultiZip, kSlotCityNames,
        kSlotCityNamesByState, kSlotCityPhonetics, kSlotZipData, kSlotZipIndex, kSlotZipBytes,
        kSlotSfhMultiZipBytes, kSlotHashTable, kSlotHashOverflow})
    EXPECT_NE(refPointers[slot].table, nullptr) << slot;
  const std::uint32_t mask = le::get<4>(refPointers[kSlotHashMask].bytes);
  EXPECT_EQ(mask, word(RefControlRec::hashTableCount) - 1);
  EXPECT_EQ(writtenReference().size(), totalBytes);
  EXPECT_EQ(le::get<4>(writtenReference().data() + 24), 5u);
}

TEST_F(RefCopy, LoadersLogTheirSizesAtFixedLines) {
  open();
  ASSERT_EQ(kept(copyRefDb), 0);
  std::vector<std::string> sites;
  for (const std::string& line : log())
    if (line.rfind("INFO;dbaccess", 0) == 0) sites.push_back(line.substr(5, 13));
  EXPECT_EQ(sites, (std::vector<std::string>{"dbaccess:0284", "dbaccess:0316", "dbaccess:0337",
                                             "dbaccess:0254", "dbaccess:0225"}));
}

TEST_F(RefCopy, LoaderWithoutMemoryIsLoggedAndTheCutGoesOn) {
  open();
  ASSERT_EQ(kept(readCityData4SC1), 0);
  log();
  setWord(RefControlRec::cityDataCount, 0x10000000);
  EXPECT_EQ(kept(copyRefDb), 0);
  EXPECT_EQ(refPointers[kSlotCityData].table, nullptr);
  EXPECT_EQ(errorTexts(), "20001;Mem Alloc Err;Could not allocate memory for City Data.\n");
}

TEST_F(RefCopy, SecondTableIsLoadedOnlyBehindTheFirst) {
  open();
  ASSERT_EQ(kept(readCityData4SC2), 0);
  refPointers[kSlotFinMultiZip].table = nullptr;
  setWord(RefControlRec::cityMultiZipRbasCount, 0x10000000);
  EXPECT_EQ(kept(readCityData4SC2), -2);
  EXPECT_EQ(refPointers[kSlotFinMultiZip].table, nullptr);
  setWord(RefControlRec::cityMultiZipRbasCount, 1);
  setWord(RefControlRec::finMultiZipRbasCount, 0x20000000);
  EXPECT_EQ(kept(readCityData4SC2), -5);
  setWord(RefControlRec::zipDataCount, 0x10000000);
  EXPECT_EQ(kept(readZipData4SC1), -5);
}

TEST_F(RefCopy, FailingCityLoaderEndsTheCopy) {
  open();
  ASSERT_EQ(kept(copyRefDb), 0);
  open();
  setWord(RefControlRec::cityNamesCount, 0);  // the by-state table would have -34 bytes
  EXPECT_EQ(kept(copyRefDb), -1);
}

TEST_F(RefCopy, ReadErrorOfTheSourceEndsTheCopyWithoutAbort) {
  open();
  streamClose(proc.files->reference);
  proc.files->reference = streamOpen(path(".").c_str(), "rb");
  EXPECT_EQ(kept(copyRefDb), -1);
}

// Both tables of this loader: the one whose read failed is reported, under its own status.
TEST_F(RefCopy, ReadErrorOfALoaderIsThatTablesFailure) {
  open();
  ASSERT_EQ(kept(readCityData4SC2), 0);
  setWord(RefControlRec::cityMultiZipRbasCount, 0);
  Stream* const sound = proc.files->reference;
  proc.files->reference = streamOpen(path(".").c_str(), "rb");
  log();
  EXPECT_EQ(kept(readCityData4SC2), -5);
  const std::vector<std::string> said = log();
  ASSERT_FALSE(said.empty());
  EXPECT_NE(said.back().find("partition: Zip Finance Multi Zip Data"), std::string::npos);
  streamClose(proc.files->reference);
  proc.files->reference = sound;
}

}  // namespace
