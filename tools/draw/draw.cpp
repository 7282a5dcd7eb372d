#include "draw/draw.h"

#include <filesystem>
#include <ostream>

#include "cuts/flushed.h"
#include "dbbuilder/places.h"
#include "draw/atlas.h"
#include "draw/figures.h"
#include "draw/page.h"
#include "draw/picture.h"

namespace statecut::draw {

namespace {

namespace fs = std::filesystem;

constexpr int kWritten = 0, kCannotRun = 2;

// Why nothing may be put in the place of `out`; empty: it may.
std::string outputProblem(const Options& options) {
  std::error_code unknown;
  if (fs::path(options.out).filename().empty()) return options.out + ": not the name of a file";
  if (fs::exists(options.out, unknown) && !fs::is_regular_file(options.out, unknown))
    return options.out + ": not a regular file";
  std::vector<std::string> inputs = {options.ref, options.rng, options.places};
  inputs.insert(inputs.end(), options.cut.begin(), options.cut.end());
  inputs.insert(inputs.end(), options.old.begin(), options.old.end());
  for (const std::string& input : inputs)
    if (!input.empty() && fs::equivalent(options.out, input, unknown))
      return options.out + ": is read, and can't be the report";
  return {};
}

// Behind a link, the file that it leads to is replaced.
bool save(const std::string& out, const std::string& report, std::string& error) {
  std::error_code unknown;
  const fs::path target = fs::weakly_canonical(out, unknown);
  const fs::path path = unknown ? fs::path(out) : target;
  const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
  return cuts::replaceFile(folder, path.filename().string(), report, error);
}

std::string make(const Options& options, std::string& error) {
  const Sources sources = openSources(options, error);
  std::vector<builder::Place> places;
  if (!error.empty() || !builder::readPlaces(options.places, places, error)) return {};
  const Figures figures = collect(sources, options);
  const Atlas atlas(places);
  if (options.svg) return pictureSvg(figures, atlas, options.credit);
  return pageHtml(figures, atlas, options.credit);
}

}  // namespace

int run(const Options& options, std::ostream& err) {
  std::string error = outputProblem(options);
  std::string report;
  if (error.empty()) report = make(options, error);
  if (error.empty()) (void)save(options.out, report, error);
  if (error.empty()) return kWritten;
  err << "statedb draw: " << error << '\n';
  return kCannotRun;
}

}  // namespace statecut::draw
