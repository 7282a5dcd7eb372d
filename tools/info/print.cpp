#include <algorithm>
#include <ctime>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

#include "info/info.h"

namespace statecut::info {

namespace {

std::string stampText(std::uint32_t stamp) {
  const auto seconds = static_cast<std::time_t>(stamp);
  std::tm utc{};
  char text[40] = "";
  if (gmtime_r(&seconds, &utc) != nullptr)
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &utc);
  return text;
}

// Columns as wide as their longest cell; all but the first are aligned to the right.
void printColumns(std::ostream& out, const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const auto& row : rows) {
    out << "  " << row[0];
    for (std::size_t i = 1; i < row.size(); ++i) {
      const std::size_t before = i == 1 ? widths[0] - row[0].size() : 0;
      out << std::string(before + 2 + widths[i] - row[i].size(), ' ') << row[i];
    }
    out << '\n';
  }
}

void printTables(std::ostream& out, const FileInfo& file) {
  const bool counts = file.type == "reference";
  std::vector<std::vector<std::string>> rows;
  rows.push_back(counts ? std::vector<std::string>{"table", "RBA", "count", "bytes"}
                        : std::vector<std::string>{"area", "RBA", "bytes"});
  for (const TableInfo& table : file.tables) {
    std::vector<std::string> row = {table.name, std::to_string(table.rba)};
    if (counts) row.push_back(std::to_string(table.count));
    row.push_back(std::to_string(table.bytes));
    rows.push_back(std::move(row));
  }
  out << '\n';
  printColumns(out, rows);
  if (!counts && file.stateCut) out << "  (the areas of the file that was cut)\n";
}

void printStates(std::ostream& out, const FileInfo& file) {
  std::vector<std::vector<std::string>> rows = {
      {"state", "ZIPs", "SFH bytes", "POB bytes", "RR bytes"}};
  StateInfo total;
  const auto addRow = [&](const std::string& name, const StateInfo& state) {
    rows.push_back({name, std::to_string(state.zips), std::to_string(state.sfhBytes),
                    std::to_string(state.pobBytes), std::to_string(state.rrBytes)});
  };
  for (const StateInfo& state : file.states) {
    addRow(state.state, state);
    total.zips += state.zips;
    total.sfhBytes += state.sfhBytes;
    total.pobBytes += state.pobBytes;
    total.rrBytes += state.rrBytes;
  }
  addRow("all", total);
  out << '\n';
  printColumns(out, rows);
}

nlohmann::ordered_json toJson(const FileInfo& file) {
  using nlohmann::ordered_json;
  ordered_json json = {{"path", file.path}, {"bytes", file.bytes}, {"type", nullptr}};
  if (!file.type.empty()) {
    json["type"] = file.type;
    json["stateCut"] = file.stateCut;
    json["version"] = file.version;
    json["copyright"] = file.copyright;
    json["buildStamp"] = file.buildStamp;
    json["cutStamp"] = file.cutStamp;
    const bool counts = file.type == "reference";
    if (counts) {
      json["zipCodes"] = file.zipCodes;
      json["cityNames"] = file.cityNames;
    }
    ordered_json tables = ordered_json::array();
    for (const TableInfo& table : file.tables) {
      ordered_json one = {{"name", table.name}, {"rba", table.rba}};
      if (counts) one["count"] = table.count;
      one["bytes"] = table.bytes;
      tables.push_back(std::move(one));
    }
    json[counts ? "tables" : "areas"] = std::move(tables);
  }
  if (!file.states.empty()) {
    ordered_json states = ordered_json::array();
    for (const StateInfo& state : file.states)
      states.push_back({{"state", state.state},
                        {"zips", state.zips},
                        {"sfhBytes", state.sfhBytes},
                        {"pobBytes", state.pobBytes},
                        {"rrBytes", state.rrBytes}});
    json["states"] = std::move(states);
  }
  json["damage"] = file.damage;
  return json;
}

}  // namespace

void printText(std::ostream& out, const FileInfo& file) {
  if (file.type.empty()) return;
  out << file.path << ": " << file.type << " database" << (file.stateCut ? ", state cut" : "")
      << '\n';
  const std::string cut = file.cutStamp == 0 ? "no" : stampText(file.cutStamp);
  for (const auto& [label, value] :
       {std::pair<const char*, std::string>{"version    ", file.version},
        {"copyright  ", file.copyright},
        {"built      ", stampText(file.buildStamp)},
        {"cut        ", cut},
        {"bytes      ", std::to_string(file.bytes)}})
    out << "  " << label << value << '\n';
  if (file.type == "reference")
    out << "  ZIP codes  " << file.zipCodes << "\n  cities     " << file.cityNames << '\n';
  printTables(out, file);
  if (!file.states.empty()) printStates(out, file);
}

// The keys stand in the manual: scripts read them. An element of a list goes by its name or state.
bool printValue(std::ostream& out, const FileInfo& file, const std::string& key) {
  using nlohmann::ordered_json;
  const ordered_json document = toJson(file);
  const ordered_json* at = &document;
  for (std::size_t from = 0; from <= key.size();) {
    const std::size_t end = std::min(key.find('.', from), key.size());
    const std::string word = key.substr(from, end - from);
    from = end + 1;
    if (at->is_object() && at->contains(word)) {
      at = &(*at)[word];
      continue;
    }
    if (!at->is_array()) return false;
    const auto found = std::find_if(at->begin(), at->end(), [&](const ordered_json& one) {
      return one.is_object() && (one.value("name", "") == word || one.value("state", "") == word);
    });
    if (found == at->end()) return false;
    at = &*found;
  }
  if (at->is_structured()) return false;
  if (at->is_string())
    out << at->get_ref<const std::string&>() << '\n';
  else if (at->is_null())
    out << '\n';
  else
    out << at->dump() << '\n';
  return true;
}

void printJson(std::ostream& out, const std::vector<FileInfo>& files) {
  using nlohmann::ordered_json;
  ordered_json document = {{"files", ordered_json::array()}};
  for (const FileInfo& file : files) document["files"].push_back(toJson(file));
  // Paths may hold any bytes.
  out << document.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace statecut::info
