// statedb plan: what cuts would hold, without making them.

#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "commands/products.h"
#include "format/mapped.h"
#include "format/memory.h"
#include "verify/verify.h"

namespace statecut {

namespace {

constexpr int kDone = 0, kCannotRun = 2;

struct PlanOptions {
  std::string ref;
  std::string rng;
  std::string states;
  cuts::Choice choice;
  bool json = false;
};

int fail(const std::string& reason) {
  std::cerr << "statedb plan: " << reason << '\n';
  return kCannotRun;
}

int runPlan(const PlanOptions& options) {
  std::vector<std::string> states;
  if (!options.choice.any()) {
    const auto parsed = verify::parseStates(options.states);
    if (!parsed) return fail("not a list of two-letter states: \"" + options.states + "\"");
    for (const std::string& state : *parsed)
      if (!plan::isState(state)) return fail("no such state: " + state);
    states = *parsed;
  }
  format::exitOnLostPage();
  format::keepFreedMemory();
  verify::Pair source;
  std::string error;
  if (!cuts::openSource(options.ref, options.rng, source, error)) return fail(error);
  std::vector<plan::Named> plans;
  if (options.choice.any()) {
    std::vector<std::string> problems;
    plans = cuts::planProducts(options.choice, source, problems);
    for (const std::string& problem : problems) (void)fail(problem);
    if (!problems.empty()) return kCannotRun;
    if (plans.empty()) return fail("there is no product to plan");
  } else {
    plans.push_back({"", plan::make(source, states)});
  }
  if (options.json)
    plan::printJson(std::cout, plans);
  else
    plan::printText(std::cout, plans);
  return kDone;
}

}  // namespace

void addPlanCommand(CLI::App& app, int& status) {
  const auto options = std::make_shared<PlanOptions>();
  CLI::App* command =
      app.add_subcommand("plan", "Tell what cuts would hold and how large they would be");
  command->add_option("--ref", options->ref, "Reference file")->required()->type_name("FILE");
  command->add_option("--rng", options->rng, "Range file")->required()->type_name("FILE");
  CLI::Option_group* which = command->add_option_group("which", "");
  which->add_option("--states", options->states, "States of one cut: TX,OK")->type_name("LIST");
  addProductOptions(*which, options->choice);
  which->require_option(1);
  command->add_flag("--json", options->json, "One JSON document");
  command->footer("Exit status: 0 planned, 2 can't run.");
  command->callback([options, &status] { status = runPlan(*options); });
}

}  // namespace statecut
