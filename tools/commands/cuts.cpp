// statedb cuts: many cuts of one pair, verified, in a folder of products.

#include "cuts/cuts.h"

#include <iostream>
#include <memory>
#include <thread>

#include "commands/commands.h"
#include "commands/products.h"
#include "format/mapped.h"
#include "format/memory.h"

namespace statecut {

namespace {

constexpr std::size_t kMostJobs = 1024;

struct CutsOptions {
  cuts::Options run;
  cuts::Choice choice;
};

}  // namespace

void addCutsCommand(CLI::App& app, int& status) {
  const auto options = std::make_shared<CutsOptions>();
  cuts::Options& run = options->run;
  run.jobs = std::max(1U, std::thread::hardware_concurrency());
  CLI::App* command = app.add_subcommand(
      "cuts", "Make many cuts of a pair, verified, each in a folder of its name");
  command->add_option("--ref", run.ref, "Reference file")->required()->type_name("FILE");
  command->add_option("--rng", run.rng, "Range file")->required()->type_name("FILE");
  command->add_option("--out", run.out, "Folder of the products, made if missing")
      ->required()
      ->type_name("DIR");
  CLI::Option_group* which = command->add_option_group("which", "");
  addProductOptions(*which, options->choice);
  which->require_option(1);
  command->add_option("--jobs", run.jobs, "Cuts at once; as many as there are processors")
      ->check(CLI::Range(std::size_t{1}, kMostJobs));
  command->add_flag("--force", run.force, "Make anew what is there and matches");
  command->add_flag("--keep-going", run.keepGoing, "Make the others when one has failed");
  command->add_flag("--json", run.json,
                    "A JSON object a line: each product that ended, the summary");
  command->footer("Exit status: 0 all made or already there, 1 some not, 2 can't run.");
  command->callback([options, &status] {
    format::exitOnLostPage();
    format::keepFreedMemory();
    status = cuts::run(options->run, options->choice, std::cout, std::cerr);
  });
}

}  // namespace statecut
