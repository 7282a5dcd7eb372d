#include "info/info.h"

#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "format/mapped.h"

namespace statecut {

void addInfoCommand(CLI::App& app, int& status) {
  struct Options {
    std::vector<std::string> files;
    bool json = false;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("info", "Show what reference and range files are and what they hold");
  command->add_flag("--json", options->json, "One JSON document");
  command->add_option("FILE", options->files, "Reference or range files")->required();
  command->footer("Exit status: 0 sound, 1 a file is damaged or no database, 2 can't be opened.");
  command->callback([options, &status] {
    format::exitOnLostPage();
    status = info::run(options->files, options->json, std::cout, std::cerr);
  });
}

}  // namespace statecut
