#pragma once
// The laws of a cut. Each function returns the first few breaches in words, empty when the law
// holds; what the format or the cut prescribes against a law stands with it as a predicate.

#include <cstdint>
#include <string>
#include <vector>

#include "laws/exceptions.h"
#include "laws/pair.h"
#include "lookup/variantsession.h"

namespace statecut::test {

// What a list of states selects in a source, found by reading the model once.
struct Selection {
  Selection(const Source& of, const States& list);  // an empty list means all

  [[nodiscard]] bool chosen(const std::string& state) const;
  // Record 0 is never kept: its key means that there is no such ZIP code.
  [[nodiscard]] bool zipKept(std::size_t key) const;
  // A city is in the cut when a kept name leads to it; key 0 is none.
  [[nodiscard]] bool cityKept(std::size_t key) const { return keptCities[key]; }

  const Source& source;
  States states;
  std::vector<std::uint32_t> names;  // source position to position in the cut, 0 = dropped
  std::vector<std::uint32_t> phonetics;
  std::vector<bool> keptCities;
};

// Gathers breaches of one law.
class Breaches {
 public:
  void add(const std::string& what) {
    if (++count_ <= kShown) text_ += "  " + what + "\n";
  }
  void unless(bool holds, const std::string& what) {
    if (!holds) add(what);
  }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  static constexpr int kShown = 5;
  int count_ = 0;
  std::string text_;
};

// The cut of a pair by a list of states as a user would give it; other runs are held against it.
struct Baseline {
  Baseline(const Pair& of, const States& by);

  const Pair& pair;
  const States& list;
  const CutRun run;
};

// Of any pair, sound or not (laws_list.cpp).
std::string runEndsAndHarmsNoInput(const Baseline& base);
std::string orderAndCaseDoNotMatter(const Baseline& base, std::uint64_t seed);
std::string repeatsAddToTheNamesByStateAlone(const Baseline& base);
std::string stampIsAllThatTheEpochSets(const Baseline& base);
std::string namesAndFoldersChangeTheLogAlone(const Baseline& base);

// Of a sound pair: what the files hold (laws_content.cpp).
std::string allStatesKeepEverything(const Source& source);
std::string cutIsNotCutAgain(const Pair& made, const States& list);
std::string keptZipCodesKeepTheirPartitions(const Selection& chosen, const Pair& made);
std::string sharedPartitionsAreKept(const Selection& chosen, const Pair& made);
std::string namesAreThoseOfTheStates(const Selection& chosen, const Pair& made);
std::string unionKeepsWhatEitherKeeps(const Baseline& base, const States& others);

// Of a sound pair: what the lookups answer (laws_lookup.cpp).
std::string keptAnswersStay(const Selection& chosen, const Pair& made, const Variant& variant);
std::string variantsAgree(const Pair& made, const Variant& variant, std::uint64_t seed);

// The records by state of a cut.
FileBytes namesByState(const Pair& pair);
// What a list with repeats leaves there: all records sorted, as many as without repeats.
FileBytes namesByStateWithRepeats(const Pair& source, const States& list, std::uint32_t names);

}  // namespace statecut::test
