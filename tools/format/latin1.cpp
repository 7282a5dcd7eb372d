#include "format/latin1.h"

namespace statecut::format {

std::string utf8Of(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | (byte >> 6));
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

bool bytesOfUtf8(std::string_view utf8, std::string& bytes) {
  bytes.clear();
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      bytes += utf8[i];
    } else if ((lead == 0xC2 || lead == 0xC3) && i + 1 < utf8.size()) {
      const auto next = static_cast<unsigned char>(utf8[++i]);
      if ((next & 0xC0) != 0x80) return false;
      bytes += static_cast<char>(((lead & 3U) << 6) | (next & 0x3FU));
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace statecut::format
