#pragma once
// Every system call of the core's streams and every block of memory of its tables, caches and names
// passes here.
// One translation unit stands behind it: a test program that defines these functions itself takes
// their place at link time and can make the Nth call of a kind fail. Results and errno as in POSIX.

#include <cstddef>
#include <cstdint>

namespace statecut::sys {

int openFile(const char* path, int flags);   // created with mode 0666
int seekFile(int fd, std::uint64_t offset);  // 0, or -1
bool isSeekable(int fd);
std::int64_t readNext(int fd, void* to, std::size_t count);  // bytes, 0 at the end, or -1
std::int64_t readAt(int fd, void* to, std::size_t count, std::uint64_t offset);
std::int64_t writeNext(int fd, const void* from, std::size_t count);
std::int64_t writeFlushed(int fd, const void* from, std::size_t count);  // what a buffer held
void willNeed(int fd, std::uint64_t offset, std::uint64_t count);        // a hint; never fails
// Writes `count` bytes at `offset` of the regular file `from` to `to` without reading them. The
// bytes moved; fewer, down to 0, where that can't be done. It reports nothing: whoever reads and
// writes the rest meets the end of the file or the failure, if there is one.
std::size_t appendRange(int to, int from, std::uint64_t offset, std::size_t count);
std::uint64_t fileBytes(int fd);  // of a regular file, 0 for anything else
int closeFile(int fd);

void* allocateZeroed(std::size_t bytes);  // null when memory runs out; released by release
void release(void* block);

// Zeros for a whole database, in large pages where the system has them; null when memory runs out.
// Released with the same number of bytes.
void* allocateLarge(std::size_t bytes);
void releaseLarge(void* block, std::size_t bytes);
// Maps the first bytes of a file for reading; null when it fails.
void* mapFile(int fd, std::size_t bytes);
void unmapFile(void* block, std::size_t bytes);

}  // namespace statecut::sys
