#include <algorithm>

#include "draw/markup.h"
#include "draw/sections.h"

namespace statecut::draw {

namespace {

struct Column {
  const char* title;
  std::uint64_t (*value)(const State&);
};

// What has a column of numbers in this report.
std::vector<Column> columnsOf(const Figures& figures) {
  std::vector<Column> columns = {
      {"ZIP codes", [](const State& s) { return s.zips; }},
      {"City names", [](const State& s) { return s.cityNames; }},
  };
  if (figures.hasCut) columns.push_back({"ZIP codes kept", [](const State& s) { return s.kept; }});
  if (figures.hasChanges) {
    columns.push_back({"Added", [](const State& s) { return s.added; }});
    columns.push_back({"Dropped", [](const State& s) { return s.dropped; }});
    columns.push_back({"Moved", [](const State& s) { return s.moved; }});
    if (figures.changes.partitionsCompared)
      columns.push_back({"Changed", [](const State& s) { return s.changed; }});
  }
  return columns;
}

const std::vector<Column>& byteColumns() {
  static const std::vector<Column> kColumns = {
      {"Streets", [](const State& s) { return s.bytes[0]; }},
      {"PO Boxes", [](const State& s) { return s.bytes[1]; }},
      {"Rural routes", [](const State& s) { return s.bytes[2]; }},
      {"Shared", [](const State& s) { return s.shared; }},
  };
  return kColumns;
}

std::string sortHeading(const std::string& title, bool number) {
  return std::string("<th scope=\"col\"") + (number ? " class=\"n\"" : " aria-sort=\"ascending\"") +
         "><button type=\"button\" class=\"sort\">" + escaped(title) + "</button></th>";
}

std::string smallBar(const State& state, std::uint64_t most) {
  static constexpr const char* kColours[] = {"f-sfh", "f-pob", "f-rr", "f-other"};
  const std::uint64_t parts[] = {state.bytes[0], state.bytes[1], state.bytes[2], state.shared};
  std::string svg = "<svg class=\"line\" aria-hidden=\"true\" width=\"100%\" height=\"10\">";
  double at = 0;
  for (std::size_t i = 0; i < std::size(parts); ++i) {
    const double share = static_cast<double>(parts[i]) / static_cast<double>(most);
    if (parts[i] != 0)
      svg += "<rect class=\"" + std::string(kColours[i]) + "\" x=\"" + percent(at) + "\" width=\"" +
             percent(share) + "\" height=\"100%\"/>";
    at += share;
  }
  return svg + "</svg>";
}

std::string stateRow(const Figures& figures, const State& state, std::uint64_t most) {
  const std::string name = state.abbreviation.empty() ? "No state" : state.name;
  std::string row = "<tr><th scope=\"row\" data-value=\"" + escaped(name) + "\">" + escaped(name);
  if (!state.abbreviation.empty() && name != shown(state.abbreviation))
    row += " <abbr>" + escaped(shown(state.abbreviation)) + "</abbr>";
  row += "</th>";
  for (const Column& column : columnsOf(figures)) row += numberCell(column.value(state));
  if (figures.bytesKnown) {
    row += numberCell(state.allBytes()) + "<td class=\"wide\">" + smallBar(state, most) + "</td>";
    for (const Column& column : byteColumns()) row += numberCell(column.value(state));
  }
  return row + "</tr>\n";
}

std::vector<const State*> byName(const std::vector<State>& states) {
  std::vector<const State*> sorted;
  sorted.reserve(states.size());
  for (const State& state : states) sorted.push_back(&state);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const State* a, const State* b) { return a->name < b->name; });
  return sorted;
}

}  // namespace

std::string statesSection(const Figures& figures) {
  std::uint64_t most = 1;
  State all;
  for (const State& state : figures.states) {
    most = std::max(most, state.allBytes());
    for (std::size_t i = 0; i < kKindCount; ++i) all.bytes[i] += state.bytes[i];
    all.shared += state.shared;
  }
  std::string table = "<table id=\"states\">\n<thead><tr>" + sortHeading("State", false);
  for (const Column& column : columnsOf(figures)) table += sortHeading(column.title, true);
  if (figures.bytesKnown) {
    table += sortHeading("Bytes", true) + "<td class=\"wide\"></td>";
    for (const Column& column : byteColumns()) table += sortHeading(column.title, true);
  }
  table += "</tr></thead>\n<tbody>\n";
  for (const State* state : byName(figures.states)) table += stateRow(figures, *state, most);
  table += "</tbody>\n<tfoot><tr><th scope=\"row\">All</th>";
  for (const Column& column : columnsOf(figures)) {
    std::uint64_t sum = 0;
    for (const State& state : figures.states) sum += column.value(state);
    table += numberCell(sum);
  }
  if (figures.bytesKnown) {
    table += numberCell(all.allBytes()) + "<td class=\"wide\"></td>";
    for (const Column& column : byteColumns()) table += numberCell(column.value(all));
  }
  std::string html;
  if (figures.bytesKnown)
    html = "<ul class=\"legend\">\n<li>" + swatch("f-sfh") + " Streets</li>\n<li>" +
           swatch("f-pob") + " PO Boxes</li>\n<li>" + swatch("f-rr") + " Rural routes</li>\n<li>" +
           swatch("f-other") + " shared by ZIP codes</li>\n</ul>\n";
  return html + tableBox("States", table + "</tr></tfoot>\n</table>\n") +
         "<p id=\"sorted\" class=\"quiet\" role=\"status\"></p>\n";
}

}  // namespace statecut::draw
