// statedb diff: what changed between two releases.

#include "diff/diff.h"

#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "format/mapped.h"

namespace statecut {

void addDiffCommand(CLI::App& app, int& status) {
  const auto options = std::make_shared<diff::Options>();
  CLI::App* command =
      app.add_subcommand("diff", "Tell what changed between two releases, or between two cuts");
  command->add_option("OLD_REF", options->oldRef, "Reference file of the old one")->required();
  command->add_option("NEW_REF", options->newRef, "Reference file of the new one")->required();
  command->add_option("--rng", options->rng, "Both range files: compare the partitions too")
      ->type_name("OLD NEW")
      ->expected(2);
  command->add_option("--states", options->states, "Only what is of these states: TX,OK")
      ->type_name("LIST");
  command->add_flag("--summary", options->summary, "The counts alone");
  command->add_flag("--json", options->json, "One JSON document");
  command->footer("Exit status: 0 equal but for RBAs and stamps, 1 different, 2 can't run.");
  command->callback([options, &status] {
    format::exitOnLostPage();
    status = diff::run(*options, std::cout, std::cerr);
  });
}

}  // namespace statecut
