#include "cut/zipselect.h"

#include "unit/cut/cutfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

class ZipSelect : public CutFixture {
 protected:
  struct Zip {
    std::uint32_t zip;
    const char* state;
  };

  void makeZips(const std::vector<Zip>& zips) {
    setWord(RefControlRec::zipDataCount, static_cast<std::uint32_t>(zips.size()));
    auto* records = makeTable<ZipDataRow>(kSlotZipData, zips.size());
    auto* bytes = makeTable<ZipBytesRow>(kSlotZipBytes, zips.size());
    makeTable<ZipIndexRow>(kSlotZipIndex, kZipCodes);
    for (std::size_t i = 0; i < zips.size(); ++i) {
      records[i].set(ZipDataRow::zip, zips[i].zip);
      setText(bytes[i].text(ZipBytesRow::state), zips[i].state);
    }
    makeZipIndex();
  }

  static std::uint32_t key(std::uint32_t zip) {
    return scZipCodeIndex[zip].get(ZipIndexRow::zipKey);
  }
};

TEST_F(ZipSelect, NewIndexIsAnnouncedAndEmpty) {
  EXPECT_EQ(createNewZipIndex(), 0);
  EXPECT_EQ(log(), (std::vector<std::string>{
                       "INFO;dbaccess:0814;0;Info Msg ;                      New Zip Code Index - "
                       "required -     200000 bytes"}));
  for (std::uint32_t zip = 0; zip < kZipCodes; ++zip) ASSERT_EQ(key(zip), 0u);
}

TEST_F(ZipSelect, ZipsOfTheStatesEnterWithTheirKey) {
  makeZips({{0, ""}, {73001, "OK"}, {75001, "TX"}, {10001, "NY"}});
  setStates({"OK", "TX"});
  EXPECT_EQ(buildZips(), 0);
  EXPECT_EQ(key(73001), 1u);
  EXPECT_EQ(key(75001), 2u);
  EXPECT_EQ(key(10001), 0u);
  EXPECT_TRUE(log().empty());
}

TEST_F(ZipSelect, EmptySelectionIsAWarning) {
  makeZips({{0, ""}, {73001, "OK"}});
  setStates({"TX"});
  EXPECT_EQ(buildZips(), 0);
  EXPECT_EQ(log(), (std::vector<std::string>{"WARN;cutstate:1758;0;State Selection;No zip entries "
                                             "found for selected states."}));
}

TEST_F(ZipSelect, NoStateSelectsNothing) {
  makeZips({{0, ""}, {73001, "OK"}});
  setStates({});
  EXPECT_EQ(buildZips(), 0);
  EXPECT_EQ(log().size(), 1u);
}

TEST_F(ZipSelect, RecordZeroIsCountedButNeverCarried) {
  makeZips({{73001, "OK"}, {75001, "TX"}});
  setStates({"OK"});
  select(73001, 9);
  EXPECT_EQ(buildZips(), 0);
  EXPECT_EQ(key(73001), 0u);
  EXPECT_TRUE(log().empty());  // one ZIP code was selected
}

TEST_F(ZipSelect, ZipCode00000IsStoredLikeAnyOther) {
  makeZips({{0, ""}, {0, "OK"}});
  setStates({"OK"});
  buildZips();
  EXPECT_EQ(key(0), 1u);
}

TEST_F(ZipSelect, ZipCodeAbove99999IsNotSelected) {
  makeZips({{0, ""}, {99999, "OK"}, {100000, "TX"}, {0xFFFFFFFF, "TX"}});
  setStates({"OK"});
  buildZips();
  EXPECT_EQ(key(99999), 1u);
  EXPECT_TRUE(log().empty());
  setStates({"TX"});
  buildZips();
  EXPECT_EQ(log().size(), 1u);
}

TEST_F(ZipSelect, SelectingTracesNothing) {
  makeZips({{0, ""}, {73001, "OK"}});
  setStates({"OK"});
  proc.options->debugSwitch = 'D';
  buildZips();
  EXPECT_EQ(key(73001), 1u);
  EXPECT_TRUE(log().empty());
}

