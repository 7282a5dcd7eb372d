#include <cstring>

#include "lookupfixture.h"

namespace statecut::test {

namespace {

using Keys = std::vector<std::uint32_t>;

class StreetLookup : public SmallDatabase, public ::testing::WithParamInterface<const char*> {
 protected:
  void start() {
    open();
    const std::string variant = GetParam();
    onDisk_ = variant != "in";
    if (!onDisk_) load();
    onDisk_ ? useOff() : useIn();
    if (variant == "cached") buildCache(64, 4);
  }
  // The keys of a variation; `count` goes in and out.
  Keys variation(const char* name, const std::vector<std::uint16_t>& scfs, std::int32_t kind = 0) {
    flag_ = 99;
    keys_ = proc_.pfnFindStreetVar(name, static_cast<std::int32_t>(std::strlen(name)), scfs.data(),
                                   static_cast<std::int32_t>(scfs.size()), kind, &flag_, &count_);
    return keys_ == nullptr ? Keys{} : Keys(keys_, keys_ + count_);
  }
  std::string name(GetName* lookup, std::uint32_t offset) {
    length_ = -99;
    const char* text = lookup(offset, &length_, &proc_);
    return text == nullptr ? "null" : std::string(text, static_cast<std::size_t>(length_));
  }

  bool onDisk_ = false;
  const std::uint32_t* keys_ = nullptr;
  std::int8_t flag_ = 0;
  std::int32_t count_ = 0;
  std::int32_t length_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Variants, StreetLookup, ::testing::Values("in", "off", "cached"),
                         [](const auto& variant) { return std::string(variant.param); });

TEST_P(StreetLookup, StreetKeyOfAnExactName) {
  const std::string longest(28, 'L');
  Pack names = Pack().name(longest).name(longest + "L");
  table(RefControlRec::streetNamesRba.at, names);
  word(RefControlRec::streetNamesBytes.at, 59);
  named(longest, 1, 0);
  named(longest + "L", 1, 29);
  start();
  EXPECT_EQ(proc_.pfnFindStreetKey("NOPE", 4, &proc_), -1);
  EXPECT_EQ(proc_.pfnFindStreetKey(longest.c_str(), 28, &proc_), 0);
  EXPECT_EQ(proc_.pfnFindStreetKey((longest + "L").c_str(), 29, &proc_), -1);
  EXPECT_EQ(proc_.pfnFindStreetVarIdx(4, (longest + "L").c_str(), 29, &proc_), -1);
}

TEST_P(StreetLookup, StreetNameByOffset) {
  start();
  for (GetName* lookup : {proc_.pfnGetStreetNameUSPS, proc_.pfnGetStreetNameUSPSwc}) {
    EXPECT_EQ(name(lookup, 0), "ALPHA");
    EXPECT_EQ(name(lookup, 6), "BETA");
    EXPECT_NE(lookup(11, &length_, &proc_), nullptr);
    EXPECT_EQ(length_, -1) << "the length byte is signed";
  }
  if (!onDisk_) {
    EXPECT_EQ(name(proc_.pfnGetStreetNameUSPS, 12), "null") << "at the end of the names";
    EXPECT_EQ(length_, -99);
  }
}

TEST_P(StreetLookup, SingleVariationGivesOneKey) {
  start();
  EXPECT_EQ(variation("MN", {}), (Keys{6}));
  EXPECT_EQ(flag_, 2);
  count_ = 0;
  EXPECT_EQ(variation("MAIN", {}, 1), (Keys{42}));
  EXPECT_EQ(flag_, 4);
}

TEST_P(StreetLookup, AmbiguousVariationGivesItsList) {
  start();
  EXPECT_EQ(variation("BT", {}), (Keys{61, 62, 63}));
  EXPECT_LT(flag_, 0);
}

TEST_P(StreetLookup, FilterKeepsStreetsOfTheFirstScfKeyAndThoseWithNone) {
  start();
  EXPECT_EQ(variation("BT", {751}), (Keys{61, 62}));
  count_ = 0;
  EXPECT_EQ(variation("BT", {752, 750}), (Keys{61, 63}));
  count_ = 0;
  EXPECT_EQ(variation("BT", {999}), (Keys{61}));
}

TEST_P(StreetLookup, SixScfKeysAreRefusedWithAMessage) {
  start();
  EXPECT_EQ(variation("MN", {1, 2, 3, 4, 5}), (Keys{6}));
  count_ = 0;
  testing::internal::CaptureStderr();
  EXPECT_EQ(variation("MN", {1, 2, 3, 4, 5, 6}), Keys{});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error, max of 5 scf keys in dbFindStreet()");
  EXPECT_EQ(keys_, nullptr);
}

TEST_P(StreetLookup, OtherKindsGiveNull) {
  start();
  EXPECT_EQ(variation("MN", {}, 2), Keys{});
  EXPECT_EQ(keys_, nullptr);
  EXPECT_EQ(flag_, 99);
}

TEST_P(StreetLookup, MissLeavesTheFlag) {
  start();
  EXPECT_EQ(variation("ZZ", {}), Keys{});
  EXPECT_EQ(keys_, nullptr);
  EXPECT_EQ(flag_, 99);
}

TEST_P(StreetLookup, NullScfKeyMatchesNothing) {
  start();
  const StreetVariation& set = streetPhnVariation;
  const std::uint32_t* keys = findStreetVartn(&set, "BT", 2, nullptr, -1, &flag_, &count_, 4);
  ASSERT_NE(keys, nullptr);
  EXPECT_EQ(Keys(keys, keys + count_), (Keys{61}));
}

TEST_P(StreetLookup, CountGoesOnInMemoryAndIsReplacedOnDisk) {
  start();
  count_ = 3;
  variation("MN", {});
  EXPECT_EQ(count_, onDisk_ ? 1 : 4);
}

TEST_P(StreetLookup, NothingIsAddedInMemoryFrom500Keys) {
  start();
  count_ = 499;
  variation("BT", {});
  EXPECT_EQ(count_, 502);
  count_ = 500;
  variation("BT", {});
  EXPECT_EQ(count_, onDisk_ ? 503 : 500);
  EXPECT_EQ(flag_ == 99, !onDisk_);
  EXPECT_NE(keys_, nullptr);
}

TEST_P(StreetLookup, ListEndsAt504Keys) {
  Pack list = Pack().zeros(2).number(2000, 2);
  for (std::uint32_t i = 0; i < 2000; ++i) list.number(i, 4).number(0, 1);
  table(RefControlRec::streetPhoneticAmbDataRba.at, list);
  word(RefControlRec::streetPhoneticAmbDataBytes.at, 10004);
  start();
  const Keys keys = variation("BT", {});
  ASSERT_EQ(keys.size(), 504u);
  EXPECT_EQ(keys.back(), 503u);
}

TEST_P(StreetLookup, NegativeScfCountSkipsNothing) {
  const Pack list =
      Pack().zeros(2).number(2, 2).number(61, 4).number(0x80, 1).number(62, 4).number(0, 1);
  table(RefControlRec::streetPhoneticAmbDataRba.at, list);
  word(RefControlRec::streetPhoneticAmbDataBytes.at, 14);
  start();
  EXPECT_EQ(variation("BT", {}), (Keys{61, 62}));
  count_ = 0;
  EXPECT_EQ(variation("BT", {1}), (Keys{62}));
}

TEST_P(StreetLookup, ListThatIsCutOffKeepsWhatWasRead) {
  // Read on disk to the end of the file: the locals then keep what they held.
  const Pack list = Pack().zeros(2).number(9, 2).number(61, 4).number(0, 1).number(62, 4);
  const std::uint32_t at = table(RefControlRec::streetPhoneticAmbDataRba.at, list);
  word(RefControlRec::streetPhoneticAmbDataBytes.at, 13);
  start();
  if (onDisk_) {
    proc_.files->reference = holding(Bytes(file_.begin(), file_.begin() + at + 13), "cut");
    useOff();
    std::int32_t count = 0;
    EXPECT_EQ(ambgsStreetMatchOff(at + 2, nullptr, 0, &count), keyList.data());
    EXPECT_EQ(Keys(keyList.data(), keyList.data() + count),
              (Keys{61, 62, 62, 62, 62, 62, 62, 62, 62}));
  } else {
    EXPECT_EQ(variation("BT", {}), (Keys{61}));
  }
}

TEST_P(StreetLookup, FirmByNameAndOffset) {
  const std::string longest(40, 'F');
  start();
  EXPECT_EQ(proc_.pfnFindFirm("ACME", 4, &proc_), 0);
  EXPECT_EQ(proc_.pfnFindFirm(longest.c_str(), 40, &proc_), 5);
  EXPECT_EQ(proc_.pfnFindFirm((longest + "F").c_str(), 41, &proc_), -1);
  EXPECT_EQ(proc_.pfnFindFirm("ACME", -1, &proc_), -1);
  EXPECT_EQ(name(proc_.pfnGetFirmName, 0), "ACME");
  EXPECT_EQ(name(proc_.pfnGetFirmName, 5), longest);
  if (!onDisk_) {
    EXPECT_EQ(name(proc_.pfnGetFirmName, 46), "null");
  }
}

TEST_P(StreetLookup, GeneralDeliveryUsesTheLow16Bits) {
  start();
  EXPECT_EQ(dbGetGenrlDelvry(0), nullptr);
  EXPECT_EQ(dbGetGenrlDelvry(0x10000), nullptr);
  EXPECT_EQ(dbGetGenrlDelvry(3), nullptr);
  ASSERT_NE(dbGetGenrlDelvry(0x10001), nullptr);
  EXPECT_EQ(std::memcmp(dbGetGenrlDelvry(0x10001), "gd 1", 4), 0);
}

using StreetLookups = SmallDatabase;

TEST_F(StreetLookups, DamagedPositionsAndOffsetsInMemoryAddNothing) {
  open();
  load();
  useIn();
  std::int8_t flag = 99;
  std::int32_t count = 0;
  ASSERT_NE(dbFindStreetVar("BT", 2, nullptr, 0, 0, &flag, &count), nullptr);
  count = 0;
  flag = 99;
  streetPhnVariation.indexBytes = 11;  // the entry at 7 needs 12
  EXPECT_EQ(dbFindStreetVar("BT", 2, nullptr, 0, 0, &flag, &count), nullptr);
  EXPECT_EQ(flag, 99);
  streetPhnVariation.indexBytes = 14;
  streetPhnVariation.listBytes = 2;  // the list at 2 is behind the end
  EXPECT_EQ(dbFindStreetVar("BT", 2, nullptr, 0, 0, &flag, &count), nullptr);
  EXPECT_EQ(flag, -126);
  streetPhnVariation = {};
  EXPECT_EQ(dbFindStreetVar("BT", 2, nullptr, 0, 0, &flag, &count), nullptr);
}

TEST_F(StreetLookups, FilteredListBehindTheEndOfTheFileEnds) {
  Bytes bytes = Pack().number(0xFFFF, 2).number(5, 4).number(127, 1).number(9, 2);
  file_.insert(file_.end(), bytes.begin(), bytes.end());
  proc_.files->reference = holding(file_, "list");
  const std::uint16_t scf = 8;
  std::int32_t count = 0;
  ambgsStreetMatchOff(static_cast<std::uint32_t>(file_.size() - bytes.size()), &scf, 1, &count);
  EXPECT_EQ(count, 0);
  const std::uint16_t kept = 9;
  ambgsStreetMatchOff(static_cast<std::uint32_t>(file_.size() - bytes.size()), &kept, 1, &count);
  EXPECT_EQ(count, kKeyListMax);
}

TEST_F(StreetLookups, EveryBitOfTheFilterSwitchCounts) {
  const Bytes bytes = Pack().number(1, 2).number(5, 4).number(1, 1).number(9, 2);
  const auto at = static_cast<std::uint32_t>(file_.size());
  file_.insert(file_.end(), bytes.begin(), bytes.end());
  proc_.files->reference = holding(file_, "list");
  const std::uint16_t other = 8;
  for (const std::int32_t filter : {0, 1, 256}) {
    std::int32_t count = 0;
    ambgsStreetMatch(bytes, &other, filter, &count);
    EXPECT_EQ(count, filter == 0 ? 1 : 0) << filter;
    count = 0;
    ambgsStreetMatchOff(at, &other, filter, &count);
    EXPECT_EQ(count, filter == 0 ? 1 : 0) << filter;
  }
}

TEST_F(StreetLookups, FailedCacheReadLeavesTheLength) {
  open();
  buildCache(64, 2);
  proc_.files->reference = unseekable();
  std::int32_t length = 55;
  EXPECT_EQ(dbGetStreetNameUSPSCacheOffwc(0, &length, &proc_), nullptr);
  EXPECT_EQ(length, 55);
}

TEST(RemoveSpace, BlanksMoveBehindTheNewTerminator) {
  char text[] = "  A B ";
  removeSpace(text);
  EXPECT_EQ(std::string(text, sizeof text), std::string("AB\0    ", 7));
  char none[] = "AB";
  removeSpace(none);
  EXPECT_STREQ(none, "AB");
  char blanks[] = "   ";
  removeSpace(blanks);
  EXPECT_EQ(std::string(blanks, sizeof blanks), std::string("\0   ", 4));
  char empty[] = "";
  removeSpace(empty);
  EXPECT_STREQ(empty, "");
}

}  // namespace

}  // namespace statecut::test
