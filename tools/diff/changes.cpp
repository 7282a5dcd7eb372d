#include "diff/changes.h"

namespace statecut::diff {

namespace {

bool noNames(const Names& names) { return names.added.empty() && names.dropped.empty(); }

}  // namespace

bool Changes::none() const {
  return zipsAdded.empty() && zipsDropped.empty() && zipsMoved.empty() && noNames(cities) &&
         citiesRenamed.empty() && otherNamesAdded.empty() && otherNamesDropped.empty() &&
         noNames(streets) && noNames(firms) && noNames(streetStandards) &&
         noNames(streetPhonetics) && noNames(cityPhonetics) && partitions.empty() && tables.empty();
}

std::map<std::string_view, PartitionCounts> Changes::partitionsByState() const {
  std::map<std::string_view, PartitionCounts> states;
  for (const PartitionChange& change : partitions) {
    PartitionCounts& counts = states[change.state];
    if (change.change == Change::Added) ++counts.added;
    if (change.change == Change::Dropped) ++counts.dropped;
    if (change.change == Change::Changed) ++counts.changed;
  }
  return states;
}

}  // namespace statecut::diff