TEST_F(ZipSelect, StateLettersAreComparedExactly) {
  makeZips({{0, ""}, {73001, "ok"}, {73002, "OK"}});
  setStates({"OK"});
  buildZips();
  EXPECT_EQ(key(73001), 0u);
  EXPECT_EQ(key(73002), 2u);
}

TEST_F(ZipSelect, DuplicateStateChangesNothingAndTheLaterRecordOfAZipWins) {
  makeZips({{0, ""}, {73001, "OK"}, {73001, "OK"}});
  setStates({"OK", "OK"});
  buildZips();
  EXPECT_EQ(key(73001), 2u);
}

TEST_F(ZipSelect, KeysAreStoredIn16Bits) {
  std::vector<Zip> zips(65538, Zip{0, ""});
  zips[65535] = {73001, "OK"};
  zips[65536] = {73002, "OK"};
  zips[65537] = {73003, "OK"};
  makeZips(zips);
  setStates({"OK"});
  buildZips();
  EXPECT_EQ(key(73001), 65535u);
  EXPECT_EQ(key(73002), 0u);
  EXPECT_EQ(key(73003), 1u);
}

TEST_F(ZipSelect, TableThatFailedToLoadSelectsNothing) {
  for (const SlotNumber slot : {kSlotZipData, kSlotZipBytes}) {
    makeZips({{0, ""}, {73001, "OK"}});
    setStates({"OK"});
    buildZips();
    EXPECT_TRUE(log().empty());
    refPointers[slot].table = nullptr;
    EXPECT_EQ(buildZips(), 0);
    EXPECT_EQ(log().size(), 1u);
  }
}

TEST_F(ZipSelect, SourceIndexIsNotReadByTheSelection) {
  makeZips({{0, ""}, {73001, "OK"}, {75001, "TX"}});
  refPointers[kSlotZipIndex].table = nullptr;
  setStates({"OK"});
  EXPECT_EQ(buildZips(), 0);
  EXPECT_EQ(key(73001), 1u);
  EXPECT_EQ(key(75001), 0u);
  EXPECT_TRUE(log().empty());
}

TEST_F(ZipSelect, CopyZipIndexCopiesThe100EntriesOfAPrefix) {
  makeZips({{0, ""}});
  auto* source = reinterpret_cast<ZipIndexRow*>(refPointers[kSlotZipIndex].table);
  source[73099].set(ZipIndexRow::zipKey, 6);
  source[73000].set(ZipIndexRow::zipKey, 5);
  source[73100].set(ZipIndexRow::zipKey, 7);
  select(73001, 4);
  EXPECT_EQ(copyZipIndex(730), 2);
  EXPECT_EQ(key(73000), 5u);
  EXPECT_EQ(key(73001), 0u);
  EXPECT_EQ(key(73099), 6u);
  EXPECT_EQ(key(73100), 0u);
}

TEST_F(ZipSelect, CopyZipIndexCopiesNothingOutsideItsRangeOrWithoutTables) {
  makeZips({{0, ""}});
  reinterpret_cast<ZipIndexRow*>(refPointers[kSlotZipIndex].table)[99999].set(ZipIndexRow::zipKey,
                                                                              5);
  EXPECT_EQ(copyZipIndex(999), 1);
  EXPECT_EQ(copyZipIndex(-1), 0);
  EXPECT_EQ(copyZipIndex(1000), 0);
  refPointers[kSlotZipIndex].table = nullptr;
  EXPECT_EQ(copyZipIndex(999), 0);
}

TEST_F(ZipSelect, WalkStopsAtAKeyWithoutRecord) {
  makeZips({{0, ""}, {73001, "OK"}});
  select(73001, 1);
  std::vector<std::uint32_t> keys;
  const auto visit = [&](std::uint16_t at, ZipDataRow&) {
    keys.push_back(at);
    return 0;
  };
  EXPECT_EQ(forEachSelectedZip(logsite::kSfhBadKey, "Title", visit), 0);
  select(80000, 3);  // 2 is the zero record behind the table
  EXPECT_EQ(forEachSelectedZip(logsite::kSfhBadKey, "Title", visit), -1);
  EXPECT_EQ(keys, (std::vector<std::uint32_t>{1, 1}));
  EXPECT_EQ(log(), (std::vector<std::string>{"ERR;cutstate:1581;0;Title;Bad Zip Key"}));
}

}  // namespace
