#include "report/document.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace statecut::bench {

namespace {

std::string medianText(const Row& row, const Figure& figure) {
  return valueText(row.measure, median(ratios(figure)));
}

std::string minimumText(const Row& row, const Figure& figure) {
  return valueText(row.measure, minimum(ratios(figure)));
}

// A median of what was measured: "12.3 ms".
std::string amount(const std::vector<double>& values, const std::string& unit) {
  if (values.empty()) return "";
  const double value = median(values);
  char text[60];
  if (unit == "s" && value < 1)
    std::snprintf(text, sizeof text, "%.2f ms", value * 1000);
  else if (unit == "bytes")
    std::snprintf(text, sizeof text, "%.0f bytes", value);
  else
    std::snprintf(text, sizeof text, "%.4g %s", value, unit.c_str());
  return text;
}

std::string title(const Result& result, const Figure& figure) {
  return figure.name.empty() ? result.row->id : std::string(result.row->id) + ", " + figure.name;
}

void writeSummary(std::ostream& out, const std::vector<Result>& results) {
  out << "| What | Against | Goal | Stretch | Median | Minimum | Reached |\n"
         "|---|---|---:|---:|---:|---:|---|\n";
  for (const Result& result : results) {
    const Row& row = *result.row;
    const Figure* worst = result.worst();
    out << "| " << row.what << " | " << row.against << " | " << boundText(row.measure, row.goal)
        << " | " << boundText(row.measure, row.stretch) << " | "
        << (worst == nullptr ? "" : medianText(row, *worst)) << " | "
        << (worst == nullptr ? "" : minimumText(row, *worst)) << " | " << verdict(result) << " |\n";
  }
}

void writeFigures(std::ostream& out, const std::vector<Result>& results) {
  out << "| Figure | statecut | Other | Median | Minimum |\n|---|---:|---:|---:|---:|\n";
  for (const Result& result : results)
    for (const Figure& figure : result.samples.figures)
      out << "| " << title(result, figure) << " | " << amount(figure.ours, figure.unit) << " | "
          << amount(figure.peer, figure.unit) << " | " << medianText(*result.row, figure) << " | "
          << minimumText(*result.row, figure) << " |\n";
}

void writeReasons(std::ostream& out, const std::vector<Result>& results,
                  const std::map<std::string, std::string>& reasons) {
  bool none = true;
  for (const Result& result : results) {
    const auto reason = reasons.find(result.row->id);
    const bool misses = verdict(result) == "misses";
    if (!misses && reason == reasons.end()) continue;
    none = false;
    out << "- **" << result.row->what << "** against " << result.row->against << " (`"
        << result.row->id << "`, " << verdict(result)
        << "): " << (reason == reasons.end() ? "no reason is noted." : reason->second) << '\n';
  }
  if (none) out << "None.\n";
}

void writeMethods(std::ostream& out, const std::vector<Result>& results) {
  for (const Result& result : results) {
    out << "- `" << result.row->id << "`: " << result.row->how;
    for (const std::string& note : result.samples.notes) out << " *" << note << ".*";
    out << '\n';
  }
}

}  // namespace

void printTable(std::ostream& out, const std::vector<Result>& results) {
  char line[240];
  std::snprintf(line, sizeof line, "%-34s %14s %14s %10s %10s %9s  %s\n", "", "statecut", "other",
                "median", "minimum", "goal", "reached");
  out << line;
  for (const Result& result : results) {
    const Row& row = *result.row;
    for (const Figure& figure : result.samples.figures) {
      const Result alone{&row, {{figure}, {}}};
      // The signs of the goals have more bytes than columns.
      const std::string goal = boundText(row.measure, row.goal);
      const int wide = goal.rfind("≤", 0) == 0 ? 11 : 9;
      std::snprintf(line, sizeof line, "%-34s %14s %14s %10s %10s %*s  %s\n",
                    title(result, figure).c_str(), amount(figure.ours, figure.unit).c_str(),
                    amount(figure.peer, figure.unit).c_str(), medianText(row, figure).c_str(),
                    minimumText(row, figure).c_str(), wide, goal.c_str(), verdict(alone).c_str());
      out << line;
    }
    for (const std::string& note : result.samples.notes) out << "    " << note << '\n';
  }
}

void writeDocument(std::ostream& out, const std::vector<Result>& results,
                   const std::vector<std::string>& facts,
                   const std::map<std::string, std::string>& reasons) {
  out << "# Performance\n\n"
         "Written by `./dev bench`. Each figure is a ratio, our amount over the other's, so that "
         "less is better;\nthe two are measured in turn, round by round, and the median and the "
         "minimum of the rounds' ratios\nare shown. A row with several figures shows the worst of "
         "them; all of them stand below it.\n\n## Run\n\n";
  for (const std::string& fact : facts) out << "- " << fact << '\n';
  out << "\n## Table\n\n";
  writeSummary(out, results);
  out << "\n## Rows that miss their goal, and remarks\n\n";
  writeReasons(out, results, reasons);
  out << "\n## All figures\n\nAmounts are medians.\n\n";
  writeFigures(out, results);
  out << "\n## How each figure was taken\n\n";
  writeMethods(out, results);
}

}  // namespace statecut::bench
