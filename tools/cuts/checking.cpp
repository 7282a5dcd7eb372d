#include "cuts/checking.h"

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

#include "cuts/digest.h"
#include "cuts/flushed.h"
#include "cuts/names.h"
#include "cuts/partfolder.h"
#include "dbfiles/controlrec.h"
#include "format/mapped.h"

namespace statecut::cuts {

namespace {

constexpr std::size_t kWarningsKept = 20;

// A finding in words, and how many there are.
std::string finding(const verify::Report& report) {
  const verify::Finding& first = report.findings().front();
  const bool reference = first.file == verify::File::Reference;
  std::string text = std::string("verify: ") + verify::rule(first.rule).id + ": " +
                     (reference ? kReferenceName : kRangeName) + " offset " +
                     std::to_string(first.offset) + ": " + first.text;
  if (const std::size_t more = report.findings().size() - 1; more > 0)
    text += ", and " + std::to_string(more) + " more";
  return text;
}

// What the files say of themselves when they are good.
void describeFiles(const verify::Pair& pair, Checked& checked) {
  const auto record = [&](const char* name, std::span<const unsigned char> bytes) {
    return FileRecord{name, bytes.size(), sha256OfBytes(bytes, checked.error)};
  };
  checked.time = pair.ref().get(RefControlRec::stateCutTimeStamp);
  checked.reference = record(kReferenceName, pair.refBytes());
  checked.range = record(kRangeName, pair.rngBytes());
}

void verifyProduct(const Source& source, const std::string& folder,
                   const std::vector<std::string>& states, Checked& checked) {
  std::string& error = checked.error;
  const verify::Pair pair =
      verify::Pair::open(folder + "/" + kReferenceName, folder + "/" + kRangeName, error);
  verify::Report report;
  if (error.empty()) report = verify::checkCut(pair, source.database, states, error);
  if (!error.empty())
    error = "verify: " + error;
  else if (!report.clean())
    error = finding(report);
  else
    describeFiles(pair, checked);
}

std::string stateOfFile(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return "gone";
  std::string text;
  for (const auto number : {std::uint64_t{status.st_dev}, std::uint64_t{status.st_ino},
                            static_cast<std::uint64_t>(status.st_size),
                            static_cast<std::uint64_t>(status.st_mtim.tv_sec),
                            static_cast<std::uint64_t>(status.st_mtim.tv_nsec)})
    text += std::to_string(number) + ' ';
  return text;
}

std::vector<std::string> warningsOf(const std::string& log) {
  std::vector<std::string> warnings = logRecords(log, "WARN");
  if (warnings.size() > kWarningsKept) {
    const std::size_t more = warnings.size() - kWarningsKept;
    warnings.resize(kWarningsKept);
    warnings.push_back("and " + std::to_string(more) + " more");
  }
  return warnings;
}

}  // namespace

std::vector<std::string> logRecords(const std::string& path, const std::string& severity) {
  constexpr int kFieldsBefore = 5;  // time, severity, place, process, reason
  std::vector<std::string> texts;
  std::ifstream in(path, std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    std::size_t at = line.find(';');
    if (at == std::string::npos || line.compare(at + 1, severity.size() + 1, severity + ";") != 0)
      continue;
    for (int field = 1; field < kFieldsBefore && at != std::string::npos; ++field)
      at = line.find(';', at + 1);
    if (at == std::string::npos) continue;
    const std::string text = line.substr(at + 1);
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
  }
  return texts;
}

std::string stateOf(const Source& source) {
  return stateOfFile(source.ref) + stateOfFile(source.rng);
}

bool isSound(const Source& source) {
  format::exitOnLostPage();
  std::string error;
  return verify::checkPair(source.database.pair, error).clean() && error.empty();
}

Checked checkProduct(const Source& source, const std::string& out, const std::string& product,
                     const std::vector<std::string>& states) {
  format::exitOnLostPage();
  const std::string folder = out + "/" + partName(product);
  Checked checked;
  std::string& error = checked.error;
  // The disk writes while the processor verifies.
  beginFlush(folder + "/" + kReferenceName);
  beginFlush(folder + "/" + kRangeName);
  verifyProduct(source, folder, states, checked);
  if (error.empty()) checked.warnings = warningsOf(folder + "/" + kLogName);
  return checked;
}

std::string publish(const std::string& out, const std::string& product) {
  const std::string part = partName(product), folder = out + "/" + part;
  std::string error;
  for (const char* name : {kReferenceName, kRangeName, kLogName})
    if (!flush(folder + "/" + name, error)) return error;
  if (!flush(folder, error) || !publishFolder(out, part, product, error)) return error;
  // What had the name before is now in the part folder.
  removeProductFolder(folder, error);
  return error;
}

std::string toText(const Checked& checked) {
  const nlohmann::ordered_json json = {
      {"error", checked.error},
      {"reference", {checked.reference.bytes, checked.reference.sha256}},
      {"range", {checked.range.bytes, checked.range.sha256}},
      {"time", checked.time},
      {"warnings", checked.warnings}};
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

Checked parseChecked(const std::string& text) {
  Checked checked;
  try {
    const auto json = nlohmann::ordered_json::parse(text);
    checked.error = json.at("error");
    checked.reference = {kReferenceName, json.at("reference").at(0), json.at("reference").at(1)};
    checked.range = {kRangeName, json.at("range").at(0), json.at("range").at(1)};
    checked.time = json.at("time");
    checked.warnings = json.at("warnings").get<std::vector<std::string>>();
  } catch (const std::exception&) {
    checked.error = "the check ended without a result: " + text;
  }
  return checked;
}

}  // namespace statecut::cuts
