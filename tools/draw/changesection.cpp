#include <functional>

#include "diff/texts.h"
#include "draw/markup.h"
#include "draw/sections.h"

namespace statecut::draw {

namespace {

constexpr std::size_t kMostLines = 500;

// "TXAUSTIN" as "AUSTIN, TX".
std::string cityText(std::string_view city) {
  if (city.size() < 3) return "no city";
  return shown(city.substr(2)) + ", " + shown(city.substr(0, 2));
}

std::string zipPlace(const diff::Zip& zip) {
  std::string text;
  for (const std::string_view city : zip.cities)
    text += (text.empty() ? "" : "; ") + cityText(city);
  return text.empty() ? "no city" : text;
}

// The first of a list, and how many others there are.
std::string list(const std::string& title, std::size_t count,
                 const std::function<std::string(std::size_t)>& line) {
  if (count == 0) return {};
  std::string items = "<ul class=\"columns\">\n";
  for (std::size_t i = 0; i < count && i < kMostLines; ++i)
    items += "<li>" + escaped(line(i)) + "</li>\n";
  items += "</ul>\n";
  if (count > kMostLines)
    items += "<p>and " + grouped(count - kMostLines) + " others, which statedb diff lists.</p>\n";
  return details(title + " (" + grouped(count) + ")", items);
}

std::string textList(const std::string& title, const std::vector<std::string_view>& texts,
                     bool cities) {
  return list(title, texts.size(),
              [&](std::size_t i) { return cities ? cityText(texts[i]) : shown(texts[i]); });
}

std::string zipList(const std::string& title, const std::vector<diff::Zip>& zips) {
  return list(title, zips.size(),
              [&](std::size_t i) { return diff::zipText(zips[i].zip) + " " + zipPlace(zips[i]); });
}

std::string countRow(const char* what, std::size_t added, std::size_t dropped,
                     const std::string& others) {
  return "<tr><th scope=\"row\">" + std::string(what) + "</th>" + numberCell(added) +
         numberCell(dropped) + "<td>" + escaped(others) + "</td></tr>\n";
}

std::string counts(const diff::Changes& changes) {
  std::string table =
      "<table>\n<thead><tr><th scope=\"col\">What</th><th scope=\"col\" class=\"n\">Added</th><th "
      "scope=\"col\" class=\"n\">Dropped</th><th "
      "scope=\"col\">Otherwise</th></tr></thead>\n<tbody>\n";
  const auto names = [&](const char* what, const diff::Names& of) {
    table += countRow(what, of.added.size(), of.dropped.size(), "");
  };
  table += countRow("ZIP codes", changes.zipsAdded.size(), changes.zipsDropped.size(),
                    grouped(changes.zipsMoved.size()) + " moved");
  table += countRow("Cities", changes.cities.added.size(), changes.cities.dropped.size(),
                    grouped(changes.citiesRenamed.size()) + " renamed");
  table += countRow("Other city names", changes.otherNamesAdded.size(),
                    changes.otherNamesDropped.size(), "");
  names("Streets", changes.streets);
  names("Firms", changes.firms);
  if (changes.partitionsCompared) {
    diff::PartitionCounts all;
    for (const auto& [state, of] : changes.partitionsByState()) {
      all.added += of.added;
      all.dropped += of.dropped;
      all.changed += of.changed;
    }
    table += countRow("Partitions", all.added, all.dropped, grouped(all.changed) + " changed");
  }
  return tableBox("What changed, in numbers", table + "</tbody>\n</table>\n");
}

}  // namespace

std::string changesSection(const Figures& figures) {
  if (!figures.hasChanges) return {};
  const diff::Changes& changes = figures.changes;
  std::string html = "<p>Since " + escaped(figures.oldName) + ", built " +
                     dateText(figures.oldBuildStamp) + "." +
                     (changes.none() ? " Nothing changed." : "") + "</p>\n";
  for (const std::string& note : changes.notes) html += "<p>" + escaped(baseName(note)) + ".</p>\n";
  html += counts(changes);
  html += zipList("ZIP codes added", changes.zipsAdded);
  html += zipList("ZIP codes dropped", changes.zipsDropped);
  html += list("ZIP codes moved", changes.zipsMoved.size(), [&](std::size_t i) {
    const diff::MovedZip& moved = changes.zipsMoved[i];
    return diff::zipText(moved.after.zip) + " " + zipPlace(moved.before) + " \u2192 " +
           zipPlace(moved.after);
  });
  html += textList("Cities added", changes.cities.added, true);
  html += textList("Cities dropped", changes.cities.dropped, true);
  html += list("Cities renamed", changes.citiesRenamed.size(), [&](std::size_t i) {
    return cityText(changes.citiesRenamed[i].before) + " \u2192 " +
           cityText(changes.citiesRenamed[i].after);
  });
  html += textList("Streets added", changes.streets.added, false);
  html += textList("Streets dropped", changes.streets.dropped, false);
  html += textList("Firms added", changes.firms.added, false);
  html += textList("Firms dropped", changes.firms.dropped, false);
  return html;
}

}  // namespace statecut::draw
