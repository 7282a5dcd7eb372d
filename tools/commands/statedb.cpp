#include "commands/statedb.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "commands/commands.h"

namespace statecut {

namespace {

constexpr int kCannotRun = 2;  // bad usage too

// What was written to standard output may still be lost.
int finished(int status) {
  if (std::cout.flush()) return status;
  std::cerr << "statedb: cannot write to standard output\n";
  return kCannotRun;
}

}  // namespace

int runStatedb(int argc, char** argv) {
  CLI::App app{"Builds, describes, verifies and queries address reference database pairs.",
               "statedb"};
  app.require_subcommand(1);
  app.set_version_flag("--version", "statedb (statecut) " STATEDB_VERSION,
                       "Print the version and exit");
  int status = 0;
  addBuildCommand(app, status);
  addInfoCommand(app, status);
  addVerifyCommand(app, status);
  addPlanCommand(app, status);
  addCutsCommand(app, status);
  addDiffCommand(app, status);
  addDrawCommand(app, status);
  addExportCommand(app, status);
  addQueryCommand(app, status);
  addLookupCommands(app, status);
  addCompletionCommand(app, status);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return finished(app.exit(error) == 0 ? 0 : kCannotRun);
  } catch (const std::exception& error) {
    std::cerr << "statedb: " << error.what() << "\n";
    return kCannotRun;
  }
  return finished(status);
}

}  // namespace statecut
