// The index of names in memory: to every name it gives the answer of the file's index.

#include "hash/nameindex.h"

#include <algorithm>
#include <set>

#include "base/le.h"
#include "base/memory.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/random.h"
#include "dbbuilder/writer.h"
#include "hash/findname.h"
#include "hash/namehash.h"
#include "support/randomdb.h"
#include "unit/hash/indexfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;
using builder::Random;
using Ref = RefControlRec;

constexpr std::uint32_t kTypes = 6;

// How the table of a type holds names, by the format.
struct Form {
  SlotNumber slot;
  std::size_t rbaAt;
  std::size_t boundAt;
  std::uint32_t unit;
  std::uint32_t lengthAt;
  std::uint32_t mask;
  std::uint32_t most;
  std::uint32_t nameAt;
  std::uint32_t added;
};
constexpr Form kForms[kTypes] = {
    {kSlotFirms, Ref::firmsRba.at, Ref::firmsBytes.at, 1, 0, 0xFF, 127, 1, 0},
    {kSlotStreetNames, Ref::streetNamesRba.at, Ref::streetNamesBytes.at, 1, 0, 0xFF, 127, 1, 0},
    {kSlotCityNames, Ref::cityNamesRba.at, Ref::cityNamesCount.at, 34, 3, 0xFF, 255, 4, 2},
    {kSlotStreetStandards, Ref::streetStandardsRba.at, Ref::streetStandardsBytes.at, 1, 4, 0x7F,
     127, 5, 0},
    {kSlotStreetPhonetics, Ref::streetPhoneticsRba.at, Ref::streetPhoneticsBytes.at, 1, 4, 0x7F,
     127, 5, 0},
    {kSlotCityPhonetics, Ref::cityPhoneticsRba.at, Ref::cityPhoneticsCount.at, 26, 25, 0xFF, 255, 2,
     2}};

class IndexOfNames : public IndexFixture {
 protected:
  void load(const builder::Model& model) {
    const Bytes file = builder::referenceFile(model).bytes;
    std::copy_n(file.begin(), Ref::size, record.bytes.begin());
    const auto table = [&](SlotNumber slot, std::size_t rbaAt, std::size_t bytes) {
      const auto from = file.begin() + static_cast<std::ptrdiff_t>(word(rbaAt));
      setTable(slot, Bytes(from, from + static_cast<std::ptrdiff_t>(bytes)));
    };
    for (const Form& form : kForms)
      table(form.slot, form.rbaAt, std::size_t{form.unit} * word(form.boundAt));
    table(kSlotHashTable, Ref::hashTableRba.at, std::size_t{7} * word(Ref::hashTableCount.at));
    table(kSlotHashOverflow, Ref::hashOverflowRba.at,
          std::size_t{6} * word(Ref::hashOverflowCount.at));
    refPointers[kSlotHashMask] = RefSlot{};
  }

  [[nodiscard]] std::uint32_t word(std::size_t at) const {
    return le::get<4>(record.bytes.data() + at);
  }
  [[nodiscard]] std::uint64_t tableBytes(std::uint32_t type) const {
    return std::uint64_t{kForms[type].unit} * word(kForms[type].boundAt);
  }
  [[nodiscard]] NameSource source(std::uint32_t type) const {
    const std::uint32_t slots = word(Ref::hashTableCount.at);
    return {
        {refPointers[kSlotHashTable].table, std::size_t{7} * slots},
        {refPointers[kSlotHashOverflow].table, std::size_t{6} * word(Ref::hashOverflowCount.at)},
        slots - 1,
        {refPointers[kForms[type].slot].table, tableBytes(type) + kTableSlack},
        word(kForms[type].boundAt),
        type};
  }

  // Every name that a number of the table can stand for, sound or not.
  [[nodiscard]] std::set<std::string> namesOf(std::uint32_t type) const {
    const Form& form = kForms[type];
    const unsigned char* table = refPointers[form.slot].table;
    std::set<std::string> names;
    for (std::uint32_t number = 0; number < word(form.boundAt); ++number) {
      const unsigned char* entry = table + std::size_t{number} * form.unit;
      const std::uint32_t held = entry[form.lengthAt] & form.mask;
      if (held <= form.most)
        names.emplace(reinterpret_cast<const char*>(entry) + form.nameAt, held + form.added);
    }
    return names;
  }

  // The names for which the index, by itself and behind dbHashFind, does not answer as the file's
  // does; `found` counts the hits.
  std::string differences(std::uint32_t type, std::size_t* found) {
    const NameIndex index = NameIndex::build(source(type));
    dbHashDropIndexes();  // the tables are changed in place
    if (!index || !dbHashIndexNames(type, nullptr)) return "no index";
    Random random(type);
    std::string text;
    const auto compare = [&](const std::string& name) {
      const auto* bytes = reinterpret_cast<const unsigned char*>(name.data());
      const auto length = static_cast<std::int32_t>(name.size());
      const std::uint32_t theirs = findHashedName(processTables(), bytes, length, type);
      if (theirs != kNotFound) ++*found;
      const bool isLong = length > NameIndex::longest(type);
      if (find(name, type) != theirs || (!isLong && index.find(bytes, length) != theirs))
        text +=
            "type " + std::to_string(type) + ", \"" + name + "\": " + std::to_string(theirs) + "\n";
    };
    for (const std::string& name : namesOf(type)) {
      compare(name);
      std::string near = name.empty() ? "A" : name;
      char& c = near[random.below(static_cast<std::uint32_t>(near.size()))];
      c = static_cast<char>(c ^ (1 << random.below(8)));
      compare(near);
      compare(name + "A");
      if (!name.empty()) compare(name.substr(0, name.size() - 1));
    }
    compare("");
    return text;
  }

