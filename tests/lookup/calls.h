#pragma once
// The calls that the suite makes on a database.

#include <cstdint>
#include <vector>

#include "call.h"

namespace statecut::test {

// Keys in and around every range, names that are there, changed names, prefixes, patterns: at most
// about `most` keys or names a table, chosen by the seed. Calls of one operation stand together.
std::vector<Call> callsOn(const Bytes& file, std::uint64_t seed, std::size_t most);

}  // namespace statecut::test
