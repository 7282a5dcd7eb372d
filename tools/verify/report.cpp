#include "verify/report.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace statecut::verify {

namespace {

const std::string& nameOf(File file, const FileNames& names) {
  return file == File::Reference ? names.reference : names.range;
}

std::vector<const Finding*> byRule(const Report& report) {
  std::vector<const Finding*> sorted;
  for (const Finding& finding : report.findings()) sorted.push_back(&finding);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Finding* a, const Finding* b) { return a->rule < b->rule; });
  return sorted;
}

// The ignored rules that were broken.
template <typename Visit>
void forEachIgnored(const Report& report, Visit&& visit) {
  for (std::size_t i = 0; i < kRules; ++i)
    if (const auto id = static_cast<RuleId>(i); report.ignored(id) && report.count(id) > 0)
      visit(rule(id), report.count(id));
}

}  // namespace

bool Report::clean() const { return findings_.empty(); }

void Report::keep(RuleId rule, File file, std::int64_t record, std::uint64_t offset,
                  std::string text) {
  findings_.push_back({rule, file, record, offset, std::move(text)});
}

void printText(std::ostream& out, const Report& report, const FileNames& names) {
  if (report.clean()) out << names.reference << ", " << names.range << ": nothing wrong\n";
  const auto sorted = byRule(report);
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const Finding& finding = *sorted[i];
    out << rule(finding.rule).id << ": " << nameOf(finding.file, names);
    if (finding.record != kNoRecord) out << " record " << finding.record;
    out << " offset " << finding.offset << ": " << finding.text << '\n';
    const bool last = i + 1 == sorted.size() || sorted[i + 1]->rule != finding.rule;
    const std::uint64_t count = report.count(finding.rule);
    if (last && count > Report::kKeptPerRule)
      out << rule(finding.rule).id << ": " << count - Report::kKeptPerRule << " more, " << count
          << " in all\n";
  }
  forEachIgnored(report, [&](const Rule& one, std::uint64_t count) {
    out << one.id << ": ignored, " << count << " in all\n";
  });
}

void printJson(std::ostream& out, const Report& report, const FileNames& names) {
  using nlohmann::ordered_json;
  ordered_json document = {{"ok", report.clean()},
                           {"reference", names.reference},
                           {"range", names.range},
                           {"counts", ordered_json::object()},
                           {"ignored", ordered_json::object()},
                           {"findings", ordered_json::array()}};
  for (const Finding* finding : byRule(report)) {
    document["counts"][rule(finding->rule).id] = report.count(finding->rule);
    ordered_json one = {{"rule", rule(finding->rule).id},
                        {"file", nameOf(finding->file, names)},
                        {"record", nullptr},
                        {"offset", finding->offset},
                        {"text", finding->text}};
    if (finding->record != kNoRecord) one["record"] = finding->record;
    document["findings"].push_back(std::move(one));
  }
  forEachIgnored(
      report, [&](const Rule& one, std::uint64_t count) { document["ignored"][one.id] = count; });
  // File names may hold any bytes.
  out << document.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace statecut::verify
