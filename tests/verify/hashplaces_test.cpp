// The places of names in a source's hash give the hash of a cut that searching for every name
// gives.

#include "verify/hashplaces.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "fixture.h"
#include "support/counts.h"
#include "support/randomdb.h"
#include "verify/cutchecks.h"

namespace statecut::test {

namespace {

using verify::HashPlaces;
using verify::TableId;

class Places : public testing::Test {
 protected:
  verify::Pair open(const PairBytes& bytes) {
    writeWholeFile(folder_.file("ref"), bytes.ref);
    writeWholeFile(folder_.file("rng"), bytes.rng);
    std::string error;
    verify::Pair pair = verify::Pair::open(folder_.file("ref"), folder_.file("rng"), error);
    EXPECT_EQ(error, "");
    return pair;
  }

  // True when the pair could be compared: its cut to the states has the same hash either way.
  bool compare(const PairBytes& bytes, const std::vector<std::string>& states) {
    const verify::Pair source = open(bytes);
    if (!verify::sourceProblem(source).empty()) return false;
    const HashPlaces places = verify::findHashPlaces(source);
    HashPlaces none = places;
    for (std::vector<HashPlaces::Place>* all : {&none.cities, &none.phonetics})
      std::fill(all->begin(), all->end(), HashPlaces::kSearch);
    const verify::DerivedCut cut = verify::deriveCut(source, states);
    EXPECT_EQ(verify::renumberedHash(source, places, cut.nameMap, cut.phoneticMap),
              verify::renumberedHash(source, none, cut.nameMap, cut.phoneticMap));
    for (const auto* all : {&places.cities, &places.phonetics})
      for (const HashPlaces::Place place : *all)
        ++(place == HashPlaces::kSearch ? searched_ : place == HashPlaces::kNone ? lost_ : placed_);
    return true;
  }

  std::uint64_t placed_ = 0, searched_ = 0, lost_ = 0;

 private:
  TempDir folder_;
};

TEST_F(Places, OfASoundPairAreThoseOfAllNames) {
  ASSERT_TRUE(compare(bytesOf(soundModel()), {"TX", "VT"}));
  EXPECT_GT(placed_, 50U);
  EXPECT_LE(lost_, 2U);  // the blank records
}

TEST_F(Places, OfOddPairsGiveTheSameHash) {
  std::uint64_t compared = 0;
  for (std::uint64_t seed = 0; seed < (longRun() ? 2000 : 100); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const RandomCase made = makeRandomCase(seed);
    if (!made.ref || !made.rng || made.ref->size() < RefControlRec::size ||
        made.rng->size() < RngControlRec::size)
      continue;
    compared += compare({*made.ref, *made.rng}, {"TX", "OK", "GA"}) ? 1 : 0;
  }
  EXPECT_GT(compared, 20U);
}

// Entries of other names, numbers that lead elsewhere, chains into each other, names that stand
// there twice.
TEST_F(Places, OfADamagedHashGiveTheSameHash) {
  const PairBytes sound = bytesOf(soundModel());
  constexpr TableId kDamaged[] = {TableId::HashTable, TableId::HashOverflow, TableId::CityNames,
                                  TableId::CityPhonetics};
  std::vector<verify::TablePlace> places;
  {
    const verify::Pair pair = open(sound);
    for (const TableId id : kDamaged) places.push_back(pair.place(id));
  }
  for (std::uint64_t seed = 0; seed < (longRun() ? 2000 : 100); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    builder::Random random(seed);
    PairBytes damaged = sound;
    for (std::size_t i = 0; i < places.size(); ++i) {
      const std::ptrdiff_t width = verify::tableDef(kDamaged[i]).width;
      const auto records = static_cast<std::uint32_t>(places[i].bytes) / width;
      const auto record = [&] {
        return damaged.ref.begin() + places[i].rba +
               random.below(static_cast<std::uint32_t>(records)) * width;
      };
      for (std::uint32_t copies = random.below(30); copies > 0; --copies) {
        const auto from = record(), to = record();
        std::copy(from, from + width, to);
      }
    }
    for (std::uint32_t i = random.below(30); i > 0; --i)
      damaged
          .ref[places[i % 2].rba + random.below(static_cast<std::uint32_t>(places[i % 2].bytes))] ^=
          1;
    ASSERT_TRUE(compare(damaged, {"TX", "VT"}));
  }
  EXPECT_GT(placed_, 1000U);
  EXPECT_GT(searched_, 100U);
}

}  // namespace

}  // namespace statecut::test
