#include "memorydisk.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unordered_set>

#include "base/system.h"

namespace statecut::fuzz {

namespace {

struct File {
  std::string path;
  const unsigned char* input = nullptr;  // null: the bytes below
  std::size_t inputSize = 0;
  bool sink = false;
  Bytes bytes;

  [[nodiscard]] const unsigned char* data() const {
    return input != nullptr ? input : bytes.data();
  }
  [[nodiscard]] std::size_t size() const { return input != nullptr ? inputSize : bytes.size(); }
};

struct Descriptor {
  File* file = nullptr;  // null: free
  std::uint64_t position = 0;
  int flags = 0;
};

constexpr int kFirstDescriptor = 1000;  // far from the real ones
constexpr std::size_t kMostDescriptors = 16;

struct Disk {
  DiskLimits limits;
  std::vector<std::unique_ptr<File>> files;
  Descriptor descriptors[kMostDescriptors];
  std::uint64_t readBytes = 0;
  std::uint64_t readCalls = 0;
  bool harmed = false;
  std::unordered_set<void*> blocks;
};

Disk& disk() {
  static Disk* const made = new Disk;  // outlives the flush of open streams at exit
  return *made;
}

File* find(const char* path) {
  for (const auto& file : disk().files)
    if (file->path == path) return file.get();
  return nullptr;
}

File& create(const char* path) {
  if (File* file = find(path); file != nullptr) return *file;
  disk().files.push_back(std::make_unique<File>());
  disk().files.back()->path = path;
  return *disk().files.back();
}

Descriptor* descriptorOf(int fd) {
  const int at = fd - kFirstDescriptor;
  if (at < 0 || at >= static_cast<int>(kMostDescriptors)) return nullptr;
  Descriptor& descriptor = disk().descriptors[at];
  return descriptor.file == nullptr ? nullptr : &descriptor;
}

std::int64_t fail(int code) {
  errno = code;
  return -1;
}

std::int64_t readFrom(const File& file, void* to, std::size_t count, std::uint64_t offset) {
  Disk& d = disk();
  if (++d.readCalls > d.limits.readCalls || d.readBytes > d.limits.readBytes) return fail(EIO);
  if (offset >= file.size()) return 0;
  const std::size_t part = std::min<std::uint64_t>(count, file.size() - offset);
  std::memcpy(to, file.data() + offset, part);
  d.readBytes += part;
  return static_cast<std::int64_t>(part);
}

std::int64_t writeTo(Descriptor& to, const void* from, std::size_t count) {
  File& file = *to.file;
  if ((to.flags & O_ACCMODE) == O_RDONLY) return fail(EBADF);
  if (file.sink) return static_cast<std::int64_t>(count);
  const std::uint64_t at = (to.flags & O_APPEND) != 0 ? file.bytes.size() : to.position;
  const std::uint64_t most = disk().limits.fileBytes;
  if (at >= most) return fail(ENOSPC);
  const std::size_t part = std::min<std::uint64_t>(count, most - at);
  if (file.bytes.size() < at + part) file.bytes.resize(at + part);
  std::memcpy(file.bytes.data() + at, from, part);
  to.position = at + part;
  return static_cast<std::int64_t>(part);
}

}  // namespace

void diskStart(const DiskLimits& limits) {
  Disk& d = disk();
  d.limits = limits;
  d.files.clear();
  for (Descriptor& descriptor : d.descriptors) descriptor = {};
  d.readBytes = 0;
  d.readCalls = 0;
  d.harmed = false;
}

void diskInput(const char* path, const unsigned char* bytes, std::size_t size) {
  static constexpr unsigned char kNone = 0;
  File& file = create(path);
  file.input = bytes == nullptr ? &kNone : bytes;
  file.inputSize = size;
}

void diskSink(const char* path) { create(path).sink = true; }

const Bytes* diskOutput(const char* path) {
  const File* file = find(path);
  return file == nullptr || file->input != nullptr ? nullptr : &file->bytes;
}

bool diskInputHarmed() { return disk().harmed; }

std::size_t diskOpenFiles(const char* path) {
  return static_cast<std::size_t>(std::count_if(
      std::begin(disk().descriptors), std::end(disk().descriptors), [path](const Descriptor& d) {
        return d.file != nullptr && (path == nullptr || d.file->path == path);
      }));
}

std::uint64_t diskReadCalls() { return disk().readCalls; }

std::size_t liveBlocks() { return disk().blocks.size(); }

void releaseIfLive(void* block) {
  if (disk().blocks.erase(block) != 0) std::free(block);
}

void releaseLiveBlocks() {
  for (void* block : disk().blocks) std::free(block);
  disk().blocks.clear();
}

void finding(const char* what) {
  static_cast<void>(std::fprintf(stdout, "FINDING: %s\n", what));
  static_cast<void>(std::fflush(stdout));
  if (std::FILE* tty = std::fopen("/dev/stderr", "w"); tty != nullptr) {
    static_cast<void>(std::fprintf(tty, "FINDING: %s\n", what));
    std::fclose(tty);
  }
  std::abort();
}

void expectNothingLeft(const char* who) {
  if (liveBlocks() != 0) finding((std::string("memory left behind by ") + who).c_str());
  if (diskOpenFiles(nullptr) != 0) finding((std::string("a file left open by ") + who).c_str());
}

}  // namespace statecut::fuzz

