#include "cuts/digest.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#include "cuts/descriptor.h"

namespace statecut::cuts {

namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 18;

std::string hex(const unsigned char* bytes, std::size_t count) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

}  // namespace

std::string sha256OfBytes(std::span<const unsigned char> bytes, std::string& error) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
  unsigned int size = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr) == 1)
    return hex(digest.data(), size);
  error = "no SHA-256 in the library";
  return {};
}

std::string sha256OfFile(const std::string& path, std::string& error) {
  const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  const auto failed = [&](const char* why) {
    error = path + ": " + why;
    return std::string();
  };
  if (!fd) return failed(std::strerror(errno));
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                        EVP_MD_CTX_free);
  if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1)
    return failed("no SHA-256 in the library");
  std::vector<unsigned char> buffer(kBufferBytes);
  for (;;) {
    const ssize_t got = ::read(fd.get(), buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return failed(std::strerror(errno));
    if (got == 0) break;
    if (EVP_DigestUpdate(context.get(), buffer.data(), static_cast<std::size_t>(got)) != 1)
      return failed("the library can't go on with its digest");
  }
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
  unsigned int size = 0;
  if (EVP_DigestFinal_ex(context.get(), digest.data(), &size) != 1)
    return failed("the library can't end its digest");
  return hex(digest.data(), size);
}

}  // namespace statecut::cuts
