#pragma once
// Names and numbers as people read them, and as markup and scripts take them.

#include <cstdint>
#include <string>
#include <string_view>

namespace statecut::draw {

// The name of a file without its folder, in UTF-8 whatever bytes it has.
std::string baseName(const std::string& path);

// "Texas"; several areas of one abbreviation by what their names begin with; the abbreviation
// itself when it is none.
std::string stateName(std::string_view abbreviation);

// A text of a database, a byte a character, in UTF-8; control characters as question marks.
std::string shown(std::string_view bytes);

// UTF-8 for element content and attribute values of HTML and XML.
std::string escaped(std::string_view utf8);

std::string grouped(std::uint64_t number);                       // 1,234,567
std::string bytesText(std::uint64_t bytes);                      // 1.23 MB
std::string shareText(std::uint64_t part, std::uint64_t whole);  // 12.3 %
std::string dateText(std::uint32_t stamp);                       // 2025-11-14
std::string decimal(double value, int digits);                   // without zeros at its end

}  // namespace statecut::draw
