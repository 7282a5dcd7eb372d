#include "base/system.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace statecut::sys {

int openFile(const char* path, int flags) { return ::open(path, flags, 0666); }

int seekFile(int fd, std::uint64_t offset) {
  return ::lseek(fd, static_cast<off_t>(offset), SEEK_SET) < 0 ? -1 : 0;
}

bool isSeekable(int fd) { return ::lseek(fd, 0, SEEK_CUR) >= 0; }

std::int64_t readNext(int fd, void* to, std::size_t count) { return ::read(fd, to, count); }

std::int64_t readAt(int fd, void* to, std::size_t count, std::uint64_t offset) {
  return ::pread(fd, to, count, static_cast<off_t>(offset));
}

std::int64_t writeNext(int fd, const void* from, std::size_t count) {
  return ::write(fd, from, count);
}

std::int64_t writeFlushed(int fd, const void* from, std::size_t count) {
  return ::write(fd, from, count);
}

void willNeed(int fd, std::uint64_t offset, std::uint64_t count) {
  static_cast<void>(::posix_fadvise(fd, static_cast<off_t>(offset), static_cast<off_t>(count),
                                    POSIX_FADV_WILLNEED));
}

std::uint64_t fileBytes(int fd) {
  struct stat status {};
  if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

// The bytes go from one page cache to the other in one copy. Only the kernel touches the mapping: a
// page that can't be had, as when the file shrinks, is a short write and no signal.
std::size_t appendRange(int to, int from, std::uint64_t offset, std::size_t count) {
  static const auto page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
  const std::uint64_t size = fileBytes(from);
  if (count == 0 || offset >= size || count > size - offset) return 0;
  const auto lead = static_cast<std::size_t>(offset % page);
  void* const map = ::mmap(nullptr, lead + count, PROT_READ, MAP_SHARED | MAP_POPULATE, from,
                           static_cast<off_t>(offset - lead));
  if (map == MAP_FAILED) return 0;
  const ssize_t put = ::write(to, static_cast<const unsigned char*>(map) + lead, count);
  ::munmap(map, lead + count);
  return put < 0 ? 0 : static_cast<std::size_t>(put);
}

int closeFile(int fd) { return ::close(fd); }

void* allocateZeroed(std::size_t bytes) { return std::calloc(bytes, 1); }

void release(void* block) { std::free(block); }

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;

constexpr std::size_t inLargePages(std::size_t bytes) {
  return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

}  // namespace

// A region that begins and ends with a large page, out of one that is a page larger. Less than one
// page comes from the heap.
void* allocateLarge(std::size_t bytes) {
  if (bytes < kLargePage) return std::calloc(bytes, 1);
  const std::size_t wanted = inLargePages(bytes);
  void* const map = ::mmap(nullptr, wanted + kLargePage, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (map == MAP_FAILED) return nullptr;
  auto* const first = static_cast<unsigned char*>(map);
  const std::size_t odd = reinterpret_cast<std::uintptr_t>(first) % kLargePage;
  const std::size_t lead = odd == 0 ? 0 : kLargePage - odd;
  if (lead != 0) ::munmap(first, lead);
  ::munmap(first + lead + wanted, kLargePage - lead);
  ::madvise(first + lead, wanted, MADV_HUGEPAGE);  // a wish
  return first + lead;
}

void releaseLarge(void* block, std::size_t bytes) {
  if (block == nullptr || bytes < kLargePage) return std::free(block);
  ::munmap(block, inLargePages(bytes));
}

void* mapFile(int fd, std::size_t bytes) {
  void* const map = ::mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, fd, 0);
  return map == MAP_FAILED ? nullptr : map;
}

void unmapFile(void* block, std::size_t bytes) { ::munmap(block, bytes); }

}  // namespace statecut::sys
