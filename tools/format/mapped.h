#pragma once
// A file mapped for reading.

#include <cstddef>
#include <span>
#include <string>

namespace statecut::format {

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
  // Takes the pages that were read out of this process's memory; they are read again when they are
  // needed.
  void forgetPages() const;

 private:
  const unsigned char* at_ = nullptr;
  std::size_t size_ = 0;
};

// A mapped page that can't be read any more, because another program made the file shorter or its
// disk failed, ends the process with a message on standard error and status 2. For programs, once.
void exitOnLostPage();

}  // namespace statecut::format
