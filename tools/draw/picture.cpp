#include "draw/picture.h"

#include <algorithm>

#include "draw/bars.h"
#include "draw/dots.h"
#include "draw/embedded.h"
#include "draw/names.h"
#include "draw/tones.h"

namespace statecut::draw {

namespace {

constexpr double kMargin = 20;
constexpr double kBarWidth = kMapWidth - 2 * kMargin;
constexpr double kLetters = 14;
constexpr double kLine = 22;
constexpr double kBar = 34;
constexpr double kCutBar = 20;
constexpr double kGap = 26;
constexpr double kSwatch = 11;

std::string attribute(const char* name, double value) {
  return std::string(" ") + name + "=\"" + decimal(value, 2) + "\"";
}

std::string text(double x, double y, const std::string& content, const char* more = "") {
  return "<text" + attribute("x", x) + attribute("y", y) + more + ">" + escaped(content) +
         "</text>\n";
}

std::string rectangle(double x, double y, double width, double height, const std::string& what) {
  return "<rect" + attribute("x", x) + attribute("y", y) + attribute("width", width) +
         attribute("height", height) + what;
}

// Draws from the top down.
class Picture {
 public:
  Picture(const Figures& figures, const Atlas& atlas) : figures_(figures), atlas_(atlas) {}

  std::string take(const std::string& credit) {
    for (const File& file : figures_.files) addFile(file);
    addMap();
    if (!credit.empty()) {
      y_ += kLine;
      body_ += text(kMargin, y_, credit, " class=\"muted\"");
    }
    return head() + body_ + "</svg>\n";
  }

 private:
  std::string head() const {
    const std::string size = decimal(kMapWidth, 0), height = decimal(y_ + kMargin, 0);
    std::string title = figures_.files.front().name, what = "Each file as a bar of its pieces";
    if (figures_.hasCut) {
      title += " and its cut " + figures_.files.front().cutName;
      what += ", with what the cut keeps of each under it";
    }
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + size + " " + height +
           "\" role=\"img\" aria-labelledby=\"title what\">\n<title id=\"title\">" +
           escaped(title) + "</title>\n<desc id=\"what\">" + escaped(what) +
           "; the ZIP codes as dots where they lie.</desc>\n<style>\n" +
           std::string(embedded::coloursCss) + std::string(embedded::pictureCss) +
           "</style>\n<rect class=\"ground\" width=\"100%\" height=\"100%\"/>\n";
  }

  void addFile(const File& file) {
    y_ += kGap;
    body_ += text(kMargin, y_, file.name, " class=\"name\"");
    body_ += text(kMargin + kBarWidth, y_, bytesText(file.bytes), " class=\"end\"");
    y_ += 8;
    const std::vector<Slice> slices = slicesOf(file);
    for (const Slice& slice : slices) addSlice(file, slice);
    y_ += kBar;
    if (!file.cutName.empty()) addCut(file, slices);
    addLegend(file);
  }

  void addSlice(const File& file, const Slice& slice) {
    const double x = kMargin + slice.at * kBarWidth, width = slice.width * kBarWidth;
    const std::string share = shareText(slice.piece->bytes, file.bytes);
    body_ +=
        rectangle(x, y_, width, kBar,
                  std::string(" class=\"piece f-") + familyId(slice.piece->family) + "\"><title>" +
                      escaped(slice.piece->name) + ": " + grouped(slice.piece->bytes) + " bytes, " +
                      escaped(share) + "</title></rect>\n");
    for (const std::string& label : {slice.piece->name + " " + share, slice.piece->name}) {
      if (textWidth(label.size(), kLetters) + 12 > width) continue;
      body_ += text(x + 6, y_ + kBar / 2 + 5, label, " class=\"on\"");
      break;
    }
  }

  void addCut(const File& file, const std::vector<Slice>& slices) {
    y_ += 3;
    for (const Slice& slice : slices) {
      const double x = kMargin + slice.at * kBarWidth, width = slice.width * kBarWidth;
      body_ += rectangle(x, y_, width, kCutBar, " class=\"track\"/>\n");
      if (slice.kept > 0)
        body_ += rectangle(x, y_, width * slice.kept, kCutBar,
                           std::string(" class=\"kept f-") + familyId(slice.piece->family) +
                               "\"><title>" + escaped(slice.piece->name) +
                               " in the cut: " + grouped(slice.piece->kept) + " of " +
                               grouped(slice.piece->bytes) + " bytes</title></rect>\n");
    }
    y_ += kCutBar + kLine - 4;
    body_ += text(kMargin, y_, file.cutName, " class=\"name\"");
    body_ += text(kMargin + kBarWidth, y_,
                  bytesText(file.cutBytes) + ", " + shareText(file.cutBytes, file.bytes) + " kept",
                  " class=\"end\"");
  }

  void addLegend(const File& file) {
    y_ += kLine;
    double x = kMargin;
    for (const Family family : familiesOf(file))
      addSwatch(x, std::string("f-") + familyId(family), familyLabel(family));
  }

  // Goes on in the next line where the row is full.
  void addSwatch(double& x, const std::string& colour, const std::string& label) {
    const double width = kSwatch + 6 + textWidth(label.size(), kLetters) + 14;
    if (x + width > kMargin + kBarWidth) {
      x = kMargin;
      y_ += kLine;
    }
    body_ += rectangle(x, y_ - kSwatch, kSwatch, kSwatch, " class=\"" + colour + "\"/>\n");
    body_ += text(x + kSwatch + 6, y_, label, " class=\"muted\"");
    x += width;
  }

  void addMap() {
    const Mode mode = modesOf(figures_).front();
    y_ += kGap + 4;
    body_ += text(kMargin, y_, mode.title, " class=\"name\"");
    y_ += kLine;
    double x = kMargin;
    for (const Tone& tone : mode.tones)
      if (tone.zips != 0)
        addSwatch(x, "tone-" + tone.id, tone.label + " (" + grouped(tone.zips) + ")");
    y_ += 8;
    body_ += "<g transform=\"translate(0 " + decimal(y_, 2) + ")\">\n";
    for (const Inset& inset : insets()) {
      body_ += rectangle(inset.x, inset.y, inset.width, inset.height, " class=\"frame\"/>\n");
      body_ += text(inset.x + 6, inset.y + 14, inset.label, " class=\"small\"");
    }
    body_ += dotsSvg(figures_, atlas_, mode) + "</g>\n";
    y_ += kMapHeight;
    addNotPlaced();
  }

  void addNotPlaced() {
    std::uint64_t missing = 0;
    for (const Zip& zip : figures_.zips) {
      MapPoint at;
      if (!zip.dropped && atlas_.find(zip.zip, at) != Placing::OnMap) ++missing;
    }
    if (missing == 0) return;
    y_ += kLine;
    body_ += text(kMargin, y_,
                  grouped(missing) + (missing == 1 ? " ZIP code has" : " ZIP codes have") +
                      " no place on the map: military addresses, or without coordinates.",
                  " class=\"muted\"");
  }

  const Figures& figures_;
  const Atlas& atlas_;
  double y_ = 6;
  std::string body_;
};

}  // namespace

std::string pictureSvg(const Figures& figures, const Atlas& atlas, const std::string& credit) {
  return Picture(figures, atlas).take(credit);
}

}  // namespace statecut::draw
