// statedb query: the lookups, one call or a stream of calls.

#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <memory>

#include "commands/commands.h"
#include "query/ops.h"
#include "query/run.h"
#include "run/process.h"

namespace statecut {

namespace {

struct QueryOptions {
  SessionSettings settings;
  std::string mode = "in";
  std::string cache;
  std::string errors = "status";
  bool decode = false;
};

int fail(const std::string& reason) {
  std::fprintf(stderr, "statedb query: %s\n", reason.c_str());
  return query::kCannotRun;
}

bool wholeNumber(std::string_view text, std::uint32_t& number) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

bool parseCache(const std::string& text, SessionSettings& settings) {
  const std::size_t colon = text.find(':');
  settings.cached = true;
  return colon != std::string::npos &&
         wholeNumber(std::string_view(text).substr(0, colon), settings.cacheBlock) &&
         wholeNumber(std::string_view(text).substr(colon + 1), settings.cacheEntries);
}

int answerOne(Session& session, bool decode, query::Errors errors,
              const std::vector<std::string>& words) {
  std::string answer;
  const query::Outcome outcome = query::answerWords(session, decode, words, answer);
  if (!query::writeAll(STDOUT_FILENO, answer)) return fail("cannot write the answer");
  return query::statusOf(outcome, errors);
}

int runQuery(QueryOptions& options, const std::vector<std::string>& words) {
  SessionSettings& settings = options.settings;
  settings.sets = 0;  // each call prepares what it uses
  settings.mode = options.mode == "in"    ? LookupMode::kIn
                  : options.mode == "off" ? LookupMode::kOff
                                          : LookupMode::kFirst;
  if (!options.cache.empty() && !parseCache(options.cache, settings))
    return fail("--cache takes BLOCK:ENTRIES, two whole numbers");
  if (!words.empty() && words.front().size() > 1 && words.front()[0] == '-')
    return fail("unknown option " + words.front());
  if (settings.trace && settings.log.empty())
    std::fputs("statedb query: --trace writes nothing without --log\n", stderr);
  guardStandardDescriptors();
  static Session session;
  std::string error;
  if (!session.open(settings, error)) return fail(error);
  if (!session.pairMatches())
    std::fputs("statedb query: the range file is not of the same pair\n", stderr);
  const query::Errors errors =
      options.errors == "answer" ? query::Errors::kAnswer : query::Errors::kStatus;
  return words.empty() ? query::serve(session, options.decode, errors, STDIN_FILENO, STDOUT_FILENO)
                       : answerOne(session, options.decode, errors, words);
}

std::string describeOps() {
  std::string text = "Operations and the keys of their answers:\n";
  for (const auto group : query::opGroups()) {
    for (const query::Op& op : group) {
      text += std::string("  ") + op.name;
      for (const query::Parameter& parameter : op.parameters)
        text += std::string(" ") + parameter.name;
      text += std::string("  ->  ") + op.keys + "\n";
    }
  }
  text +=
      "Without OP: one JSON object a line on standard input, {\"op\": OP, \"args\": [ARG, ...]}; "
      "an \"id\" comes back in the answer.\n"
      "Behind -- every word is an argument. MATCHER is contains, starts or ends, SCFS a list like "
      "1,2.\nExit status: 0 answered, 1 a call that cannot be made (0 with --errors=answer), 2 "
      "cannot run.";
  return text;
}

}  // namespace

void addQueryCommand(CLI::App& app, int& status) {
  const auto options = std::make_shared<QueryOptions>();
  CLI::App* command = app.add_subcommand("query", "Make lookups: OP ARG..., or JSON lines");
  SessionSettings& settings = options->settings;
  command->add_option("--ref", settings.ref, "Reference file")->required()->type_name("FILE");
  command->add_option("--rng", settings.rng, "Range file")->type_name("FILE");
  command->add_option("--mode", options->mode, "In memory, on disk, or as the first call decides")
      ->check(CLI::IsMember({"in", "off", "first"}))
      ->capture_default_str();
  command->add_option("--cache", options->cache, "Block cache of the lookups on disk")
      ->type_name("BLOCK:ENTRIES");
  command->add_flag("--trace", settings.trace, "Log when library functions are entered and left");
  command->add_option("--log", settings.log, "Log file")->type_name("FILE");
  command->add_flag("--decode", options->decode, "Add the fields of records by name");
  command
      ->add_option("--errors", options->errors,
                   "Whether a call that is not understood makes the status 1, or has its error as "
                   "answer and is counted at the end")
      ->check(CLI::IsMember({"status", "answer"}))
      ->capture_default_str();
  // The words behind the options are taken as they are; those behind "--" reach the whole program.
  command->allow_extras();
  command->preparse_callback([&app](std::size_t) { app.allow_extras(); });
  command->footer(describeOps());
  command->callback([&app, command, options, &status] {
    std::vector<std::string> words = command->remaining();
    const std::vector<std::string> behind = app.remaining();
    words.insert(words.end(), behind.begin(), behind.end());
    status = runQuery(*options, words);
  });
}

}  // namespace statecut