namespace statecut::sys {

using namespace fuzz;

int openFile(const char* path, int flags) {
  Disk& d = disk();
  const bool writes = (flags & O_ACCMODE) != O_RDONLY;
  File* file = find(path);
  if (file == nullptr && ((flags & O_CREAT) == 0 || *path == '\0')) {
    errno = ENOENT;
    return -1;
  }
  if (file == nullptr) file = &create(path);
  if (writes && file->input != nullptr) {
    d.harmed = true;
    errno = EACCES;
    return -1;
  }
  if ((flags & O_TRUNC) != 0) file->bytes.clear();
  for (std::size_t i = 0; i < kMostDescriptors; ++i) {
    if (d.descriptors[i].file != nullptr) continue;
    d.descriptors[i] = {file, 0, flags};
    return kFirstDescriptor + static_cast<int>(i);
  }
  errno = EMFILE;
  return -1;
}

int seekFile(int fd, std::uint64_t offset) {
  Descriptor* d = descriptorOf(fd);
  if (d == nullptr) return static_cast<int>(fail(EBADF));
  d->position = offset;
  return 0;
}

bool isSeekable(int fd) { return descriptorOf(fd) != nullptr; }

std::int64_t readNext(int fd, void* to, std::size_t count) {
  Descriptor* d = descriptorOf(fd);
  if (d == nullptr) return fail(EBADF);
  const std::int64_t got = readFrom(*d->file, to, count, d->position);
  if (got > 0) d->position += static_cast<std::uint64_t>(got);
  return got;
}

std::int64_t readAt(int fd, void* to, std::size_t count, std::uint64_t offset) {
  Descriptor* d = descriptorOf(fd);
  return d == nullptr ? fail(EBADF) : readFrom(*d->file, to, count, offset);
}

std::int64_t readPresent(int fd, void* to, std::size_t count, std::uint64_t offset) {
  return readAt(fd, to, count, offset);
}

std::int64_t writeNext(int fd, const void* from, std::size_t count) {
  Descriptor* d = descriptorOf(fd);
  return d == nullptr ? fail(EBADF) : writeTo(*d, from, count);
}

std::int64_t writeFlushed(int fd, const void* from, std::size_t count) {
  return writeNext(fd, from, count);
}

void willNeed(int /*fd*/, std::uint64_t /*offset*/, std::uint64_t /*count*/) {}

std::uint64_t fileBytes(int fd) {
  const Descriptor* d = descriptorOf(fd);
  return d == nullptr ? 0 : d->file->size();
}

int reserveBytes(int /*fd*/, std::uint64_t /*offset*/, std::uint64_t /*count*/) { return 0; }

int truncateFile(int fd, std::uint64_t bytes) {
  Descriptor* d = descriptorOf(fd);
  if (d == nullptr || d->file->input != nullptr) return static_cast<int>(fail(EBADF));
  if (bytes < d->file->bytes.size()) d->file->bytes.resize(bytes);
  return 0;
}

int closeFile(int fd) {
  Descriptor* d = descriptorOf(fd);
  if (d == nullptr) return static_cast<int>(fail(EBADF));
  *d = {};
  return 0;
}

void* allocateZeroed(std::size_t bytes) {
  Disk& d = disk();
  if (bytes > d.limits.blockBytes) {
    errno = ENOMEM;
    return nullptr;
  }
  void* block = std::calloc(bytes, 1);
  if (block != nullptr) d.blocks.insert(block);
  return block;
}

void release(void* block) {
  // A block that is not live is freed all the same: the allocator reports it.
  if (block != nullptr) disk().blocks.erase(block);
  std::free(block);
}

void* mapZeroed(std::size_t bytes) { return allocateZeroed(bytes); }

void unmapZeroed(void* block, std::size_t /*bytes*/) { release(block); }

int adviseLargePages(void* /*block*/, std::size_t /*bytes*/) { return 0; }

void* mapFile(int fd, std::size_t bytes) {
  void* const block = allocateZeroed(bytes);
  if (block != nullptr) readAt(fd, block, bytes, 0);
  return block;
}

void unmapFile(void* block, std::size_t /*bytes*/) { release(block); }

}  // namespace statecut::sys
