#pragma once
// The calls on a database, in one variant: what differs from the oracle, and which differences
// between memory and file occurred.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "call.h"
#include "databases.h"
#include "differences.h"
#include "readeroracle.h"
#include "readersession.h"
#include "variantsession.h"

namespace statecut::test {

struct Tally {
  std::array<std::size_t, kDifferences> occurred{};
  std::array<std::size_t, kOps> calls{};
  std::array<std::size_t, kReaderDifferences> readerOccurred{};
  std::size_t refused = 0;  // files
};

enum class Soundness : std::uint8_t { kSound, kDamaged };

// The first few differences as a text, empty when there are none.
std::string compareAnswers(const Variant& variant, const Database& database,
                           const std::vector<Call>& calls, Soundness soundness, Tally& tally);

// The same for a Database, which must refuse exactly the files that have a flaw.
std::string compareReader(ReaderWay way, const Database& database, const std::vector<Call>& calls,
                          Tally& tally);

}  // namespace statecut::test