  std::string allDifferences(std::size_t* found) {
    std::string text;
    for (std::uint32_t type = 0; type < kTypes; ++type) text += differences(type, found);
    return text;
  }

  // A byte of the index or of a name table.
  void damage(Random& random) {
    if (random.percent(70)) {
      const bool slots = random.percent(50);
      const std::uint32_t bytes =
          slots ? 7 * word(Ref::hashTableCount.at) : 6 * word(Ref::hashOverflowCount.at);
      unsigned char* table = refPointers[slots ? kSlotHashTable : kSlotHashOverflow].table;
      if (bytes > 0) table[random.below(bytes)] = static_cast<unsigned char>(random.below(256));
      return;
    }
    const std::uint32_t type = random.below(kTypes);
    const auto bytes = static_cast<std::uint32_t>(tableBytes(type));
    if (bytes > 0)
      refPointers[kForms[type].slot].table[random.below(bytes)] =
          static_cast<unsigned char>(random.below(256));
  }
};

TEST_F(IndexOfNames, AnswersAsTheFilesIndexOnSoundDatabases) {
  for (const bool small : {false, true}) {
    load(small ? builder::makeModel(builder::smallPlaces(), builder::smallOptions())
               : builder::makeModel(builder::tinyPlaces(), builder::tinyOptions()));
    std::size_t found = 0;
    EXPECT_EQ(allDifferences(&found), "");
    EXPECT_GT(found, word(Ref::cityNamesCount.at));
  }
}

TEST_F(IndexOfNames, AnswersAsTheFilesIndexOnOddDatabases) {
  std::size_t found = 0;
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    Random random(seed);
    std::vector<std::string> states;
    load(test::randomModel(random, states));
    EXPECT_EQ(allDifferences(&found), "") << "seed " << seed;
  }
  EXPECT_GT(found, 1000U);
}

TEST_F(IndexOfNames, AnswersAsTheFilesIndexOnDamagedIndexesAndNames) {
  std::size_t found = 0;
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    Random random(seed);
    load(builder::makeModel(builder::tinyPlaces(), builder::tinyOptions()));
    for (std::uint32_t left = random.between(1, 400); left > 0; --left) damage(random);
    for (std::uint32_t type = 0; type < kTypes; ++type) {
      const NameIndex index = NameIndex::build(source(type));
      if (!index) continue;
      EXPECT_EQ(differences(type, &found), "") << "seed " << seed;
    }
  }
  EXPECT_GT(found, 1000U);
}

TEST_F(IndexOfNames, AnswersAsTheFilesIndexWhenNamesWereRenumberedAndDropped) {
  load(builder::makeModel(builder::tinyPlaces(), builder::tinyOptions()));
  Random random(1);
  const std::set<std::string> names = namesOf(kCityNames);
  for (const std::string& name : names)
    if (random.percent(60)) zap(name, kCityNames, random.percent(80) ? 0 : random.below(60));
  std::size_t found = 0;
  EXPECT_EQ(allDifferences(&found), "");
  EXPECT_GT(found, 0U);
}

TEST_F(IndexOfNames, TheFirstOfEqualNamesIsFound) {
  makeIndex(1, 3);
  setTable(kSlotFirms, packed({"ACME", "ACME", "BOLTS"}));
  record.set(Ref::firmsBytes, 16);
  setSlot(0, 3, 0, 0);
  setOverflow(0, checkOf("ACME", kFirmNames), 5);
  setOverflow(1, checkOf("ACME", kFirmNames), 0);
  setOverflow(2, checkOf("BOLTS", kFirmNames), 10);
  ASSERT_EQ(find("ACME", kFirmNames), 5U);
  std::size_t found = 0;
  EXPECT_EQ(differences(kFirmNames, &found), "");
}

// Chains that share entries can make a small file hold any number of them.
TEST_F(IndexOfNames, ChainsThatShareTooManyEntriesGiveNoIndex) {
  makeIndex(2, 4);
  setTable(kSlotFirms, packed({"ACME"}));
  record.set(Ref::firmsBytes, 5);
  setSlot(0, 3, 0, 0);
  EXPECT_TRUE(NameIndex::build(source(kFirmNames)));
  setSlot(1, 4, 0, 0);
  EXPECT_FALSE(NameIndex::build(source(kFirmNames)));
}

TEST_F(IndexOfNames, AnEmptyIndexFindsNothing) {
  makeIndex(4);
  setTable(kSlotFirms, {});
  const NameIndex index = NameIndex::build(source(kFirmNames));
  ASSERT_TRUE(index);
  EXPECT_EQ(index.find(reinterpret_cast<const unsigned char*>("ACME"), 4), kNotFound);
  EXPECT_EQ(index.find(nullptr, 4), kNotFound);
  EXPECT_EQ(index.find(reinterpret_cast<const unsigned char*>("ACME"), -1), kNotFound);
  NameSource unknown = source(kFirmNames);
  unknown.type = kTypes;
  EXPECT_FALSE(NameIndex::build(unknown));
}

}  // namespace
