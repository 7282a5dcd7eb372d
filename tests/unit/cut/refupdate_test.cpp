#include "cut/refupdate.h"

#include "base/le.h"
#include "hash/namehash.h"
#include "unit/cut/cutfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

// City names OK ADA, OK TULSA, TX DALLAS, TX WACO and as many phonetic keys, behind a blank record.
// All of them stand in overflow chains of one hash slot.
class RefUpdate : public CutFixture {
 protected:
  struct Name {
    const char* state;
    const char* name;
  };

  RefUpdate() {
    makeNames({{"", ""}, {"OK", "ADA"}, {"OK", "TULSA"}, {"TX", "DALLAS"}, {"TX", "WACO"}});
    makeByState({{"TX", "WACO"}, {"OK", "TULSA"}, {"TX", "DALLAS"}, {"OK", "ADA"}});
    makePhonetics({{"", ""}, {"OK", "D"}, {"OK", "TLS"}, {"TX", "DLS"}, {"TX", "WK"}});
    index();
  }

  void makeNames(const std::vector<Name>& given) {
    names = makeTable<CityNameRow>(kSlotCityNames, given.size());
    setWord(RefControlRec::cityNamesCount, static_cast<std::uint32_t>(given.size()));
    for (std::size_t i = 0; i < given.size(); ++i) {
      names[i].set(CityNameRow::cityKey, static_cast<std::uint32_t>(i));
      names[i].set(CityNameRow::nameLength,
                   static_cast<std::uint32_t>(std::char_traits<char>::length(given[i].name)));
      setText(names[i].text(CityNameRow::state), given[i].state);
      setText(names[i].text(CityNameRow::name), given[i].name);
    }
  }
  void makeByState(const std::vector<Name>& given) {
    byState = makeTable<CityByStateRow>(kSlotCityNamesByState, given.size());
    for (std::size_t i = 0; i < given.size(); ++i) {
      byState[i].set(CityByStateRow::cityKey, static_cast<std::uint32_t>(i));
      setText(byState[i].text(CityByStateRow::state), given[i].state);
      setText(byState[i].text(CityByStateRow::name), given[i].name);
    }
  }
  void makePhonetics(const std::vector<Name>& given) {
    phonetics = makeTable<CityPhoneticRow>(kSlotCityPhonetics, given.size());
    setWord(RefControlRec::cityPhoneticsCount, static_cast<std::uint32_t>(given.size()));
    for (std::size_t i = 0; i < given.size(); ++i) {
      phonetics[i].set(CityPhoneticRow::keyLength,
                       static_cast<std::uint32_t>(std::char_traits<char>::length(given[i].name)));
      setText(phonetics[i].text(CityPhoneticRow::state), given[i].state);
      setText(phonetics[i].text(CityPhoneticRow::key), given[i].name);
    }
  }

  void index() {
    auto* slot = makeTable<HashSlotRow>(kSlotHashTable, 1);
    overflow = makeTable<HashOverflowRow>(kSlotHashOverflow, 8);
    setWord(RefControlRec::hashTableCount, 1);
    setWord(RefControlRec::hashOverflowCount, 8);
    keepHashMask(1);
    slot->set(HashSlotRow::count, 8);
    for (std::uint32_t i = 1; i < 5; ++i) {
      link(i - 1, kCityNames, names[i].bytes.data() + 4, names[i].bytes[3] + 2, i);
      link(i + 3, kCityPhonetics, phonetics[i].bytes.data() + 2, phonetics[i].bytes[25] + 2, i);
    }
  }
  void link(std::uint32_t entry, std::uint32_t type, const unsigned char* name, std::int32_t length,
            std::uint32_t number) {
    const std::uint32_t hash = fnv_32_buf_backward(name, length, kFnvOffsetBasis + type);
    overflow[entry].set(HashOverflowRow::check, type | (hash >> 16));
    overflow[entry].set(HashOverflowRow::number, number);
  }

