#pragma once
// Pieces of markup that several sections use.

#include <cstdint>
#include <string>

#include "draw/names.h"

namespace statecut::draw {

// A cell with a number.
inline std::string numberCell(std::uint64_t value) {
  return "<td class=\"n\" data-value=\"" + std::to_string(value) + "\">" + grouped(value) + "</td>";
}

// A table that is wider than the page is scrolled in a box of its own, also by keys.
inline std::string tableBox(const std::string& label, const std::string& table) {
  return "<div class=\"table\" role=\"region\" tabindex=\"0\" aria-label=\"" + escaped(label) +
         "\">\n" + table + "</div>\n";
}

// What is shown when it is asked for.
inline std::string details(const std::string& summary, const std::string& content) {
  return "<details>\n<summary>" + escaped(summary) + "</summary>\n" + content + "</details>\n";
}

inline std::string swatch(const std::string& colour) {
  return "<svg class=\"swatch\" width=\"12\" height=\"12\" aria-hidden=\"true\"><rect class=\"" +
         colour + "\" width=\"12\" height=\"12\"/></svg>";
}

inline std::string percent(double share) { return decimal(100 * share, 3) + "%"; }

}  // namespace statecut::draw
