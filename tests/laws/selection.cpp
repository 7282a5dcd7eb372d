#include <algorithm>
#include <iterator>

#include "laws/laws.h"
#include "run/statetable.h"

namespace statecut::test {

std::array<std::size_t, kExceptions>& exceptionTally() {
  static std::array<std::size_t, kExceptions> tally{};
  return tally;
}

namespace {

template <typename Record>
std::vector<std::uint32_t> positions(const std::vector<Record>& records, const Selection& chosen) {
  std::vector<std::uint32_t> map(records.size(), 0);
  std::uint32_t next = 1;
  for (std::size_t i = 0; i < records.size(); ++i)
    if (chosen.chosen(records[i].state)) map[i] = next++;
  return map;
}

}  // namespace

Selection::Selection(const Source& of, const States& list) : source(of), states(list) {
  if (states.empty())
    for (const auto& abbreviation : abvstates) states.emplace_back(abbreviation);
  names = positions(of.model.cityNames, *this);
  phonetics = positions(of.model.cityPhonetics, *this);
  keptCities.resize(of.model.cityData.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::size_t city = of.model.cityNames[i].cityKey;
    if (names[i] != 0 && city != 0 && city < keptCities.size()) keptCities[city] = true;
  }
}

bool Selection::chosen(const std::string& state) const {
  return std::find(states.begin(), states.end(), state) != states.end();
}

bool Selection::zipKept(std::size_t key) const {
  return key != 0 && chosen(source.model.zipBytes[key].state);
}

}  // namespace statecut::test
