#include "draw/names.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "run/statetable.h"

namespace statecut::draw {

namespace {

// Without the blanks that fill the field.
std::string_view trimmed(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

}  // namespace

std::string baseName(const std::string& path) {
  using nlohmann::json;
  const std::string name = std::filesystem::path(path).filename().string();
  const std::string valid = json(name).dump(-1, ' ', false, json::error_handler_t::replace);
  return json::parse(valid).get<std::string>();
}

std::string stateName(std::string_view abbreviation) {
  std::string name;
  for (const statecut::State& state : statecut::states) {
    if (std::string_view(state.abbreviation) != abbreviation) continue;
    const std::string_view full = trimmed(state.name);
    if (name.empty()) {
      name = full;
      continue;
    }
    const auto end = std::mismatch(name.begin(), name.end(), full.begin(), full.end()).first;
    name.erase(end, name.end());
    name = trimmed(name);
  }
  return name.empty() ? shown(abbreviation) : name;
}

std::string shown(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    const auto c = static_cast<unsigned char>(byte);
    if (c < 0x20 || (c >= 0x7F && c < 0xA0)) {
      text += '?';
    } else if (c < 0x80) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0 | (c >> 6));
      text += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return text;
}

std::string escaped(std::string_view utf8) {
  std::string text;
  for (const char c : utf8) {
    if (c == '&')
      text += "&amp;";
    else if (c == '<')
      text += "&lt;";
    else if (c == '>')
      text += "&gt;";
    else if (c == '"')
      text += "&quot;";
    else if (c == '\'')
      text += "&#39;";
    else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
      text += '?';
    else
      text += c;
  }
  return text;
}

std::string grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, 1, ',');
  return text;
}

std::string decimal(double value, int digits) {
  char buffer[64];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, digits).ptr;
  std::string text(buffer, end);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

std::string bytesText(std::uint64_t bytes) {
  if (bytes < 1000) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  static constexpr const char* kUnits[] = {"kB", "MB", "GB"};
  double value = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  while (value >= 999.5 && unit + 1 < std::size(kUnits)) {
    value /= 1000;
    ++unit;
  }
  return decimal(value, value < 9.995 ? 2 : value < 99.95 ? 1 : 0) + " " + kUnits[unit];
}

std::string shareText(std::uint64_t part, std::uint64_t whole) {
  if (whole == 0) return "0 %";
  const double share = 100 * static_cast<double>(part) / static_cast<double>(whole);
  if (part != 0 && share < 0.05) return "under 0.1 %";
  if (part < whole && share > 99.94) return "over 99.9 %";
  return decimal(share, 1) + " %";
}

std::string dateText(std::uint32_t stamp) {
  const auto seconds = static_cast<std::time_t>(stamp);
  std::tm utc{};
  char text[40] = "";
  if (gmtime_r(&seconds, &utc) != nullptr) std::strftime(text, sizeof text, "%Y-%m-%d", &utc);
  return text;
}

}  // namespace statecut::draw