  std::int32_t cut(const std::vector<std::string>& states) {
    setStates(states);
    const std::int32_t status = createNewRefDb();
    return status != 0 ? status : updateRefDb();
  }
  std::vector<std::uint32_t> numbers() const {
    std::vector<std::uint32_t> all;
    for (int i = 0; i < 8; ++i) all.push_back(overflow[i].get(HashOverflowRow::number));
    return all;
  }
  std::vector<std::uint32_t> map(const std::uint32_t* from) const { return {from, from + 5}; }

  CityNameRow* names;
  CityByStateRow* byState;
  CityPhoneticRow* phonetics;
  HashOverflowRow* overflow;
};

using Numbers = std::vector<std::uint32_t>;

TEST_F(RefUpdate, NewTablesAreAnnouncedWithTheirSourceSizes) {
  EXPECT_EQ(createNewRefDb(), 0);
  EXPECT_EQ(log(), (std::vector<std::string>{
                       "INFO;dbaccess:0100;0;Info Msg ;                          New City Names - "
                       "required -        170 bytes",
                       "INFO;dbaccess:0115;0;Info Msg ;                 New City Names By State - "
                       "required -        136 bytes",
                       "INFO;dbaccess:0130;0;Info Msg ;                      New City Phonetics - "
                       "required -        130 bytes"}));
}

TEST_F(RefUpdate, NoNamesFailOnTheByStateTable) {
  ASSERT_EQ(createNewRefDb(), 0);
  log();
  keepTables();
  setWord(RefControlRec::cityNamesCount, 0);
  EXPECT_EQ(createNewRefDb(), -1);
  EXPECT_EQ(log().back(),
            "ERR;dbaccess:0121;0;Mem Alloc Err;Could not allocate memory for New City Names By "
            "State.");
}

TEST_F(RefUpdate, TablesTooLargeForMemoryFail) {
  setWord(RefControlRec::cityPhoneticsCount, 0x10000000);
  EXPECT_EQ(createNewRefDb(), -1);
  EXPECT_EQ(log().back(),
            "ERR;dbaccess:0136;0;Mem Alloc Err;Could not allocate memory for New City Phonetics.");
  keepTables();
  setWord(RefControlRec::cityNamesCount, 0x10000000);
  EXPECT_EQ(createNewRefDb(), -1);
  EXPECT_EQ(log().back(),
            "ERR;dbaccess:0106;0;Mem Alloc Err;Could not allocate memory for New City Names.");
}

TEST_F(RefUpdate, MapsTooLargeForMemoryFail) {
  ASSERT_EQ(createNewRefDb(), 0);
  sourceCityPhonetics = 0x20000000;
  EXPECT_EQ(updateRefDb(), -1);
  EXPECT_EQ(log().back(),
            "ERR;cutstate:1165;0;Mem Alloc Err;Could not allocate memory for City Ph Name Map.");
  keepTables();
  sourceCityNames = 0x20000000;
  EXPECT_EQ(updateRefDb(), -1);
  EXPECT_EQ(log().back(),
            "ERR;cutstate:1150;0;Mem Alloc Err;Could not allocate memory for City Name Map.");
}

TEST_F(RefUpdate, NoStateLeavesTheBlankRecordsAndUnlinksEveryName) {
  EXPECT_EQ(cut({}), 0);
  EXPECT_EQ(word(RefControlRec::cityNamesCount), 1u);
  EXPECT_EQ(word(RefControlRec::cityPhoneticsCount), 1u);
  EXPECT_EQ(numbers(), Numbers(8, 0));
  EXPECT_EQ(map(cityNameMap), Numbers(5, 0));
}

TEST_F(RefUpdate, FirstStateKeepsItsPositionsAndIsNotTouchedInTheIndex) {
  overflow[0].set(HashOverflowRow::check, 0);  // would not be found
  EXPECT_EQ(cut({"OK"}), 0);
  EXPECT_EQ(word(RefControlRec::cityNamesCount), 3u);
  EXPECT_EQ(map(cityNameMap), (Numbers{0, 1, 2, 0, 0}));
  EXPECT_EQ(numbers(), (Numbers{1, 2, 0, 0, 1, 2, 0, 0}));
}

