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
// The same of bytes that are in memory, as many as stand there before the first that is not; -1
// when that is none of them, or can't be told.
std::int64_t readPresent(int fd, void* to, std::size_t count, std::uint64_t offset);
std::int64_t writeNext(int fd, const void* from, std::size_t count);
std::int64_t writeFlushed(int fd, const void* from, std::size_t count);  // what a buffer held
void willNeed(int fd, std::uint64_t offset, std::uint64_t count);        // a hint; never fails
std::uint64_t fileBytes(int fd);  // of a regular file, 0 for anything else
// Room on the disk for bytes that are going to be written; the size of the file stays. 0, or -1,
// when a part of the room may be taken all the same.
int reserveBytes(int fd, std::uint64_t offset, std::uint64_t count);
int truncateFile(int fd, std::uint64_t bytes);  // gives room behind them back, too
int closeFile(int fd);

void* allocateZeroed(std::size_t bytes);  // null when memory runs out; released by release
void release(void* block);

// Zeros in pages of their own, from the start of a large page where there is enough for one. Null
// when memory runs out. Released with the same number of bytes.
void* mapZeroed(std::size_t bytes);
void unmapZeroed(void* block, std::size_t bytes);
int adviseLargePages(void* block, std::size_t bytes);  // a wish: 0, or -1 where there are none
// Maps the first bytes of a file for reading; null when it fails.
void* mapFile(int fd, std::size_t bytes);
void unmapFile(void* block, std::size_t bytes);

}  // namespace statecut::sys
