#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "format/mapped.h"
#include "verify/verify.h"

namespace statecut {

void addVerifyCommand(CLI::App& app, int& status) {
  auto options = std::make_shared<verify::Options>();
  CLI::App* command = app.add_subcommand(
      "verify", "Check a database pair, or a cut against the pair that it was cut from");
  command->add_flag("--json", options->json, "One JSON document");
  command->add_option("--ref", options->ref, "Reference file")->required()->type_name("FILE");
  command->add_option("--rng", options->rng, "Range file")->required()->type_name("FILE");
  command
      ->add_option("--ignore", options->ignored,
                   "A rule to leave out, as often as wanted: table.gap")
      ->type_name("RULE")
      ->allow_extra_args(false)
      ->check([](const std::string& id) {
        return verify::ruleNamed(id) ? std::string() : "no such rule: " + id;
      });
  auto* sourceRef =
      command->add_option("--source-ref", options->sourceRef, "Reference file that was cut")
          ->type_name("FILE");
  auto* sourceRng =
      command->add_option("--source-rng", options->sourceRng, "Range file that was cut")
          ->type_name("FILE");
  auto* states = command->add_option("--states", options->states, "States of the cut: TX,OK")
                     ->type_name("LIST");
  for (auto* one : {sourceRef, sourceRng, states})
    for (auto* other : {sourceRef, sourceRng, states})
      if (one != other) one->needs(other);
  command->footer("Exit status: 0 nothing wrong, 1 findings, 2 the check can't run.");
  command->callback([options, &status] {
    format::exitOnLostPage();
    status = verify::run(*options, std::cout, std::cerr);
  });
}

}  // namespace statecut
