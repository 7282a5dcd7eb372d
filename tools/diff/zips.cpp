#include <algorithm>

#include "diff/places.h"

namespace statecut::diff {

namespace {

Zip zipOf(const Comparison& comparison, const Release& release, std::uint32_t zip,
          std::uint32_t key) {
  return {zip, release.stateOf(key, comparison.byCity), release.citiesOf(key)};
}

// The same state, the same own city, and the same others in any order.
bool samePlace(const Comparison& comparison, const Zip& before, const Zip& after) {
  if (before.state != after.state || before.cities.size() != after.cities.size()) return false;
  if (before.cities.empty()) return true;
  std::vector<std::string_view> was, is = after.cities;
  for (const std::string_view city : before.cities) was.push_back(comparison.nameAfter(city));
  if (was.front() != is.front()) return false;
  std::sort(was.begin(), was.end());
  std::sort(is.begin(), is.end());
  return was == is;
}

}  // namespace

bool Comparison::wantsZip(const Release& release, std::uint32_t zipKey) const {
  return zipKey != 0 && (states.empty() || wants(release.stateOf(zipKey, release.isCut())));
}

void compareZips(const Comparison& comparison, Changes& changes) {
  for (std::uint32_t zip = 0; zip < format::kZipIndexEntries; ++zip) {
    const std::uint32_t was = comparison.before.zipKey(zip);
    const std::uint32_t is = comparison.after.zipKey(zip);
    if (was == 0 && is == 0) continue;
    const Zip before = was == 0 ? Zip{} : zipOf(comparison, comparison.before, zip, was);
    const Zip after = is == 0 ? Zip{} : zipOf(comparison, comparison.after, zip, is);
    if (!comparison.wantsZip(comparison.before, was) && !comparison.wantsZip(comparison.after, is))
      continue;
    if (was == 0)
      changes.zipsAdded.push_back(after);
    else if (is == 0)
      changes.zipsDropped.push_back(before);
    else if (!samePlace(comparison, before, after))
      changes.zipsMoved.push_back({before, after});
  }
}

}  // namespace statecut::diff
