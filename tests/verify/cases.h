#pragma once
// Damage to a sound pair that trips one rule and no other.

#include <functional>
#include <string>
#include <vector>

#include "dbbuilder/model.h"
#include "verify/rules.h"

namespace statecut::test {

using builder::Bytes;

struct PairBytes {
  Bytes ref;
  Bytes rng;

  // Words of the reference control record, and bytes of the table whose RBA stands there.
  std::uint32_t word(std::size_t at) const;
  void setWord(std::size_t at, std::uint32_t value);
  unsigned char* table(std::size_t rbaAt) { return ref.data() + word(rbaAt); }
};

struct Case {
  verify::RuleId rule;
  std::function<void(builder::Model&)> model;  // before the pair is written, or
  std::function<void(PairBytes&)> bytes;       // to its bytes
  std::vector<verify::RuleId> also = {};       // that no damage to this rule alone can avoid
};

// Damage to an uncut pair, and to a cut that is compared with its source.
const std::vector<Case>& aloneCases();
const std::vector<Case>& cutCases();

}  // namespace statecut::test
