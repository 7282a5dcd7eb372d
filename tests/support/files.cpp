#include "support/files.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace statecut::test {

std::string temporaryBase() {
  const char* base = std::getenv("TMPDIR");
  return base != nullptr && *base != '\0' ? base : "/tmp";
}

TempDir::TempDir(const std::string& base) : path_(base + "/statecut.XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr)
    throw std::system_error(errno, std::generic_category(), "mkdtemp");
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void writeWholeFile(const std::string& path, const FileBytes& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw std::runtime_error("can't write " + path);
}

std::optional<FileBytes> readWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return std::nullopt;
  FileBytes bytes(static_cast<std::size_t>(file.tellg()));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("can't read " + path);
  return bytes;
}

std::string readTextFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace statecut::test
