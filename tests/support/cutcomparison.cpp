#include "support/cutcomparison.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "support/linepattern.h"
#include "support/paths.h"

namespace statecut::test {
namespace {

constexpr const char* kStateFile = "states.txt";

Command commandOf(const RandomCase& made, const std::string& folder) {
  Command command;
  command.program = kStatecut;
  command.arguments = {"-v", std::to_string(made.logLevel)};
  if (made.statesFromFile) {
    command.arguments.insert(command.arguments.end(), {"-s", kStateFile});
  } else {
    command.input = made.stateText.value_or("");
  }
  command.environment = {{"TZ", "UTC0"}, {"SOURCE_DATE_EPOCH", std::to_string(made.stamp)}};
  command.folder = folder;
  return command;
}

std::string endOf(const ComparedRun& run) {
  const ProcessResult& process = run.process;
  if (process.timedOut) return "the program did not end\n";
  if (process.signal != 0) return "signal " + std::to_string(process.signal) + "\n" + process.err;
  if (process.exitStatus != run.expected.exitStatus)
    return "exit status: expected " + std::to_string(run.expected.exitStatus) + ", actual " +
           std::to_string(process.exitStatus) + "\n" + process.err;
  return {};
}

ComparedRun runIn(const std::string& folder, const RandomCase& made) {
  const auto in = [&folder](const std::string& name) { return folder + "/" + name; };
  if (made.ref) writeWholeFile(in("city.dir"), *made.ref);
  if (made.rng) writeWholeFile(in("zip4us.dir"), *made.rng);
  if (made.statesFromFile && made.stateText)
    writeWholeFile(in(kStateFile), FileBytes(made.stateText->begin(), made.stateText->end()));
  ComparedRun run;
  run.process = runProcess(commandOf(made, folder));
  run.expected = secondcut::deriveCut(inputsOf(made));
  run.ref = readWholeFile(in("city.sc"));
  run.rng = readWholeFile(in("zip4us.sc"));
  if (std::filesystem::exists(in("tolvlog.txt"))) run.log = readTextFile(in("tolvlog.txt"));
  return run;
}

}  // namespace

secondcut::Inputs inputsOf(const RandomCase& made) {
  secondcut::Inputs inputs;
  inputs.ref = made.ref;
  inputs.rng = made.rng;
  if (made.statesFromFile) inputs.stateFileName = kStateFile;
  inputs.stateText = made.stateText;
  inputs.program = kStatecut;
  inputs.logLevel = made.logLevel;
  inputs.stamp = made.stamp;
  return inputs;
}

ComparedRun runBoth(const RandomCase& made) {
  if (const char* keep = std::getenv("STATECUT_CUT_KEEP")) {
    std::filesystem::create_directories(keep);
    for (const char* name : {"city.sc", "zip4us.sc", "tolvlog.txt"})
      std::filesystem::remove(std::string(keep) + "/" + name);
    return runIn(keep, made);
  }
  const TempDir folder;
  return runIn(folder.path(), made);
}

std::string compareFile(const std::string& name, const secondcut::OutputFile& expected,
                        const std::optional<FileBytes>& actual) {
  if (expected.created != actual.has_value())
    return name + (expected.created ? " was not created\n" : " was created\n");
  if (!expected.created || expected.bytes == *actual) return {};
  const std::size_t common = std::min(expected.bytes.size(), actual->size());
  const auto at = static_cast<std::size_t>(
      std::mismatch(expected.bytes.begin(),
                    expected.bytes.begin() + static_cast<std::ptrdiff_t>(common), actual->begin())
          .first -
      expected.bytes.begin());
  const auto shown = [at](const FileBytes& bytes) {
    return at < bytes.size() ? std::to_string(bytes[at]) : std::string("the end of the file");
  };
  return name + " differs at offset " + std::to_string(at) + " (" + expected.regionAt(at) +
         "): expected " + shown(expected.bytes) + ", actual " + shown(*actual) +
         "; sizes: expected " + std::to_string(expected.bytes.size()) + ", actual " +
         std::to_string(actual->size()) + "\n";
}

std::string compareResults(const ComparedRun& run) {
  return endOf(run) + compareFile("city.sc", run.expected.ref, run.ref) +
         compareFile("zip4us.sc", run.expected.rng, run.rng) +
         compareLines("standard output", run.expected.out, run.process.out) +
         compareLines("standard error", run.expected.err, run.process.err);
}

std::string compareLog(const ComparedRun& run) {
  if (run.expected.logCreated != run.log.has_value())
    return run.expected.logCreated ? "no log was created\n" : "a log was created\n";
  return endOf(run) + compareLines("the log", run.expected.log, run.log.value_or(""));
}

}  // namespace statecut::test
