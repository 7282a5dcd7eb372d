#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>

#include "dbbuilder/places.h"

namespace statecut::builder {

namespace {

constexpr std::size_t maxZips = 65534;  // keys are 16-bit and key 0 is no ZIP
constexpr std::size_t maxName = 28;
constexpr std::string_view kHeader = "zip,state,city,county";
constexpr std::string_view kPlacedHeader = "zip,state,city,county,latitude,longitude";
constexpr std::size_t kNeeded = 4;

using Fields = std::array<std::string_view, 6>;

bool upperCase(std::string_view text, std::string_view others) {
  return std::all_of(text.begin(), text.end(), [&](char c) {
    return (c >= 'A' && c <= 'Z') || others.find(c) != std::string_view::npos;
  });
}

// The first fields of a line, what is missing as empty ones; false when there are fewer than four.
bool splitLine(std::string_view line, Fields& fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::size_t comma = line.find(',');
    fields[i] = line.substr(0, comma);
    if (comma == std::string_view::npos) return i + 1 >= kNeeded;
    line.remove_prefix(comma + 1);
  }
  return true;
}

bool startsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

bool parseZip(std::string_view text, std::uint32_t& zip) {
  if (text.size() != 5 ||
      !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
    return false;
  zip = 0;
  for (const char c : text) zip = zip * 10 + static_cast<std::uint32_t>(c - '0');
  return zip != 0;
}

// An empty text, or what is wrong with the line.
std::string parseLine(std::string_view line, bool placed, Place& place) {
  constexpr std::string_view nameCharacters = "0123456789 '&-./";
  Fields fields;
  if (!splitLine(line, fields)) return "expected zip,state,city,county";
  if (!parseZip(fields[0], place.zip))
    return "bad ZIP code \"" + std::string(fields[0]) + "\" (five digits, not 00000)";
  if (fields[1].size() != 2 || !upperCase(fields[1], ""))
    return "bad state \"" + std::string(fields[1]) + "\" (two upper-case letters)";
  if (fields[2].empty() || fields[2].size() > maxName || !upperCase(fields[2], nameCharacters))
    return "bad city \"" + std::string(fields[2]) + "\" (1 to 28 upper-case characters)";
  if (!upperCase(fields[3], nameCharacters))
    return "bad county \"" + std::string(fields[3]) + "\" (upper-case characters)";
  place.state = fields[1];
  place.city = fields[2];
  place.county = fields[3];
  if (placed) {
    place.latitude = fields[4];
    place.longitude = fields[5];
  }
  return {};
}

bool nextLine(std::istream& in, std::string& line) {
  if (!std::getline(in, line)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

}  // namespace

bool readPlaces(const std::string& csvPath, std::vector<Place>& places, std::string& error) {
  places.clear();
  std::ifstream in(csvPath);
  if (!in) {
    error = "cannot read " + csvPath + ": " + std::strerror(errno);
    return false;
  }
  std::string line;
  std::size_t number = 1;
  const auto fail = [&](const std::string& reason) {
    error = csvPath + ":" + std::to_string(number) + ": " + reason;
    return false;
  };
  if (!nextLine(in, line) || !startsWith(line, kHeader))
    return fail("expected a header line " + std::string(kHeader));
  const bool placed = startsWith(line, kPlacedHeader);
  std::vector<bool> seen(100000);
  while (nextLine(in, line)) {
    ++number;
    if (line.empty()) continue;
    Place place;
    const std::string reason = parseLine(line, placed, place);
    if (!reason.empty()) return fail(reason);
    if (seen[place.zip]) return fail("ZIP code given before: " + line.substr(0, 5));
    seen[place.zip] = true;
    if (places.size() == maxZips) return fail("more than 65534 ZIP codes");
    places.push_back(std::move(place));
  }
  if (in.bad()) return fail("read error");
  if (places.empty()) return fail("no ZIP codes");
  return true;
}

}  // namespace statecut::builder
