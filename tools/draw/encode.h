#pragma once
// Bytes as the page carries them.

#include <openssl/evp.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace statecut::draw {

inline std::string base64(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                   reinterpret_cast<const unsigned char*>(bytes.data()),
                                   static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(size));
  return text;
}

// "sha256-..." of a text, as a policy of the page names it; empty when the library has no SHA-256.
inline std::string sha256Source(std::string_view text) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
  unsigned int size = 0;
  if (EVP_Digest(text.data(), text.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
    return {};
  return "sha256-" + base64({reinterpret_cast<const char*>(digest.data()), size});
}

// Seven bits a byte, the low ones first; the high bit says that others follow.
inline void putNumber(std::string& bytes, std::uint64_t number) {
  while (number >= 128) {
    bytes += static_cast<char>(128 | (number & 127));
    number >>= 7;
  }
  bytes += static_cast<char>(number);
}

}  // namespace statecut::draw
