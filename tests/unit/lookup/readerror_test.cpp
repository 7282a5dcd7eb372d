// Lookups on disk whose file cannot be read, or could not be read before.

#include <cerrno>
#include <functional>

#include "dbfiles/apiutil.h"
#include "hash/namehash.h"
#include "lookupfixture.h"

namespace statecut::test {
namespace {

struct Lookup {
  const char* name;
  std::function<bool()> other;  // finds something else, and so fills the buffers
  std::function<bool()> asked;  // whether it finds
};

class ReadError : public SmallDatabase {
 protected:
  void start() {
    open();
    useOff();
    sound_ = proc_.files->reference;
    city_.set(CityDataRow::multiZipRbaKey, 1);
    zip_.set(ZipDataRow::cityKeysCount, 3);
    zip_.set(ZipDataRow::cityKeysIndex, 2);
    zip_.set(ZipDataRow::finMultiZipKey, 2);
    single_.set(ZipDataRow::cityKeysCount, 1);
  }

  // In the first, every read fails; in the second, one did before.
  void refuse() { proc_.files->reference = unreadable(); }
  void spoil() {
    unsigned char byte = 0;
    refuse();
    dbReadFile(proc_.files->reference, 0, 1, &byte, &proc_);
    ASSERT_TRUE(streamError(proc_.files->reference));
  }

  bool found(const void* result) { return result != nullptr; }
  bool found(std::int32_t index) { return index != -1; }
  bool variation(const char* name, std::int32_t kind) {
    std::int8_t flag = 5;
    std::int32_t count = 0;
    const auto* keys = dbFindStreetVar(name, static_cast<std::int32_t>(std::strlen(name)), nullptr,
                                       0, kind, &flag, &count);
    if (keys == nullptr) {
      EXPECT_EQ(flag, 5) << "untouched";
      EXPECT_EQ(count, 0);
    }
    return keys != nullptr;
  }
  bool byName(FindCityData* find, const char* name) {
    CityNameRow* row = nullptr;
    std::uint32_t value = 0;
    std::uint32_t key = 0;
    return find(&row, "TX", name, &value, &key, static_cast<std::int32_t>(std::strlen(name))) !=
           nullptr;
  }
  bool phoneticOf(const char* code) {
    std::int32_t count = 0;
    std::int32_t index = 7;
    const bool there = dbFindCityPhOff("TX", code, static_cast<std::int32_t>(std::strlen(code)),
                                       &count, &index) != nullptr;
    if (!there) {
      EXPECT_EQ(index, -1);
    }
    return there;
  }
  bool name(GetName* get, std::uint32_t offset) {
    std::int32_t length = 77;
    const bool there = get(offset, &length, &proc_) != nullptr;
    if (!there) {
      EXPECT_EQ(length, 77) << "untouched";
    }
    return there;
  }

