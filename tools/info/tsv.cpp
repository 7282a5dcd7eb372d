// Lines for scripts: columns between tabs.

#include <algorithm>
#include <ostream>

#include "dbfiles/controlrec.h"
#include "format/directory.h"
#include "info/info.h"
#include "tables/rows.h"

namespace statecut::info {

namespace {

// A name that would break a line or a column is written with backslashes.
std::string escaped(const std::string& name) {
  std::string text;
  for (const char c : name) {
    if (c == '\\')
      text += "\\\\";
    else if (c == '\t')
      text += "\\t";
    else if (c == '\n')
      text += "\\n";
    else if (c == '\r')
      text += "\\r";
    else
      text += c;
  }
  return text;
}

std::string digits(std::uint64_t zip) {
  const std::string text = std::to_string(zip);
  return std::string(5 - std::min<std::size_t>(5, text.size()), '0') + text;
}

// The records of a table that lies in its file.
template <typename RowType>
std::span<const RowType> rowsOf(format::TableId id, std::span<const unsigned char> file) {
  const format::TablePlace place = format::placeTable(id, file);
  if (!place.carried || !place.fits) return {};
  return {reinterpret_cast<const RowType*>(file.data() + place.rba),
          static_cast<std::size_t>(place.bytes / std::uint64_t{RowType::size})};
}

}  // namespace

void printTsvHeader(std::ostream& out, Tsv which) {
  if (which == Tsv::Tables) out << "file\ttable\trba\tcount\tbytes\n";
  if (which == Tsv::Zips) out << "file\tzip\tkind\tbytes\n";
}

void printTsvTables(std::ostream& out, const FileInfo& file) {
  const std::string path = escaped(file.path);
  for (const TableInfo& table : file.tables) {
    out << path << '\t' << table.name << '\t' << table.rba << '\t';
    if (file.type == "reference") out << table.count;
    out << '\t' << table.bytes << '\n';
  }
}

void printTsvZips(std::ostream& out, const FileInfo& file, std::span<const unsigned char> bytes) {
  if (file.type != "reference" || bytes.size() < RefControlRec::size) return;
  const std::string path = escaped(file.path);
  const auto index = rowsOf<ZipIndexRow>(format::TableId::ZipIndex, bytes);
  const auto zips = rowsOf<ZipDataRow>(format::TableId::ZipData, bytes);
  const auto sizes = rowsOf<ZipBytesRow>(format::TableId::ZipBytes, bytes);
  for (std::size_t code = 0; code < index.size(); ++code) {
    const std::size_t key = index[code].get(ZipIndexRow::zipKey);
    if (key == 0 || key >= zips.size()) continue;
    const auto line = [&](const char* kind, std::uint32_t rba, auto size) {
      if (rba == 0) return;
      out << path << '\t' << digits(code) << '\t' << kind << '\t';
      if (key < sizes.size()) out << std::uint32_t{sizes[key].get(size)};
      out << '\n';
    };
    line("SFH", zips[key].get(ZipDataRow::sfhRba), ZipBytesRow::sfhBytes);
    line("POB", zips[key].get(ZipDataRow::pobRba), ZipBytesRow::pobBytes);
    line("RR", zips[key].get(ZipDataRow::rrRba), ZipBytesRow::rrBytes);
  }
}

}  // namespace statecut::info
