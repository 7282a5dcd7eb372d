#include "fixture.h"

#include <gtest/gtest.h>

#include "dbbuilder/profiles.h"
#include "dbbuilder/rangefile.h"
#include "dbbuilder/writer.h"
#include "support/paths.h"

namespace statecut::test {

builder::Model soundModel() {
  return builder::makeModel(builder::tinyPlaces(), builder::tinyOptions());
}

const std::string& VerifyFixture::states() {
  // Every second state of the model.
  static const std::string list = [] {
    std::set<std::string> all;
    for (const builder::Place& place : builder::tinyPlaces()) all.insert(place.state);
    std::string chosen;
    bool choose = true;
    for (const std::string& state : all) {
      if (choose) chosen += (chosen.empty() ? "" : ",") + state;
      choose = !choose;
    }
    return chosen;
  }();
  return list;
}

void VerifyFixture::write(const std::string& name, const PairBytes& pair) {
  writeWholeFile(folder_.file(name + ".ref"), pair.ref);
  writeWholeFile(folder_.file(name + ".rng"), pair.rng);
}

PairBytes VerifyFixture::read(const std::string& name) {
  return {readWholeFile(folder_.file(name + ".ref")).value_or(FileBytes{}),
          readWholeFile(folder_.file(name + ".rng")).value_or(FileBytes{})};
}

void VerifyFixture::cut(const std::string& name, const std::string& states,
                        const std::string& cut) {
  Command command;
  command.program = kStatecut;
  command.arguments = {"-s", folder_.file("states"),      "-l", folder_.file("log"),
                       "-f", folder_.file(name + ".ref"), "-g", folder_.file(name + ".rng"),
                       "-o", folder_.file(cut + ".ref"),  "-z", folder_.file(cut + ".rng")};
  FileBytes list;
  for (const char c : states) list.push_back(c == ',' ? '\n' : static_cast<unsigned char>(c));
  writeWholeFile(folder_.file("states"), list);
  const ProcessResult result = runProcess(command);
  ASSERT_EQ(result.exitStatus, 0) << result.err;
  ASSERT_EQ(result.signal, 0);
}

verify::Options VerifyFixture::options(const std::string& name) const {
  verify::Options options;
  options.ref = folder_.file(name + ".ref");
  options.rng = folder_.file(name + ".rng");
  return options;
}

verify::Options VerifyFixture::options(const std::string& name, const std::string& source,
                                       const std::string& states) const {
  verify::Options all = options(name);
  all.sourceRef = folder_.file(source + ".ref");
  all.sourceRng = folder_.file(source + ".rng");
  all.states = states;
  return all;
}

PairBytes bytesOf(const builder::Model& model) {
  return {builder::referenceFile(model).bytes, builder::rangeFile(model.range)};
}

std::set<std::string> trippedRules(const verify::Options& options) {
  std::string error;
  const verify::Report report = verify::check(options, error);
  if (!error.empty()) return {"error: " + error};
  std::set<std::string> tripped;
  for (const verify::Finding& finding : report.findings())
    tripped.insert(verify::rule(finding.rule).id);
  return tripped;
}

verify::Finding firstFinding(const verify::Options& options, verify::RuleId rule) {
  std::string error;
  const verify::Report report = verify::check(options, error);
  for (const verify::Finding& finding : report.findings())
    if (finding.rule == rule) return finding;
  return {verify::RuleId::Count_, verify::File::Reference, 0, 0, error};
}

}  // namespace statecut::test
