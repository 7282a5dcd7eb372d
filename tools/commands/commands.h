#pragma once
// The subcommands of statedb. Each function adds its subcommands to the app; when one is chosen,
// its callback runs the command and stores the exit status.

#include <CLI/CLI.hpp>

namespace statecut {

void addBuildCommand(CLI::App& app, int& status);
void addInfoCommand(CLI::App& app, int& status);
void addVerifyCommand(CLI::App& app, int& status);
void addPlanCommand(CLI::App& app, int& status);
void addCutsCommand(CLI::App& app, int& status);
void addDiffCommand(CLI::App& app, int& status);
void addDrawCommand(CLI::App& app, int& status);
void addExportCommand(CLI::App& app, int& status);
void addQueryCommand(CLI::App& app, int& status);
void addLookupCommands(CLI::App& app, int& status);  // the short forms: zip, city, street, firm
void addCompletionCommand(CLI::App& app, int& status);

}  // namespace statecut
