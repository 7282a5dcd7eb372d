// statedb export: tables of a database as files of other programs.

#include "export/export.h"

#include <iostream>
#include <map>
#include <memory>

#include "commands/commands.h"

namespace statecut {

void addExportCommand(CLI::App& app, int& status) {
  const auto options = std::make_shared<exporting::Options>();
  CLI::App* command =
      app.add_subcommand("export", "Write tables as CSV, JSON lines or a SQLite database");
  command->add_option("--ref", options->ref, "Reference file")->required();
  command->add_option("--rng", options->rng, "Range file, for the contents of partitions");
  command
      ->add_option("--table", options->tables,
                   "zip, city, city_zip, city_phonetic, street, firm, street_variation, county, "
                   "urbanization, partition, tables, header, or all")
      ->required()
      ->type_name("NAME,...")
      ->delimiter(',');
  static const std::map<std::string, exporting::Format> kFormats = {
      {"csv", exporting::Format::Csv},
      {"ndjson", exporting::Format::Ndjson},
      {"sqlite", exporting::Format::Sqlite}};
  command->add_option("--format", options->format, "csv, ndjson or sqlite")
      ->required()
      ->type_name("FORMAT")
      ->transform(CLI::Transformer(kFormats, CLI::ignore_case).description(""));
  command->add_option("-o,--out", options->out, "File, or folder of several; - is standard output")
      ->required()
      ->type_name("FILE");
  command->footer(
      "Exit status: 0 written, 1 a file can't be written or a record is damaged, 2 can't run.");
  command->callback(
      [options, &status] { status = exporting::run(*options, std::cout, std::cerr); });
}

}  // namespace statecut
