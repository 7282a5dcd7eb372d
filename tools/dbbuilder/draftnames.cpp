#include <algorithm>

#include "dbbuilder/draft.h"
#include "dbbuilder/words.h"

namespace statecut::builder {

namespace {

constexpr std::uint32_t mostScfs = 6;

Candidate makeCandidate(const Draft& draft, std::uint32_t street, bool anyScf, Random& random) {
  Candidate candidate{street, {}, {}};
  if (anyScf) return candidate;
  const auto known = static_cast<std::uint32_t>(draft.places.size() - 1);
  for (std::uint32_t left = random.between(1, mostScfs); left > 0; --left)
    candidate.scfs.push_back(zipPrefix(draft.places[1 + random.below(known)].zip));
  std::sort(candidate.scfs.begin(), candidate.scfs.end());
  candidate.scfs.erase(std::unique(candidate.scfs.begin(), candidate.scfs.end()),
                       candidate.scfs.end());
  return candidate;
}

template <typename MakeKey>
std::vector<Variation> makeVariations(const Draft& draft, std::uint64_t step, MakeKey makeKey) {
  constexpr std::size_t mostCandidates = 400;  // lookups collect 500 streets at most
  std::map<std::string, std::vector<std::uint32_t>> groups;
  const std::vector<std::string>& streets = draft.model.streetNames;
  for (std::uint32_t i = 0; i < streets.size(); ++i) groups[makeKey(streets[i])].push_back(i);
  Random random = draft.random(step);
  std::vector<Variation> variations;
  std::size_t ambiguous = 0;
  for (const auto& [key, group] : groups) {
    Variation variation;
    variation.name = key;
    // Every other ambiguous list has a street that occurs anywhere: one without SCF keys.
    const bool hasAnyScf = group.size() > 1 && ambiguous++ % 2 == 0;
    for (std::size_t i = 0; i < std::min(group.size(), mostCandidates); ++i)
      variation.candidates.push_back(makeCandidate(draft, group[i], hasAnyScf && i == 1, random));
    variations.push_back(std::move(variation));
  }
  return variations;
}

}  // namespace

void addNames(Draft& draft) {
  constexpr std::size_t longestKey = 28;
  const ProfileOptions& options = draft.options;
  const std::uint64_t seed = draft.random(30).next();
  draft.model.streetNames =
      makeStreetNames(std::clamp(options.streets, minStreets, maxStreets), seed);
  draft.model.firmNames = makeFirmNames(std::clamp(options.firms, 1U, maxFirms), seed);
  draft.model.streetStandards =
      makeVariations(draft, 31, [](const std::string& name) { return standardForm(name); });
  draft.model.streetPhonetics = makeVariations(
      draft, 32, [](const std::string& name) { return phoneticKey(name, longestKey); });
}

}  // namespace statecut::builder
