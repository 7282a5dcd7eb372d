#include "fieldtables.h"

#include <stdexcept>

#include "dbfiles/controlrec.h"
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

std::string withFieldTables(std::string document) {
  for (const FieldTable& table : fieldTables()) {
    const std::string marker = startMarker(table.name);
    const std::size_t start = document.find(marker);
    if (start == std::string::npos) throw std::runtime_error("no marker for " + table.name);
    const std::size_t from = start + marker.size();
    const std::size_t to = document.find(endMarker(), from);
    if (to == std::string::npos) throw std::runtime_error("no end marker for " + table.name);
    document.replace(from, to - from, table.markdown);
  }
  return document;
}

}  // namespace statecut::docs
