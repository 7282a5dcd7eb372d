#pragma once
// A file mapped for reading.

#include <cstddef>
#include <span>
#include <string>

namespace statecut::verify {

class MappedFile {
 public:
  // Maps a regular file; `error` says why the result holds no file.
  static MappedFile open(const std::string& path, std::string& error);

  MappedFile() = default;
  MappedFile(MappedFile&& other) noexcept;
  MappedFile& operator=(MappedFile&& other) noexcept;
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile();

  std::span<const unsigned char> bytes() const { return {at_, size_}; }

 private:
  const unsigned char* at_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace statecut::verify
