#include <algorithm>
#include <map>

#include "dbfiles/controlrec.h"
#include "format/areas.h"
#include "format/directory.h"
#include "info/info.h"
#include "tables/rows.h"

namespace statecut::info {

namespace {

using R = RefControlRec;
using G = RngControlRec;

std::string printable(std::span<const unsigned char> bytes) {
  std::string text;
  for (const unsigned char c : bytes) text += c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '?';
  return text;
}

// "10000001" is 10.00.0.0.01.
std::string versionText(std::span<const unsigned char> bytes) {
  const std::string v = printable(bytes);
  return v.substr(0, 2) + '.' + v.substr(2, 2) + '.' + v[4] + '.' + v[5] + '.' + v.substr(6, 2);
}

std::string copyrightText(std::span<const unsigned char> bytes) {
  const std::string date = printable(bytes);
  return date.substr(0, 2) + '/' + date.substr(2, 2);
}

void describeTables(std::span<const unsigned char> bytes, FileInfo& file) {
  for (std::size_t i = 0; i < format::kTables; ++i) {
    const auto id = static_cast<format::TableId>(i);
    const format::TablePlace place = format::placeTable(id, bytes);
    if (!place.carried) continue;
    const char* name = format::tableDef(id).name;
    file.tables.push_back({name, place.rba, place.count, place.bytes, place.fits});
    if (!place.fits) file.damage.push_back(std::string(name) + " lies outside the file");
  }
  // In the order of the file.
  std::stable_sort(file.tables.begin(), file.tables.end(),
                   [](const TableInfo& a, const TableInfo& b) { return a.rba < b.rba; });
}

void countPlaces(std::span<const unsigned char> bytes, FileInfo& file) {
  const format::TablePlace names = format::placeTable(format::TableId::CityNames, bytes);
  if (names.fits && names.count > 0) file.cityNames = names.count - 1;
  const format::TablePlace index = format::placeTable(format::TableId::ZipIndex, bytes);
  if (!index.carried || !index.fits) return;
  for (std::uint64_t zip = 0; zip < format::kZipIndexEntries; ++zip)
    if (le::get<2>(bytes.data() + index.rba + 2 * zip) != 0) ++file.zipCodes;
}

void describeStates(std::span<const unsigned char> bytes, FileInfo& file) {
  const format::TablePlace place = format::placeTable(format::TableId::ZipBytes, bytes);
  if (!place.carried || !place.fits) return;
  std::map<std::string, StateInfo> states;
  const unsigned char* table = bytes.data() + place.rba;
  // Record 0 is a dummy.
  for (std::uint64_t i = 1; i < place.count; ++i) {
    const auto& row =
        *reinterpret_cast<const ZipBytesRow*>(table + i * std::uint64_t{ZipBytesRow::size});
    const std::string name = printable(row.get(ZipBytesRow::state));
    StateInfo& state = states[name];
    state.state = name;
    ++state.zips;
    state.sfhBytes += row.get(ZipBytesRow::sfhBytes);
    state.pobBytes += row.get(ZipBytesRow::pobBytes);
    state.rrBytes += row.get(ZipBytesRow::rrBytes);
  }
  for (auto& [name, state] : states) file.states.push_back(std::move(state));
}

void describeAreas(const RngControlRec& record, std::uint64_t fileBytes, FileInfo& file) {
  for (const format::Area& area : format::areasOf(record)) {
    const bool fits = area.bytes == 0 ||
                      (area.rba >= G::size && std::uint64_t{area.rba} + area.bytes <= fileBytes);
    file.tables.push_back({area.name, area.rba, 0, area.bytes, fits});
    // A cut keeps the areas of its source.
    if (!fits && !file.stateCut)
      file.damage.push_back(std::string(area.name) + " lies outside the file");
  }
}

}  // namespace

FileInfo describe(const std::string& path, std::span<const unsigned char> bytes) {
  FileInfo file;
  file.path = path;
  file.bytes = bytes.size();
  // The identification is the same in both records; the shorter one decides what can be read.
  if (bytes.size() < G::size) {
    file.damage.push_back("not a database: shorter than a control record");
    return file;
  }
  const auto& record = *reinterpret_cast<const RngControlRec*>(bytes.data());
  const std::uint32_t flags = record.get(G::typeFlags);
  const std::uint32_t type = flags & (kTypeReference | kTypeRange);
  if (type != kTypeReference && type != kTypeRange) {
    file.damage.push_back("not a database: flagged as neither a reference nor a range file");
    return file;
  }
  file.type = type == kTypeReference ? "reference" : "range";
  file.stateCut = (flags & kTypeStateCut) != 0;
  file.version = versionText(record.get(G::version));
  file.copyright = copyrightText(record.get(G::copyrightDate));
  file.buildStamp = record.get(G::buildTimeStamp);
  file.cutStamp = record.get(G::stateCutTimeStamp);
  if (type == kTypeRange) {
    describeAreas(record, bytes.size(), file);
  } else if (bytes.size() < R::size) {
    file.damage.push_back("shorter than its control record");
  } else {
    describeTables(bytes, file);
    countPlaces(bytes, file);
    describeStates(bytes, file);
  }
  return file;
}

}  // namespace statecut::info
