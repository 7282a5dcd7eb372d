#include "base/system.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstdlib>

#include "base/sanitizer.h"

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

std::int64_t readPresent(int fd, void* to, std::size_t count, std::uint64_t offset) {
  const iovec piece{to, count};
  return ::preadv2(fd, &piece, 1, static_cast<off_t>(offset), RWF_NOWAIT);
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

int reserveBytes(int fd, std::uint64_t offset, std::uint64_t count) {
  return ::fallocate(fd, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset),
                     static_cast<off_t>(count));
}

int truncateFile(int fd, std::uint64_t bytes) { return ::ftruncate(fd, static_cast<off_t>(bytes)); }

int closeFile(int fd) { return ::close(fd); }

void* allocateZeroed(std::size_t bytes) { return std::calloc(bytes, 1); }

void release(void* block) { std::free(block); }

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;

constexpr std::size_t inWholePages(std::size_t bytes) {
  constexpr std::size_t kPage = 4096;
  const std::size_t page = bytes < kLargePage ? kPage : kLargePage;
  return (bytes + page - 1) / page * page;
}

void* mapPages(std::size_t bytes) {
  void* const map =
      ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return map == MAP_FAILED ? nullptr : map;
}

}  // namespace

// A region that begins and ends with a large page is cut out of one that is a page larger. Under
// the sanitizer it comes from its heap, whose checks and limits hold then.
void* mapZeroed(std::size_t bytes) {
  if (kAddressSanitizer) return std::calloc(bytes, 1);
  const std::size_t wanted = inWholePages(bytes);
  if (wanted < bytes) return nullptr;
  if (wanted < kLargePage) return mapPages(wanted);
  auto* const first = static_cast<unsigned char*>(mapPages(wanted + kLargePage));
  if (first == nullptr) return nullptr;
  const std::size_t odd = reinterpret_cast<std::uintptr_t>(first) % kLargePage;
  const std::size_t lead = odd == 0 ? 0 : kLargePage - odd;
  if (lead != 0) ::munmap(first, lead);
  ::munmap(first + lead + wanted, kLargePage - lead);
  return first + lead;
}

void unmapZeroed(void* block, std::size_t bytes) {
  if (kAddressSanitizer) return std::free(block);
  ::munmap(block, inWholePages(bytes));
}

int adviseLargePages(void* block, std::size_t bytes) {
  return ::madvise(block, inWholePages(bytes), MADV_HUGEPAGE);
}

void* mapFile(int fd, std::size_t bytes) {
  void* const map = ::mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, fd, 0);
  return map == MAP_FAILED ? nullptr : map;
}

void unmapFile(void* block, std::size_t bytes) { ::munmap(block, bytes); }

}  // namespace statecut::sys
