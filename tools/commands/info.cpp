#include "info/info.h"

#include <iostream>
#include <map>
#include <memory>

#include "commands/commands.h"
#include "format/mapped.h"

namespace statecut {

void addInfoCommand(CLI::App& app, int& status) {
  struct Options {
    std::vector<std::string> files;
    info::Show show;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("info", "Show what reference and range files are and what they hold");
  CLI::Option_group* how = command->add_option_group("how", "");
  how->add_flag("--json", options->show.json, "One JSON document");
  static const std::map<std::string, info::Tsv> kTsv = {{"tables", info::Tsv::Tables},
                                                        {"zips", info::Tsv::Zips}};
  how->add_option("--tsv", options->show.tsv,
                  "Lines with tabs: tables, or zips with the bytes of their partitions")
      ->type_name("tables|zips")
      ->transform(CLI::Transformer(kTsv).description(""));
  how->add_option("--get", options->show.key,
                  "One value of one file: a key of the JSON, such as zipCodes or states.TX.zips")
      ->type_name("KEY");
  how->require_option(0, 1);
  command->add_option("FILE", options->files, "Reference or range files")->required();
  command->footer("Exit status: 0 sound, 1 a file is damaged or no database, 2 can't be opened.");
  command->callback([options, &status] {
    format::exitOnLostPage();
    if (!options->show.key.empty() && options->files.size() > 1) {
      std::cerr << "statedb info: --get takes one file\n";
      status = 2;
      return;
    }
    status = info::run(options->files, options->show, std::cout, std::cerr);
  });
}

}  // namespace statecut