TEST_F(RefUpdate, LaterStateMovesUpAndIsRenumbered) {
  EXPECT_EQ(cut({"TX"}), 0);
  EXPECT_EQ(map(cityNameMap), (Numbers{0, 0, 0, 1, 2}));
  EXPECT_EQ(map(cityPhNameMap), (Numbers{0, 0, 0, 1, 2}));
  EXPECT_EQ(numbers(), (Numbers{0, 0, 1, 2, 0, 0, 1, 2}));
  EXPECT_EQ(scCityNames[0].bytes, CityNameRow{}.bytes);
  EXPECT_EQ(scCityNames[1].bytes, names[3].bytes);
  EXPECT_EQ(scCityPhonetics[2].bytes, phonetics[4].bytes);
  EXPECT_EQ(log().size(), 3u);  // the announcements alone
}

TEST_F(RefUpdate, ByStateRecordsAreSortedByNameThenState) {
  EXPECT_EQ(cut({"OK", "TX"}), 0);
  const std::uint32_t order[] = {3, 2, 1, 0};  // ADA, DALLAS, TULSA, WACO
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_EQ(scCityNamesByState[i].bytes, byState[order[i]].bytes) << i;
}

TEST_F(RefUpdate, CitiesCompareByNameThenState) {
  CityByStateRow a{}, b{};
  setText(a.text(CityByStateRow::name), "ADA");
  setText(a.text(CityByStateRow::state), "TX");
  setText(b.text(CityByStateRow::name), "ADA");
  setText(b.text(CityByStateRow::state), "OK");
  a.set(CityByStateRow::cityKey, 1);
  EXPECT_EQ(compareCities(&a, &b), 'T' - 'O');
  b.bytes[5] = 0xE0;  // bytes are unsigned
  EXPECT_EQ(compareCities(&a, &b), 'D' - 0xE0);
  EXPECT_EQ(compareCities(&a, &a), 0);
}

TEST_F(RefUpdate, EqualByStateRecordsKeepTheirOrder) {
  makeByState({{"TX", "WACO"}, {"TX", "WACO"}, {"TX", "ADA"}, {"TX", "WACO"}});
  EXPECT_EQ(cut({"TX"}), 0);
  Numbers keys;
  for (int i = 0; i < 4; ++i) keys.push_back(scCityNamesByState[i].get(CityByStateRow::cityKey));
  EXPECT_EQ(keys, (Numbers{2, 0, 1, 3}));
}

TEST_F(RefUpdate, ByStateRecordWithoutNameIsWarnedOfAndKept) {
  makeByState({{"OK", "ADA"}, {"OK", "TULSA"}, {"OK", "ZOE"}, {"TX", "WACO"}});
  EXPECT_EQ(cut({"OK"}), 0);
  EXPECT_EQ(log().back(), "WARN;cutstate:1288;0;City Table;Problem finding all cities.");
  EXPECT_EQ(word(RefControlRec::cityNamesCount), 3u);
  EXPECT_EQ(scCityNamesByState[2].bytes, byState[2].bytes);
}

TEST_F(RefUpdate, StateGivenTwiceAppendsItsByStateRecordsAgain) {
  EXPECT_EQ(cut({"OK", "OK", "OK"}), 0);
  EXPECT_EQ(word(RefControlRec::cityNamesCount), 3u);
  EXPECT_EQ(map(cityNameMap), (Numbers{0, 1, 2, 0, 0}));
  EXPECT_EQ(log().back(), "WARN;cutstate:1288;0;City Table;Problem finding all cities.");
  Numbers keys;
  for (int i = 0; i < 6; ++i) keys.push_back(scCityNamesByState[i].get(CityByStateRow::cityKey));
  EXPECT_EQ(keys, (Numbers{3, 3, 3, 1, 1, 1}));
}