  std::vector<Lookup> lookups() {
    const auto both = [](const char* name, auto call, auto other, auto asked) {
      return Lookup{name, [call, other] { return call(other); },
                    [call, asked] { return call(asked); }};
    };
    using Text = const char*;
    return {
        both(
            "zip index", [this](int zip) { return found(dbGetZipIndexOff(zip)); }, 1, 73301),
        both(
            "zip data", [this](int zip) { return found(dbGetZipDataOff(zip, &key_)); }, 1, 73301),
        both(
            "zip by key", [this](int key) { return found(dbGetZipDataFromKeyOff(key)); }, 1, 2),
        both(
            "city keys", [this](auto* zip) { return found(dbGetCityKeysPtrOff(zip)); }, &zip_,
            &zip_),
        both(
            "own city key", [this](auto* zip) { return found(dbGetCityKeysPtrOff(zip)); }, &zip_,
            &single_),
        both(
            "finance", [this](int at) { return found(dbGetMultiZipFinRBAOff(at)); }, 1, 2),
        both(
            "finance of a zip", [this](auto* zip) { return found(dbGetZipFinMltZpRBAOff(zip)); },
            &zip_, &zip_),
        both(
            "kept list", [this](unsigned at) { return found(dbGetMultiZipsOff(2, at)); }, 2U, 2U),
        both(
            "list", [this](unsigned at) { return found(dbGetMultiZipsOff(2, at)); }, 2U, 1U),
        both(
            "city name", [this](int key) { return found(dbGetCityUSPSOff(key)); }, 1, 2),
        both(
            "city name wc", [this](int key) { return found(dbGetCityUSPSOffwc(key)); }, 1, 2),
        both(
            "city index", [this](Text key) { return found(dbFindCityNameIdxOff(key, 8, &proc_)); },
            "TXSPRING", "TXAUSTIN"),
        both(
            "city hash", [this](Text key) { return found(dbFindCityHashOff("TX", key, 6)); },
            "SPRING", "AUSTIN"),
        both(
            "city", [this](Text key) { return found(dbFindCityOff("TX", key, 6)); }, "SPRING",
            "AUSTIN"),
        both(
            "prefix index", [this](Text key) { return found(dbFindTruncCityIdxOff("TX", key, 3)); },
            "WAC", "AUS"),
        both(
            "prefix", [this](Text key) { return found(dbFindTruncCityOff("TX", key, 3)); }, "WAC",
            "AUS"),
        both(
            "search",
            [this](Text key) { return found(seqSearchCityOff("TX", key, startsWith, 0)); }, "WAC",
            "AUS"),
        both(
            "city data by name", [this](Text key) { return byName(dbFindCityDataOff, key); },
            "SPRING", "AUSTIN"),
        both(
            "city data by prefix", [this](Text key) { return byName(dbFindTruncCityDataOff, key); },
            "WAC", "AUS"),
        both(
            "city data", [this](int key) { return found(dbGetCityDataOff(key)); }, 1, 2),
        both(
            "zip keys", [this](unsigned at) { return found(dbGetCityZipKeyPtrOff(1, at)); }, 1U,
            2U),
        both(
            "finance keys", [this](unsigned at) { return found(dbGetCityFinKeyPtrOff(1, at)); }, 1U,
            2U),
        both(
            "multi-ZIP", [this](auto* city) { return found(dbGetCityMultiZipRBADataOff(city)); },
            &city_, &city_),
        both(
            "phonetic index", [this](Text key) { return found(findCityPhIdxOff(key, 6, &proc_)); },
            "TXASTN", "TXASTN"),
        both(
            "phonetic", [this](Text code) { return phoneticOf(code); }, "WK", "ASTN"),
        both(
            "phonetic by index", [this](int at) { return found(dbGetCityPhOff(at)); }, 1, 2),
        both(
            "street", [this](Text key) { return found(dbFindStreetKeyOff(key, 5, &proc_)); },
            "ALPHA", "ALPHA"),
        both(
            "street name", [this](unsigned at) { return name(dbGetStreetNameUSPSCacheOff, at); },
            0U, 6U),
        both(
            "street name wc",
            [this](unsigned at) { return name(dbGetStreetNameUSPSCacheOffwc, at); }, 0U, 6U),
        both(
            "variation index",
            [this](Text key) { return found(dbFindStreetVarIdxOff(4, key, 2, &proc_)); }, "MN",
            "BT"),
        both(
            "variation", [this](Text key) { return variation(key, 0); }, "BT", "MN"),
        both(
            "list of a variation", [this](Text key) { return variation(key, 0); }, "MN", "BT"),
        both(
            "firm", [this](Text key) { return found(dbFindFirmOff(key, 4, &proc_)); }, "ACME",
            "ACME"),
        both(
            "firm name", [this](unsigned at) { return name(dbGetFirmNameCacheOff, at); }, 5U, 0U),
        both(
            "general delivery", [this](unsigned key) { return found(dbGetGenrlDelvryOff(key)); },
            1U, 2U)};
  }

