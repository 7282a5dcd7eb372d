#pragma once
// A sound pair and a sound cut of it, and their verdicts.

#include <set>
#include <string>

#include "cases.h"
#include "support/process.h"
#include "verify/verify.h"

namespace statecut::test {

builder::Model soundModel();

class VerifyFixture {
 public:
  // The states of the cut are some of the model's.
  static const std::string& states();

  void write(const std::string& name, const PairBytes& pair);  // NAME.ref, NAME.rng
  PairBytes read(const std::string& name);
  // Cuts the pair `name` with the statecut program into the pair `cut`.
  void cut(const std::string& name, const std::string& states, const std::string& cut);

  verify::Options options(const std::string& name) const;
  verify::Options options(const std::string& name, const std::string& source,
                          const std::string& states = VerifyFixture::states()) const;

 private:
  TempDir folder_;
};

PairBytes bytesOf(const builder::Model& model);

// The ids of the rules that found something; "error: ..." when there is no verdict.
std::set<std::string> trippedRules(const verify::Options& options);

// The first finding of a rule; of rule Count_ when it found nothing.
verify::Finding firstFinding(const verify::Options& options, verify::RuleId rule);

}  // namespace statecut::test
