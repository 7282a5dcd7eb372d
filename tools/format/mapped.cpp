#include "format/mapped.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace statecut::format {

namespace {

// Closes the descriptor at the end of the scope: the mapping outlives it.
struct Descriptor {
  int value;
  ~Descriptor() {
    if (value >= 0) close(value);
  }
};

}  // namespace

void MappedFile::forgetPages() const {
  if (at_ != nullptr) (void)madvise(const_cast<unsigned char*>(at_), size_, MADV_DONTNEED);
}

void exitOnLostPage() {
  struct sigaction action {};
  action.sa_handler = [](int) {
    constexpr char kText[] = "statedb: a file got shorter while it was read, or can't be read\n";
    [[maybe_unused]] const ssize_t told = write(STDERR_FILENO, kText, sizeof kText - 1);
    _exit(2);
  };
  sigemptyset(&action.sa_mask);
  sigaction(SIGBUS, &action, nullptr);
}

MappedFile MappedFile::open(const std::string& path, std::string& error) {
  MappedFile file;
  // A pipe without a writer must not block the open.
  const Descriptor fd{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
  struct stat status {};
  if (fd.value < 0 || fstat(fd.value, &status) != 0) {
    error = path + ": " + std::strerror(errno);
    return file;
  }
  if (!S_ISREG(status.st_mode)) {
    error = path + ": not a regular file";
    return file;
  }
  error.clear();
  if (status.st_size == 0) return file;
  const auto size = static_cast<std::size_t>(status.st_size);
  void* at = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd.value, 0);
  if (at == MAP_FAILED) {
    error = path + ": " + std::strerror(errno);
    return file;
  }
  file.at_ = static_cast<const unsigned char*>(at);
  file.size_ = size;
  return file;
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : at_(std::exchange(other.at_, nullptr)), size_(std::exchange(other.size_, 0)) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
  std::swap(at_, other.at_);
  std::swap(size_, other.size_);
  return *this;
}

MappedFile::~MappedFile() {
  if (at_ != nullptr) munmap(const_cast<unsigned char*>(at_), size_);
}

}  // namespace statecut::format
