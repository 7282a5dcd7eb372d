// statedb: builds, describes, verifies and queries database pairs.

#include <CLI/CLI.hpp>
#include <exception>

#include "commands/commands.h"

namespace {

constexpr int usageError = 2;

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Builds, describes, verifies and queries address reference database pairs.",
               "statedb"};
  app.require_subcommand(1);
  int status = 0;
  statecut::addBuildCommand(app, status);
  statecut::addInfoCommand(app, status);
  statecut::addVerifyCommand(app, status);
  statecut::addQueryCommand(app, status);
  statecut::addLookupCommands(app, status);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : usageError;
  } catch (const std::exception& error) {
    std::cerr << "statedb: " << error.what() << "\n";
    return usageError;
  }
  return status;
}
