#pragma once
// Texts of the files hold one byte a character, U+0000 to U+00FF; what people read is UTF-8.

#include <algorithm>
#include <string>
#include <string_view>

namespace statecut::format {

[[nodiscard]] std::string utf8Of(std::string_view bytes);

// The bytes of a UTF-8 text whose characters are U+0000 to U+00FF; false for any other.
[[nodiscard]] bool bytesOfUtf8(std::string_view utf8, std::string& bytes);

// True when both forms of the text are the same.
[[nodiscard]] inline bool isAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace statecut::format