  void expectNothingFound() {
    for (const Lookup& lookup : lookups()) {
      SCOPED_TRACE(lookup.name);
      for (const bool before : {false, true}) {
        proc_.files->reference = sound_;
        ASSERT_TRUE(lookup.other());
        ASSERT_FALSE(lookupsFailed());
        before ? spoil() : refuse();
        // A read that is not needed succeeds in a file that was not read yet.
        const bool needsNone = std::strcmp(lookup.name, "own city key") == 0 ||
                               std::strcmp(lookup.name, "kept list") == 0 || !isEmpty();
        if (before || !needsNone) {
          EXPECT_FALSE(lookup.asked()) << (before ? "behind an error" : "at the error");
          int error = 0;
          EXPECT_TRUE(lookupsFailed(&error));
          EXPECT_EQ(error, EISDIR);
          EXPECT_FALSE(lookup.asked()) << "again";
        }
        proc_.files->reference = sound_;
        EXPECT_TRUE(lookup.asked()) << "on a file that can be read";
      }
    }
  }
  // Whether there is no cache, in which the asked bytes may lie already.
  [[nodiscard]] bool isEmpty() const { return proc_.cache == nullptr; }

  Stream* sound_ = nullptr;
  std::uint32_t key_ = 0;
  CityDataRow city_{};
  ZipDataRow zip_{};
  ZipDataRow single_{};
};

TEST_F(ReadError, NoLookupOnDiskFindsAnything) {
  start();
  expectNothingFound();
}

TEST_F(ReadError, NoLookupThroughTheCacheFindsAnything) {
  start();
  buildCache(64, 2);
  expectNothingFound();
  buildCache(4096, 8);
  expectNothingFound();
}

TEST_F(ReadError, ABlockThatCouldNotBeReadIsNotKept) {
  start();
  buildCache(64, 1);
  ASSERT_EQ(nameOf(dbGetCityUSPSOffwc(2)), "AUSTIN");
  refuse();
  EXPECT_EQ(dbGetCityUSPSOffwc(5), nullptr);
  EXPECT_TRUE(lookupsFailed());
  proc_.files->reference = sound_;
  EXPECT_FALSE(lookupsFailed());
  EXPECT_EQ(nameOf(dbGetCityUSPSOffwc(5)), "WACO");
  EXPECT_EQ(nameOf(dbGetCityUSPSOffwc(2)), "AUSTIN");
}

TEST_F(ReadError, AFileThatCannotSeekGivesNoAnswer) {
  start();
  for (const Lookup& lookup : lookups()) {
    if (std::strcmp(lookup.name, "own city key") == 0 || std::strcmp(lookup.name, "kept list") == 0)
      continue;  // read nothing
    SCOPED_TRACE(lookup.name);
    proc_.files->reference = sound_;
    ASSERT_TRUE(lookup.other());
    proc_.files->reference = unseekable();
    EXPECT_FALSE(lookup.asked());
  }
}

TEST_F(ReadError, AShortReadAtTheEndOfTheFileIsNoFailure) {
  start();
  ASSERT_NE(dbGetGenrlDelvryOff(1), nullptr);
  const GeneralDeliveryRow first = *dbGetGenrlDelvryOff(1);
  record().set(RefControlRec::generalDeliveryRba, static_cast<std::uint32_t>(file_.size()) + 100);
  const GeneralDeliveryRow* kept = dbGetGenrlDelvryOff(2);
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(kept->bytes, first.bytes) << "the buffer keeps what was there";
  EXPECT_FALSE(lookupsFailed());
}

TEST_F(ReadError, NoFileIsNoFailure) {
  pProcObj = nullptr;
  EXPECT_FALSE(lookupsFailed());
  pProcObj = &proc_;
  EXPECT_FALSE(lookupsFailed());
}

}  // namespace
}  // namespace statecut::test
