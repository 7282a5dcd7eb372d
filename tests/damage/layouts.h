#pragma once
// The fields of the records of every table, by their places in a pair.

#include <utility>
#include <vector>

#include "damages.h"
#include "dbfiles/controlrec.h"
#include "format/directory.h"
#include "tables/rows.h"

namespace statecut::test {

enum class Choice : std::uint8_t { kThree, kAll };  // first, middle and last record, or all

void addControlFields(const PairImage& pair, std::vector<Field>& fields);
void addTableFields(const PairImage& pair, format::TableId id, Choice choice,
                    std::vector<Field>& fields);

// Start and bytes of the areas of a range file.
std::vector<std::pair<std::uint64_t, std::uint64_t>> rangeAreas(const Bytes& rng);

}  // namespace statecut::test
