#include <array>
#include <map>

#include "diff/texts.h"
#include "draw/markup.h"
#include "draw/sections.h"

namespace statecut::draw {

namespace {

constexpr std::size_t kMostRanges = 2000;

std::string legend(const Mode& mode, bool hidden) {
  std::string html =
      "<ul class=\"legend\" data-mode=\"" + mode.id + "\"" + (hidden ? " hidden" : "") + ">\n";
  for (const Tone& tone : mode.tones)
    if (tone.zips != 0)
      html += "<li>" + swatch("tone-" + tone.id) + " " + escaped(tone.label) + " <span>" +
              grouped(tone.zips) + "</span></li>\n";
  return html + "</ul>\n";
}

std::string choice(const std::vector<Mode>& modes) {
  if (modes.size() < 2) return {};
  std::string html = "<fieldset class=\"choice needs-script\">\n<legend>Colours</legend>\n";
  for (std::size_t i = 0; i < modes.size(); ++i)
    html += "<label><input type=\"radio\" name=\"mode\" value=\"" + modes[i].id + "\"" +
            (i == 0 ? " checked" : "") + "> " + escaped(modes[i].title) + "</label>\n";
  return html + "</fieldset>\n";
}

// Of a state: how many dots each tone of the first mode has, and how many are not on the map.
struct Row {
  std::vector<std::uint64_t> tones;
  std::uint64_t missing = 0;
};

std::string mapTable(const Figures& figures, const Atlas& atlas, const Mode& mode) {
  std::map<std::uint32_t, Row> rows;
  for (std::size_t i = 0; i < figures.zips.size(); ++i) {
    if (mode.ofZip[i] == kNoTone) continue;
    Row& row = rows[figures.zips[i].state];
    row.tones.resize(mode.tones.size());
    MapPoint at;
    if (atlas.find(figures.zips[i].zip, at) == Placing::OnMap)
      ++row.tones[mode.ofZip[i]];
    else
      ++row.missing;
  }
  std::string table = "<table>\n<thead><tr><th scope=\"col\">State</th>";
  for (const Tone& tone : mode.tones)
    table += "<th scope=\"col\" class=\"n\">" + escaped(tone.label) + "</th>";
  table += "<th scope=\"col\" class=\"n\">not on the map</th></tr></thead>\n<tbody>\n";
  for (const auto& [state, row] : rows) {
    table += "<tr><th scope=\"row\">" + escaped(figures.states[state].name) + "</th>";
    for (const std::uint64_t dots : row.tones) table += numberCell(dots);
    table += numberCell(row.missing) + "</tr>\n";
  }
  return details("The map as a table",
                 tableBox("Dots of the map by state", table + "</tbody>\n</table>\n"));
}

const char* reasonText(Placing placing) {
  switch (placing) {
    case Placing::Military:
      return "military addresses, which lie where the forces are";
    case Placing::NoCoordinates:
      return "without coordinates in the list of places";
    case Placing::NotListed:
      return "not in the list of places";
    default:
      return "with coordinates outside of the map";
  }
}

// ZIP codes, those that follow each other as a range.
std::string listed(const std::vector<std::uint32_t>& zips) {
  std::string text;
  std::size_t ranges = 0;
  for (std::size_t i = 0; i < zips.size();) {
    std::size_t last = i;
    while (last + 1 < zips.size() && zips[last + 1] == zips[last] + 1) ++last;
    if (ranges++ == kMostRanges) return text + " and others";
    text += (text.empty() ? "" : ", ") + diff::zipText(zips[i]);
    if (last > i) text += "&ndash;" + diff::zipText(zips[last]);
    i = last + 1;
  }
  return text;
}

std::string notPlaced(const Figures& figures, const Atlas& atlas) {
  std::map<Placing, std::vector<std::uint32_t>> missing;
  std::size_t count = 0;
  for (const Zip& zip : figures.zips) {
    MapPoint at;
    const Placing placing = atlas.find(zip.zip, at);
    if (placing == Placing::OnMap) continue;
    missing[placing].push_back(zip.zip);
    ++count;
  }
  if (count == 0) return "<p>Every ZIP code is on the map.</p>\n";
  std::string list = "<ul>\n";
  for (const auto& [placing, zips] : missing)
    list += "<li><strong>" + grouped(zips.size()) + "</strong> " + reasonText(placing) +
            ": <span class=\"codes\">" + listed(zips) + "</span></li>\n";
  return details(
      grouped(count) + (count == 1 ? " ZIP code is" : " ZIP codes are") + " not on the map",
      list + "</ul>\n");
}

}  // namespace

std::string mapSection(const Figures& figures, const Atlas& atlas, const std::vector<Mode>& modes) {
  std::string html = choice(modes);
  for (std::size_t i = 0; i < modes.size(); ++i) html += legend(modes[i], i != 0);
  html +=
      "<canvas id=\"map\" class=\"needs-script\" role=\"img\" aria-label=\"Map of the United "
      "States: a dot for each ZIP code, coloured as the legend tells. Its numbers by state stand "
      "in the table below.\"></canvas>\n<p id=\"here\" class=\"here needs-script\">Point at the "
      "map, or look a ZIP code up, to see what lies there.</p>\n";
  return html + mapTable(figures, atlas, modes.front()) + notPlaced(figures, atlas);
}

}  // namespace statecut::draw
