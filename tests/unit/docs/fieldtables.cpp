#include "fieldtables.h"

#include <stdexcept>

#include "dbfiles/controlrec.h"
#include "tables/directory.h"
#include "tables/rows.h"

namespace statecut::docs {
namespace {

template <typename RowType>
FieldTable render(const std::string& name) {
  std::string text = "| Offset | Bytes | Name | Meaning |\n|---:|---:|---|---|\n";
  forEachField<RowType>([&text](const auto& field) {
    text += "| " + std::to_string(field.at) + " | " + std::to_string(field.width) + " | `" +
            field.name + "` | " + field.meaning + " |\n";
  });
  return {name, text};
}

std::string recordsOf(const TableLine& line) {
  const std::string word = "+" + std::to_string(line.records.at);
  switch (line.records.by) {
    case Counted::kWord:
      return line.width == 1 ? word + " bytes" : word;
    case Counted::kLessOne:
      return word + " less 1";
    case Counted::kFixed:
      return std::to_string(line.records.at);
    case Counted::kItself:
      break;
  }
  return "counts in front";
}

std::string widthOf(const TableLine& line) {
  if (line.width == 1) return "packed";
  const std::string width = std::to_string(line.width);
  return line.width2 == 0 ? width : width + " and " + std::to_string(line.width2);
}

std::string fateOf(const TableLine& line) {
  switch (line.fate) {
    case Fate::kKept:
      return "copied, RBA kept";
    case Fate::kCopied:
      if (line.cutWidth == line.width) return "copied";
      return "copied, " + std::to_string(line.cutWidth) + " bytes each";
    case Fate::kEdited:
      return "edited";
    case Fate::kRebuilt:
      return "rebuilt";
    case Fate::kDropped:
      return sharesCount(line) ? "dropped, RBA 0" : "dropped, words 0";
    case Fate::kLeftOut:
      break;
  }
  return "dropped, words kept";
}

// Throws std::runtime_error when a marker is missing.
void replaceBetween(std::string& document, const std::string& start, const std::string& end,
                    const std::string& text) {
  const std::size_t at = document.find(start);
  if (at == std::string::npos) throw std::runtime_error("no marker " + start);
  const std::size_t from = at + start.size();
  const std::size_t to = document.find(end, from);
  if (to == std::string::npos) throw std::runtime_error("no end of " + start);
  document.replace(from, to - from, text);
}

}  // namespace

std::vector<FieldTable> fieldTables() {
  return {
      render<RefControlRec>("RefControlRec"),
      render<RngControlRec>("RngControlRec"),
      render<CityDataRow>("CityDataRow"),
      render<CityMultiZipRow>("CityMultiZipRow"),
      render<FinMultiZipRow>("FinMultiZipRow"),
      render<CityNameRow>("CityNameRow"),
      render<CityByStateRow>("CityByStateRow"),
      render<CityPhoneticRow>("CityPhoneticRow"),
      render<ZipDataRow>("ZipDataRow"),
      render<ZipBytesRow>("ZipBytesRow"),
      render<MultiZipBytesShort>("MultiZipBytesShort"),
      render<MultiZipBytesLong>("MultiZipBytesLong"),
      render<HashSlotRow>("HashSlotRow"),
      render<HashOverflowRow>("HashOverflowRow"),
  };
}

std::string startMarker(const std::string& name) { return "<!-- fields of " + name + " -->\n"; }

std::string endMarker() { return "<!-- end of fields -->\n"; }

std::string directoryTable() {
  std::string text = "| Table | RBA | Records | Bytes each | Cut |\n|---|---:|---|---:|---|\n";
  for (const TableLine& line : kDirectory) {
    text += std::string("| ") + line.name + " | +" + std::to_string(line.rbaAt) + " | " +
            recordsOf(line) + " | " + widthOf(line) + " | " + fateOf(line) + " |\n";
  }
  return text;
}

std::string withFieldTables(std::string document) {
  for (const FieldTable& table : fieldTables())
    replaceBetween(document, startMarker(table.name), endMarker(), table.markdown);
  replaceBetween(document, kDirectoryStart, kDirectoryEnd, directoryTable());
  return document;
}

}  // namespace statecut::docs
