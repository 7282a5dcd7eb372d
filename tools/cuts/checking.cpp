#include "cuts/checking.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "cuts/digest.h"
#include "cuts/flushed.h"
#include "cuts/names.h"
#include "cuts/partfolder.h"
#include "dbfiles/controlrec.h"
#include "format/mapped.h"
#include "verify/verify.h"

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

void verifyProduct(const Source& source, const std::string& folder,
                   const std::vector<std::string>& states, std::string& error) {
  verify::Options options;
  options.ref = folder + "/" + kReferenceName;
  options.rng = folder + "/" + kRangeName;
  options.sourceRef = source.ref;
  options.sourceRng = source.rng;
  for (const std::string& state : states) options.states += state + ",";
  options.soundSource = source.sound;
  const verify::Report report = verify::check(options, error);
  if (!error.empty())
    error = "verify: " + error;
  else if (!report.clean())
    error = finding(report);
}

std::uint32_t cutStamp(const std::string& path, std::string& error) {
  const auto mapped = format::MappedFile::open(path, error);
  if (!error.empty() || mapped.bytes().size() < RefControlRec::size) return 0;
  return le::get<4>(mapped.bytes().data() + RefControlRec::stateCutTimeStamp.at);
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

void publish(const std::string& out, const std::string& product, std::string& error) {
  const std::string part = partName(product), folder = out + "/" + part;
  for (const char* name : {kReferenceName, kRangeName, kLogName})
    if (!flush(folder + "/" + name, error)) return;
  if (!flush(folder, error) || !publishFolder(out, part, product, error)) return;
  // What had the name before is now in the part folder.
  removeProductFolder(folder, error);
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

bool isSound(const Source& source) {
  format::exitOnLostPage();
  verify::Options options;
  options.ref = source.ref;
  options.rng = source.rng;
  std::string error;
  return verify::check(options, error).clean() && error.empty();
}

FileRecord recordOfFile(const std::string& folder, const std::string& name, std::string& error) {
  FileRecord record;
  record.name = name;
  std::error_code code;
  record.bytes = std::filesystem::file_size(folder + "/" + name, code);
  if (code)
    error = folder + "/" + name + ": " + code.message();
  else
    record.sha256 = sha256OfFile(folder + "/" + name, error);
  return record;
}

Checked checkAndPublish(const Source& source, const std::string& out, const std::string& product,
                        const std::vector<std::string>& states) {
  format::exitOnLostPage();
  const std::string folder = out + "/" + partName(product);
  Checked checked;
  std::string& error = checked.error;
  // The disk writes while the processor verifies.
  beginFlush(folder + "/" + kReferenceName);
  beginFlush(folder + "/" + kRangeName);
  verifyProduct(source, folder, states, error);
  if (error.empty()) checked.time = cutStamp(folder + "/" + kReferenceName, error);
  if (error.empty()) checked.reference = recordOfFile(folder, kReferenceName, error);
  if (error.empty()) checked.range = recordOfFile(folder, kRangeName, error);
  if (error.empty()) checked.warnings = warningsOf(folder + "/" + kLogName);
  if (error.empty()) publish(out, product, error);
  return checked;
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
