// statedb zip, city, street and firm: the short forms of the lookups.

#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>

#include "commands/commands.h"
#include "query/loading.h"
#include "query/run.h"
#include "query/shortforms.h"
#include "run/process.h"

namespace statecut {

namespace {

constexpr const char* kDefaultRange = "zip4us.dir";
constexpr std::size_t kZipDigits = 5;

struct LookupOptions {
  SessionSettings settings;
  std::string state;
  std::vector<std::string> words;

  // Words are one text when they are given one by one.
  [[nodiscard]] std::string text() const {
    std::string joined;
    for (const std::string& word : words) joined += (joined.empty() ? "" : " ") + word;
    return joined;
  }
};

using Show = std::function<bool(Session&, const LookupOptions&, std::ostream&)>;

int fail(const std::string& command, const std::string& reason, int status) {
  std::fprintf(stderr, "statedb %s: %s\n", command.c_str(), reason.c_str());
  return status;
}

struct Shape {
  const char* name;
  const char* description;
  const char* argument;
  bool hasState;
  std::uint32_t sets;  // of tables
};

int runLookup(const Shape& shape, const LookupOptions& options, const Show& show) {
  const std::string name = shape.name;
  guardStandardDescriptors();
  SessionSettings settings = options.settings;
  settings.sets = 0;  // loaded below, where a failure names the table
  // The range file of the default name is used when it is there.
  if (settings.rng.empty() && ::access(kDefaultRange, R_OK) == 0) settings.rng = kDefaultRange;
  static Session session;
  std::string error;
  bool opened = session.open(settings, error);
  if (!opened && options.settings.rng.empty()) {
    settings.rng.clear();
    opened = session.open(settings, error);
  }
  if (!opened) return fail(name, error, query::kCannotRun);
  if (!session.pairMatches() && !options.settings.rng.empty())
    (void)fail(name, "the range file is not of the same pair", 0);
  if (const std::string failure = query::loadFailure(session, shape.sets); !failure.empty())
    return fail(name, failure, query::kCannotRun);
  std::ostringstream answer;
  const bool found = show(session, options, answer);
  if (const std::string failure = query::readFailure(); !failure.empty())
    return fail(name, failure, query::kCannotRun);
  if (!found) {
    const std::string where = options.state.empty() ? "" : " in " + options.state;
    return fail(name, "not found: " + options.text() + where, query::kFailed);
  }
  if (!query::writeAll(STDOUT_FILENO, answer.str()))
    return fail(name, "cannot write the answer", query::kCannotRun);
  return query::kDone;
}

void checkWords(const Shape& shape, const LookupOptions& options) {
  if (options.words.empty()) throw CLI::RequiredError(shape.argument);
  for (const std::string& word : options.words)
    if (word.starts_with("--")) throw CLI::ExtrasError({word});
  const std::string text = options.text();
  if (std::string_view(shape.argument) != "ZIP") return;
  const bool digits = text.find_first_not_of("0123456789") == std::string::npos;
  if (!digits || text.empty() || text.size() > kZipDigits)
    throw CLI::ValidationError("ZIP", "a ZIP code has up to 5 digits: " + text);
}

void addLookup(CLI::App& app, int& status, const Shape& shape, const Show& show) {
  const auto options = std::make_shared<LookupOptions>();
  options->settings.ref = "city.dir";
  CLI::App* command = app.add_subcommand(shape.name, shape.description);
  command->add_option("--ref", options->settings.ref, "Reference file")
      ->type_name("FILE")
      ->capture_default_str();
  command->add_option("--rng", options->settings.rng, "Range file (zip4us.dir if it is there)")
      ->type_name("FILE");
  if (shape.hasState)
    command->add_option("STATE", options->state, "State abbreviation")->required()->type_name("");
  // The words of the text are taken as they are.
  command->allow_extras();
  command->footer(std::string("The text to look up, ") + shape.argument +
                  ", stands behind the options.\n"
                  "Exit status: 0 found, 1 not found, 2 cannot run.");
  command->callback([command, options, shape, show, &status] {
    options->words = command->remaining();
    checkWords(shape, *options);
    status = runLookup(shape, *options, show);
  });
}

bool showZipText(Session& session, const LookupOptions& options, std::ostream& out) {
  const std::string text = options.text();
  std::int32_t zip = 0;
  std::from_chars(text.data(), text.data() + text.size(), zip);
  return query::showZip(session, zip, out);
}

}  // namespace

void addLookupCommands(CLI::App& app, int& status) {
  addLookup(
      app, status,
      {"zip", "Show a ZIP code: its cities and partitions", "ZIP", false, query::kZipFormSets},
      showZipText);
  addLookup(
      app, status,
      {"city", "Show a city and its ZIP codes; with *, a list", "NAME", true, query::kCityFormSets},
      [](Session& session, const LookupOptions& options, std::ostream& out) {
        return query::showCity(session, options.state, options.text(), out);
      });
  addLookup(app, status,
            {"street", "Show a street and what a variation stands for", "NAME", false,
             query::kStreetFormSets},
            [](Session& session, const LookupOptions& options, std::ostream& out) {
              return query::showStreet(session, options.text(), out);
            });
  addLookup(app, status, {"firm", "Show a firm", "NAME", false, query::kFirmFormSets},
            [](Session& session, const LookupOptions& options, std::ostream& out) {
              return query::showFirm(session, options.text(), out);
            });
}

}  // namespace statecut
