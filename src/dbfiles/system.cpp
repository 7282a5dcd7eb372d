#include "dbfiles/system.h"

#include <fcntl.h>
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

int closeFile(int fd) { return ::close(fd); }

void* allocateZeroed(std::size_t bytes) { return std::calloc(bytes, 1); }

void release(void* block) { std::free(block); }

}  // namespace statecut::sys
