#pragma once
// The subcommands of statedb. Each function adds one subcommand to the app; when it is chosen, its
// callback runs the command and stores the exit status.

#include <CLI/CLI.hpp>

namespace statecut {

void addBuildCommand(CLI::App& app, int& status);
void addInfoCommand(CLI::App& app, int& status);
void addVerifyCommand(CLI::App& app, int& status);

}  // namespace statecut
