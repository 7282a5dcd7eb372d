#include "draw/page.h"

#include <map>

#include "draw/embedded.h"
#include "draw/encode.h"
#include "draw/markup.h"
#include "draw/sections.h"
#include "draw/tones.h"

namespace statecut::draw {

namespace {

// Fills in what stands between "{{" and "}}". Nothing that was filled in is looked at again.
std::string filled(std::string_view text, const std::map<std::string, std::string>& values) {
  std::string result;
  for (;;) {
    const std::size_t open = text.find("{{"), close = text.find("}}", open);
    if (open == std::string_view::npos || close == std::string_view::npos) break;
    result += text.substr(0, open);
    result += values.at(std::string(text.substr(open + 2, close - open - 2)));
    text.remove_prefix(close + 2);
  }
  return result += text;
}

std::string titleOf(const Figures& figures) {
  std::string title = figures.files.front().name;
  if (figures.files.size() > 1) title += " and " + figures.files[1].name;
  return title;
}

std::string section(const std::string& id, const std::string& title, const std::string& content) {
  if (content.empty()) return {};
  return "<section id=\"" + id + "\" aria-labelledby=\"" + id + "-title\">\n<h2 id=\"" + id +
         "-title\">" + title + "</h2>\n" + content + "</section>\n";
}

std::string link(const std::string& id, const std::string& title) {
  return "<li><a href=\"#" + id + "\">" + title + "</a></li>\n";
}

std::string creditSection(const std::string& credit) {
  if (credit.empty()) return {};
  return "<p>" + escaped(credit) + "</p>\n" +
         details(
             "Origin and licences of the coordinates",
             "<pre tabindex=\"0\" aria-label=\"Notice of the data\">" +
                 [] {
                   std::string text;
                   std::string_view rest = embedded::notice;
                   while (!rest.empty()) {
                     const std::size_t end = std::min(rest.find('\n'), rest.size() - 1);
                     text += escaped(rest.substr(0, end)) + "\n";
                     rest.remove_prefix(end + 1);
                   }
                   return text;
                 }() +
                 "</pre>\n");
}

}  // namespace

std::string pageHtml(const Figures& figures, const Atlas& atlas, const std::string& credit) {
  const std::vector<Mode> modes = modesOf(figures);
  const std::string style = std::string(embedded::coloursCss) + std::string(embedded::pageCss);
  const std::string script = "'use strict';\n" + std::string(embedded::dataJs) +
                             std::string(embedded::mapJs) + std::string(embedded::lookupJs) +
                             std::string(embedded::statesJs);
  const std::string changes = changesSection(figures);
  return filled(
      embedded::pageHtml,
      {{"title", escaped(titleOf(figures))},
       {"policy", "default-src 'none'; script-src '" + sha256Source(script) + "'; style-src '" +
                      sha256Source(style) + "'; base-uri 'none'; form-action 'none'"},
       {"style", style},
       {"script", script},
       {"kind", figures.isCut    ? "A state cut"
                : figures.hasCut ? "A database and a cut of it"
                                 : "A database"},
       {"changes-link", changes.empty() ? "" : link("changes", "Changes")},
       {"summary", summarySection(figures)},
       {"files", section("files", "Files", filesSection(figures))},
       {"map", mapSection(figures, atlas, modes)},
       {"states", section("states-section", "States", statesSection(figures))},
       {"changes", section("changes", "Changes", changes)},
       {"credit", creditSection(credit)},
       {"data", pageData(figures, atlas, modes)}});
}

}  // namespace statecut::draw
