#include "format/names.h"
#include "diff/differences.h"
#include "diff/tables.h"

namespace statecut::diff {

namespace {

std::vector<std::string_view> namesOf(const Comparison& comparison, const Release& release,
                                      unsigned type) {
  std::vector<std::string_view> names;
  (void)format::forEachName(
      type, release.table(format::tableOfType(type)), [&](std::uint64_t, std::string_view name) {
        if (!format::isRecordType(type) || comparison.wants(name.substr(0, 2)))
          names.push_back(name);
      });
  return names;
}

void compare(const Comparison& comparison, unsigned type, Names& names) {
  auto before = namesOf(comparison, comparison.before, type);
  auto after = namesOf(comparison, comparison.after, type);
  differences(before, after, names.added, names.dropped);
}

}  // namespace

void compareNames(const Comparison& comparison, Changes& changes) {
  compare(comparison, format::kCityPhoneticType, changes.cityPhonetics);
  if (!comparison.states.empty()) return;  // the others are of no state
  compare(comparison, 0, changes.firms);
  compare(comparison, 1, changes.streets);
  compare(comparison, 3, changes.streetStandards);
  compare(comparison, 4, changes.streetPhonetics);
}

}  // namespace statecut::diff
