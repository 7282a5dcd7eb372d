// statedb draw: a report to look at.

#include "draw/draw.h"

#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "commands/zipsfile.h"
#include "format/mapped.h"

namespace statecut {

namespace {

constexpr int kNoPlaces = 2;
// Of the file that comes with the program.
constexpr const char* kPlacesCredit =
    "Coordinates: GeoNames (CC BY 4.0) and zipcodes, (c) 2007 Dav Glass (BSD), changed.";

int runDraw(draw::Options options) {
  if (options.places.empty()) {
    std::string error;
    options.places = findZipsFile(error);
    if (options.places.empty()) {
      std::cerr << "statedb draw: " << error << '\n';
      return kNoPlaces;
    }
    options.credit = kPlacesCredit;
  }
  format::exitOnLostPage();
  return draw::run(options, std::cerr);
}

}  // namespace

void addDrawCommand(CLI::App& app, int& status) {
  const auto options = std::make_shared<draw::Options>();
  const auto format = std::make_shared<std::string>("html");
  CLI::App* command = app.add_subcommand("draw", "Draw what a database holds, for a browser");
  command->add_option("REF", options->ref, "Reference file")->required();
  command->add_option("RNG", options->rng, "Its range file, drawn too");
  command->add_option("--cut", options->cut, "Both files of a cut of it: what the cut keeps")
      ->type_name("REF RNG")
      ->expected(2);
  command->add_option("--diff", options->old, "An older release: what changed since")
      ->type_name("OLD_REF [OLD_RNG]")
      ->expected(1, 2);
  command->add_option("-o,--out", options->out, "The report")->required()->type_name("FILE");
  command->add_option("--format", *format, "A page, or the bars and the map alone")
      ->check(CLI::IsMember({"html", "svg"}));
  command
      ->add_option("--zips", options->places,
                   "Coordinates: zip,state,city,county,latitude,longitude")
      ->type_name("CSV");
  command->footer("Exit status: 0 written, 2 can't run; nothing is written then.");
  command->callback([options, format, &status] {
    options->svg = *format == "svg";
    status = runDraw(*options);
  });
}

}  // namespace statecut
