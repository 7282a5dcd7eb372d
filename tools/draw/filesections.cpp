#include <algorithm>

#include "draw/bars.h"
#include "draw/markup.h"
#include "draw/sections.h"

namespace statecut::draw {

namespace {

constexpr double kLabelLetters = 13;

// Shown where the bar is so wide that the text fits its piece: a class for each hundred units, and
// nothing for a text that no screen has room for.
std::string labelClass(const std::string& label, double share) {
  const double needed = (textWidth(label.size(), kLabelLetters) + 14) / share;
  if (needed > 1200) return {};
  return "at" + std::to_string(std::max(3, static_cast<int>(needed / 100) + 1)) + "00";
}

// `look` is "piece", which stands apart from its neighbours, or "kept".
std::string piece(const char* look, const Slice& slice, double width, int height,
                  const std::string& title, const std::string& label) {
  std::string svg = "<svg x=\"" + percent(slice.at) + "\" width=\"" + percent(width) +
                    "\" height=\"" + std::to_string(height) + "\"><title>" + escaped(title) +
                    "</title><rect class=\"" + look + " f-" + familyId(slice.piece->family) +
                    "\" width=\"100%\" height=\"100%\"/>";
  if (!label.empty())
    if (const std::string shownAt = labelClass(label, width); !shownAt.empty())
      svg += "<text class=\"on " + shownAt + "\" x=\"7\" y=\"22\">" + escaped(label) + "</text>";
  return svg + "</svg>\n";
}

std::string bar(const std::string& label, int height, const std::string& content) {
  return "<svg class=\"bar\" role=\"img\" width=\"100%\" height=\"" + std::to_string(height) +
         "\" aria-label=\"" + escaped(label) + "\">\n" + content + "</svg>\n";
}

std::string heading(const std::string& name, const std::string& figure) {
  return "<p class=\"bar-name\"><strong>" + escaped(name) + "</strong> <span>" + escaped(figure) +
         "</span></p>\n";
}

// Its largest pieces, for those who don't see it.
std::string described(const File& file) {
  std::vector<const Piece*> pieces;
  for (const Piece& piece : file.pieces) pieces.push_back(&piece);
  std::stable_sort(pieces.begin(), pieces.end(),
                   [](const Piece* a, const Piece* b) { return a->bytes > b->bytes; });
  std::string text = "Bar of " + file.name + ". The largest pieces: ";
  for (std::size_t i = 0; i < std::min<std::size_t>(pieces.size(), 4); ++i)
    text += (i == 0 ? "" : ", ") + pieces[i]->name + " " + shareText(pieces[i]->bytes, file.bytes);
  return text + ". All stand in the table below.";
}

std::string pieceBars(const File& file) {
  constexpr int kHigh = 34, kLow = 18;
  std::string source, cut;
  for (const Slice& slice : slicesOf(file)) {
    const Piece& of = *slice.piece;
    source += piece(
        "piece", slice, slice.width, kHigh,
        of.name + ": " + grouped(of.bytes) + " bytes, " + shareText(of.bytes, file.bytes), of.name);
    if (slice.kept > 0)
      cut += piece(
          "kept", slice, slice.width * slice.kept, kLow,
          of.name + " in the cut: " + grouped(of.kept) + " of " + grouped(of.bytes) + " bytes", "");
  }
  std::string html =
      heading(file.name, bytesText(file.bytes)) + bar(described(file), kHigh, source);
  if (file.cutName.empty()) return html;
  return html +
         bar("What the cut keeps of each piece, under it; the numbers stand in the table below.",
             kLow, "<rect class=\"track\" width=\"100%\" height=\"100%\"/>\n" + cut) +
         heading(file.cutName,
                 bytesText(file.cutBytes) + ", " + shareText(file.cutBytes, file.bytes) + " kept");
}

std::string legend(const File& file) {
  std::string html = "<ul class=\"legend\">\n";
  for (const Family family : familiesOf(file))
    html += "<li>" + swatch(std::string("f-") + familyId(family)) + " " +
            escaped(familyLabel(family)) + "</li>\n";
  return html + "</ul>\n";
}

std::string pieceTable(const File& file) {
  const bool cut = !file.cutName.empty();
  std::string table =
      "<table>\n<thead><tr><th scope=\"col\">Piece</th><th scope=\"col\" class=\"n\">"
      "Bytes</th><th scope=\"col\" class=\"n\">Share</th>";
  if (cut)
    table += "<th scope=\"col\" class=\"n\">In the cut</th><th scope=\"col\" class=\"n\">Kept</th>";
  table += "</tr></thead>\n<tbody>\n";
  const auto row = [&](const char* tag, const std::string& name, std::uint64_t bytes,
                       std::uint64_t kept) {
    table += "<tr><th scope=\"row\">" + std::string(tag) + escaped(name) + "</th>" +
             numberCell(bytes) + "<td class=\"n\">" + shareText(bytes, file.bytes) + "</td>";
    if (cut)
      table += numberCell(kept) + "<td class=\"n\">" +
               (bytes == 0 ? std::string("&ndash;") : shareText(kept, bytes)) + "</td>";
    table += "</tr>\n";
  };
  for (const Piece& one : file.pieces)
    row((swatch(std::string("f-") + familyId(one.family)) + " ").c_str(), one.name, one.bytes,
        one.kept);
  row("", "All", file.bytes, file.cutBytes);
  return details("Pieces of " + file.name + " as a table",
                 tableBox("Pieces of " + file.name, table + "</tbody>\n</table>\n"));
}

// Both files at one scale, for how large they are beside each other.
std::string scaleBars(const Figures& figures) {
  if (figures.files.size() < 2) return {};
  std::uint64_t most = 1;
  for (const File& file : figures.files) most = std::max({most, file.bytes, file.cutBytes});
  std::string rows;
  const auto row = [&](const std::string& name, std::uint64_t bytes) {
    const double share = static_cast<double>(bytes) / static_cast<double>(most);
    rows += "<tr><th scope=\"row\">" + escaped(name) + "</th><td class=\"n\">" + bytesText(bytes) +
            "</td><td class=\"wide\"><svg class=\"line\" aria-hidden=\"true\" width=\"100%\" "
            "height=\"12\"><rect class=\"track\" width=\"100%\" height=\"100%\"/><rect "
            "class=\"whole\" width=\"" +
            percent(share) + "\" height=\"100%\"/></svg></td></tr>\n";
  };
  for (const File& file : figures.files) {
    row(file.name, file.bytes);
    if (!file.cutName.empty()) row(file.cutName, file.cutBytes);
  }
  return "<table class=\"scale\">\n<caption>The files at one scale</caption>\n<tbody>\n" + rows +
         "</tbody>\n</table>\n";
}

std::string fact(const std::string& value, const std::string& label, const std::string& more) {
  return "<div><dt>" + escaped(label) + "</dt><dd>" + escaped(value) + "</dd>" +
         (more.empty() ? "" : "<dd class=\"more\">" + escaped(more) + "</dd>") + "</div>\n";
}

}  // namespace

std::string summarySection(const Figures& figures) {
  std::uint64_t bytes = 0, kept = 0;
  for (const File& file : figures.files) {
    bytes += file.bytes;
    kept += file.cutBytes;
  }
  const auto ofCut = [&](const std::string& text) {
    return figures.hasCut ? text + " in the cut" : std::string();
  };
  std::string html = "<dl class=\"facts\">\n";
  html += fact(grouped(figures.zipCount()), "ZIP codes", ofCut(grouped(figures.keptZips)));
  html += fact(grouped(figures.cityNames), "city names", ofCut(grouped(figures.keptCityNames)));
  html += fact(bytesText(bytes), figures.files.size() > 1 ? "in two files" : "in one file",
               ofCut(bytesText(kept)));
  html += fact(dateText(figures.buildStamp), figures.isCut ? "built, and cut since" : "built",
               figures.hasChanges ? "after " + dateText(figures.oldBuildStamp) : "");
  return html + "</dl>\n";
}

std::string filesSection(const Figures& figures) {
  std::string html = scaleBars(figures);
  if (figures.hasCut)
    html += "<p>Under each piece lies what the cut keeps of it, at the same scale.</p>\n";
  for (const File& file : figures.files)
    html +=
        "<div class=\"file\">\n" + pieceBars(file) + legend(file) + pieceTable(file) + "</div>\n";
  return html;
}

}  // namespace statecut::draw