TEST_F(RefUpdate, SixtySixTimesTheSameStateStaysInItsTable) {
  EXPECT_EQ(cut(std::vector<std::string>(66, "TX")), 0);
  EXPECT_EQ(word(RefControlRec::cityNamesCount), 3u);
  EXPECT_EQ(scCityNamesByState[131].bytes, byState[0].bytes);
}

TEST_F(RefUpdate, LowerCaseStateMatchesNothing) {
  EXPECT_EQ(cut({"tx"}), 0);
  EXPECT_EQ(word(RefControlRec::cityNamesCount), 1u);
}

TEST_F(RefUpdate, MergeScanStopsAtTheFirstLaterState) {
  makeNames({{"", ""}, {"TX", "DALLAS"}, {"OK", "ADA"}, {"TX", "WACO"}, {"OK", "TULSA"}});
  EXPECT_EQ(cut({"OK", "TX"}), 0);
  EXPECT_EQ(map(cityNameMap), (Numbers{0, 1, 0, 2, 0}));
}

// The first record is not blank and its state is selected: one record more than the source has.
TEST_F(RefUpdate, FirstRecordOfASelectedStateIsKept) {
  makeNames({{"OK", "ABLE"}, {"OK", "ADA"}, {"OK", "TULSA"}, {"OK", "ZOE"}});
  makePhonetics({{"OK", "A"}, {"OK", "B"}});
  EXPECT_EQ(cut({"OK"}), 0);
  EXPECT_EQ(word(RefControlRec::cityNamesCount), 5u);
  EXPECT_EQ(word(RefControlRec::cityPhoneticsCount), 3u);
  EXPECT_EQ(cityNameMap[0], 1u);
  EXPECT_EQ(scCityNames[4].bytes, names[3].bytes);
  EXPECT_EQ(scCityPhonetics[2].bytes, phonetics[1].bytes);
}

TEST_F(RefUpdate, NoPhoneticsStillGiveTheBlankRecord) {
  makePhonetics({});
  EXPECT_EQ(cut({"OK"}), 0);
  EXPECT_EQ(word(RefControlRec::cityPhoneticsCount), 1u);
  EXPECT_EQ(scCityPhonetics[0].bytes, CityPhoneticRow{}.bytes);
}

// Names are renumbered in batches of 32.
TEST_F(RefUpdate, NamesOfMoreThanABatchAreAllRenumbered) {
  std::vector<std::string> texts;
  for (char c = 'A'; c < 'A' + 40; ++c) texts.push_back(std::string("N") + c);
  std::vector<Name> many = {{"", ""}};
  for (const std::string& text : texts) many.push_back({"OK", text.c_str()});
  many.push_back({"TX", "WACO"});
  keepTables();
  makeNames(many);
  makeByState({many.begin() + 1, many.end()});
  const std::vector<std::uint32_t> linked = {1, 2, 31, 32, 33, 34, 40, 41};
  for (std::uint32_t i = 0; i < linked.size(); ++i) {
    const auto& name = names[linked[i]];
    link(i, kCityNames, name.bytes.data() + 4, name.bytes[3] + 2, linked[i]);
  }
  EXPECT_EQ(cut({"TX"}), 0);
  EXPECT_EQ(numbers(), (Numbers{0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST_F(RefUpdate, NameMissingFromTheIndexIsNoError) {
  makeTable<HashSlotRow>(kSlotHashTable, 1);  // an empty slot
  EXPECT_EQ(cut({"TX"}), 0);
  EXPECT_EQ(word(RefControlRec::cityNamesCount), 3u);
}

TEST_F(RefUpdate, LongestNameLengthStaysInsideTheTable) {
  names[4].set(CityNameRow::nameLength, 255);
  phonetics[4].set(CityPhoneticRow::keyLength, 255);
  EXPECT_EQ(cut({"OK"}), 0);
}

}  // namespace
