#include "measure/files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace statecut::bench {

namespace {

[[noreturn]] void fail(const Path& path, const char* reason) {
  throw std::runtime_error(path.string() + ": " + reason);
}

struct Descriptor {
  int value;
  explicit Descriptor(const Path& path) : value(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (value == -1) fail(path, std::strerror(errno));
  }
  ~Descriptor() { ::close(value); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
};

// A mapping serves to ask for cached pages and to compare.
struct Mapping {
  std::size_t bytes;
  void* at = nullptr;
  explicit Mapping(const Path& path)
      : bytes(static_cast<std::size_t>(std::filesystem::file_size(path))) {
    const Descriptor file(path);
    if (bytes == 0) return;
    at = mmap(nullptr, bytes, PROT_READ, MAP_SHARED, file.value, 0);
    if (at == MAP_FAILED) fail(path, std::strerror(errno));
  }
  ~Mapping() {
    if (bytes != 0) munmap(at, bytes);
  }
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;
};

void readThrough(const Path& path) {
  const Descriptor file(path);
  std::vector<char> buffer(std::size_t{1} << 20);
  while (::read(file.value, buffer.data(), buffer.size()) > 0) continue;
}

}  // namespace

std::string readFile(const Path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) fail(path, "cannot be read");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const Path& path, std::string_view text) {
  std::ofstream file(path, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  if (!file.flush()) fail(path, "cannot be written");
}

std::uint64_t bytesOf(const Paths& paths) {
  std::uint64_t sum = 0;
  for (const Path& path : paths) sum += std::filesystem::file_size(path);
  return sum;
}

bool sameBytes(const Path& a, const Path& b) {
  const Mapping one(a);
  const Mapping other(b);
  return one.bytes == other.bytes &&
         (one.bytes == 0 || std::memcmp(one.at, other.at, one.bytes) == 0);
}

void removeFiles(const Paths& paths) {
  for (const Path& path : paths) std::filesystem::remove(path);
}

void primePages(const Path& scratch, std::uint64_t bytes) {
  {
    std::ofstream file(scratch, std::ios::binary);
    const std::vector<char> piece(std::size_t{1} << 20);
    for (std::uint64_t left = bytes; left != 0;) {
      const std::uint64_t now = std::min<std::uint64_t>(left, piece.size());
      file.write(piece.data(), static_cast<std::streamsize>(now));
      left -= now;
    }
    if (!file.flush()) fail(scratch, "cannot be written");
  }
  std::filesystem::remove(scratch);
}

void syncFiles(const Paths& paths) {
  for (const Path& path : paths) {
    const Descriptor file(path);
    if (fsync(file.value) != 0) fail(path, std::strerror(errno));
  }
}

void loadIntoCache(const Paths& paths) {
  for (const Path& path : paths) {
    for (int tries = 0; cachedShare(path) < 1; ++tries) {
      if (tries == 5) fail(path, "does not stay in the page cache");
      readThrough(path);
    }
  }
}

double evictFromCache(const Paths& paths) {
  double stayed = 0;
  for (const Path& path : paths) {
    const Descriptor file(path);
    fsync(file.value);
    posix_fadvise(file.value, 0, 0, POSIX_FADV_DONTNEED);
    stayed = std::max(stayed, cachedShare(path));
  }
  return stayed;
}

double cachedShare(const Path& path) {
  const Mapping file(path);
  if (file.bytes == 0) return 1;
  const auto pageBytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  std::vector<unsigned char> pages((file.bytes + pageBytes - 1) / pageBytes);
  if (mincore(file.at, file.bytes, pages.data()) != 0) fail(path, std::strerror(errno));
  const auto there =
      std::count_if(pages.begin(), pages.end(), [](unsigned char page) { return (page & 1) != 0; });
  return static_cast<double>(there) / static_cast<double>(pages.size());
}

}  // namespace statecut::bench
