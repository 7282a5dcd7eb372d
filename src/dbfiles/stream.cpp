#include "dbfiles/stream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "dbfiles/system.h"

namespace statecut {

namespace {

constexpr std::size_t kBufferBytes = 64 * 1024;
constexpr std::size_t kFirstWindow = 8 * 1024;  // of a sequential reader, doubled up to the buffer

}  // namespace

struct Stream {
  int fd = -1;
  bool writable = false;
  bool append = false;
  bool seekable = false;
  bool error = false;
  bool eof = false;
  int firstErrno = 0;
  std::uint64_t position = 0;  // of the next byte that the caller sees
  std::unique_ptr<unsigned char[]> buffer;
  // Reading: the buffer holds `held` bytes of the file from `heldFrom`.
  std::uint64_t heldFrom = 0;
  std::size_t held = 0;
  std::uint64_t lastReadEnd = UINT64_MAX;
  std::size_t window = kFirstWindow;
  // Writing: the buffer holds `pending` bytes that the file has not got yet.
  std::size_t pending = 0;
  // Open streams form a list, flushed at normal process exit.
  Stream* next = nullptr;
  Stream* previous = nullptr;
};

namespace {

Stream* openStreams = nullptr;

void flushOpenStreams() {
  for (Stream* stream = openStreams; stream != nullptr; stream = stream->next) streamFlush(stream);
}

void enlist(Stream* stream) {
  static const bool registered = std::atexit(flushOpenStreams) == 0;
  static_cast<void>(registered);
  stream->next = openStreams;
  if (openStreams != nullptr) openStreams->previous = stream;
  openStreams = stream;
}

void delist(Stream* stream) {
  if (stream->previous != nullptr) stream->previous->next = stream->next;
  if (stream->next != nullptr) stream->next->previous = stream->previous;
  if (openStreams == stream) openStreams = stream->next;
}

void fail(Stream* stream, int code) {
  if (!stream->error) stream->firstErrno = code;
  stream->error = true;
  errno = code;
}

// One read of at most `count` bytes; fewer come from a pipe. Sets the indicators. The bytes read.
std::size_t readOnce(Stream* stream, unsigned char* to, std::size_t count, std::uint64_t at) {
  for (;;) {
    const std::int64_t got = stream->seekable ? sys::readAt(stream->fd, to, count, at)
                                              : sys::readNext(stream->fd, to, count);
    if (got > 0) return static_cast<std::size_t>(got);
    if (got < 0 && errno == EINTR) continue;
    if (got == 0) {
      stream->eof = true;
    } else {
      fail(stream, errno);
    }
    return 0;
  }
}

// Reads until `count` bytes, the end of the file or an error. The bytes read.
std::size_t readFully(Stream* stream, unsigned char* to, std::size_t count, std::uint64_t at) {
  std::size_t done = 0;
  while (done < count) {
    const std::size_t got = readOnce(stream, to + done, count - done, at + done);
    if (got == 0) break;
    done += got;
  }
  return done;
}

// Writes all `count` bytes, or fewer with the error indicator set. The bytes written.
std::size_t writeFully(Stream* stream, const unsigned char* from, std::size_t count,
                       decltype(sys::writeNext) write) {
  std::size_t done = 0;
  while (done < count) {
    const std::int64_t put = write(stream->fd, from + done, count - done);
    if (put > 0) {
      done += static_cast<std::size_t>(put);
    } else if (put == 0) {
      fail(stream, EIO);
      break;
    } else if (errno != EINTR) {
      fail(stream, errno);
      break;
    }
  }
  return done;
}

// Serves bytes that the buffer holds at the stream's position. The bytes copied.
std::size_t takeHeld(Stream* stream, unsigned char* to, std::size_t count) {
  if (stream->position < stream->heldFrom || stream->position - stream->heldFrom >= stream->held) {
    return 0;
  }
  const std::size_t offset = static_cast<std::size_t>(stream->position - stream->heldFrom);
  const std::size_t part = std::min(count, stream->held - offset);
  std::memcpy(to, stream->buffer.get() + offset, part);
  stream->position += part;
  return part;
}

// The name that opening `path` would create or reach: its folder resolved, then the last part,
// symbolic links followed. Empty when a folder does not exist.
std::string resolved(std::string path) {
  for (int links = 0; links < 40; ++links) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(folder.c_str(), nullptr),
                                                           &std::free);
    if (real == nullptr) return {};
    std::string full = std::string(real.get()) + "/" + name;
    char target[PATH_MAX];
    const ssize_t length = ::readlink(full.c_str(), target, sizeof target);
    if (length < 0) return full;
    const std::string link(target, static_cast<std::size_t>(length));
    path = !link.empty() && link[0] == '/' ? link : std::string(real.get()) + "/" + link;
  }
  return {};
}

}  // namespace

Stream* streamOpen(const char* path, const char* mode) {
  if (path == nullptr || mode == nullptr) {
    errno = EINVAL;
    return nullptr;
  }
  int flags = O_RDONLY;
  if (mode[0] == 'w') flags = O_WRONLY | O_CREAT | O_TRUNC;
  if (mode[0] == 'a') flags = O_RDWR | O_CREAT | O_APPEND;
  const int fd = sys::openFile(path, flags | O_CLOEXEC);
  if (fd < 0) return nullptr;
  auto stream = std::make_unique<Stream>();
  stream->fd = fd;
  stream->writable = mode[0] != 'r';
  stream->append = mode[0] == 'a';
  stream->seekable = sys::isSeekable(fd);
  stream->buffer = std::make_unique<unsigned char[]>(kBufferBytes);
  enlist(stream.get());
  return stream.release();
}

int streamSeek(Stream* stream, std::uint64_t offset) {
  if (!stream->seekable || offset > static_cast<std::uint64_t>(INT64_MAX)) {
    errno = stream->seekable ? EINVAL : ESPIPE;
    return -1;
  }
  if (stream->writable) {
    if (streamFlush(stream) != 0) return -1;
    if (sys::seekFile(stream->fd, offset) != 0) return -1;
  }
  stream->position = offset;
  stream->eof = false;
  return 0;
}

int streamSkip(Stream* stream, std::uint64_t distance) {
  return streamSeek(stream, stream->position + distance);
}

std::size_t streamRead(Stream* stream, void* to, std::size_t count) {
  auto* out = static_cast<unsigned char*>(to);
  std::size_t done = takeHeld(stream, out, count);
  while (done < count && !stream->eof && !stream->error) {
    // Small pieces are read ahead only behind a read that ended here; others move just their bytes.
    const bool sequential = stream->position == stream->lastReadEnd;
    stream->window = sequential ? std::min(stream->window * 2, kBufferBytes) : kFirstWindow / 2;
    if (sequential && count - done < stream->window && !stream->writable) {
      stream->held = 0;
      const std::size_t got =
          readOnce(stream, stream->buffer.get(), stream->window, stream->position);
      stream->heldFrom = stream->position;
      stream->held = got;
      const std::size_t part = takeHeld(stream, out + done, count - done);
      done += part;
      if (done == count) stream->eof = false;
      stream->lastReadEnd = stream->heldFrom + got;
    } else {
      const std::size_t got = readFully(stream, out + done, count - done, stream->position);
      stream->position += got;
      stream->lastReadEnd = stream->position;
      done += got;
    }
  }
  return done;
}

std::size_t streamWrite(Stream* stream, const void* from, std::size_t count) {
  if (!stream->writable) {
    fail(stream, EBADF);
    return 0;
  }
  const auto* in = static_cast<const unsigned char*>(from);
  std::size_t done = 0;
  while (done < count) {
    if (stream->pending == 0 && count - done >= kBufferBytes) {
      const std::size_t put = writeFully(stream, in + done, count - done, sys::writeNext);
      done += put;
      break;
    }
    if (stream->pending == kBufferBytes && streamFlush(stream) != 0) break;
    const std::size_t part = std::min(count - done, kBufferBytes - stream->pending);
    std::memcpy(stream->buffer.get() + stream->pending, in + done, part);
    stream->pending += part;
    done += part;
  }
  stream->position += done;
  return done;
}

int streamFlush(Stream* stream) {
  if (stream == nullptr || stream->pending == 0) return 0;
  const std::size_t put =
      writeFully(stream, stream->buffer.get(), stream->pending, sys::writeFlushed);
  const std::size_t left = stream->pending - put;
  if (left != 0) std::memmove(stream->buffer.get(), stream->buffer.get() + put, left);
  stream->pending = left;
  return left == 0 ? 0 : -1;
}

int streamClose(Stream* stream) {
  if (stream == nullptr) return 0;
  int result = streamFlush(stream);
  int code = errno;
  if (sys::closeFile(stream->fd) != 0 && result == 0 && errno != EINTR) {
    result = -1;
    code = errno;
  }
  delist(stream);
  delete stream;
  errno = code;
  return result;
}

bool streamError(const Stream* stream) { return stream->error; }
bool streamEof(const Stream* stream) { return stream->eof; }
int streamErrno(const Stream* stream) { return stream->firstErrno; }

bool sameFile(const char* a, const char* b) {
  if (a == nullptr || b == nullptr || *a == '\0' || *b == '\0') return false;
  struct stat first {};
  struct stat second {};
  const bool haveFirst = ::stat(a, &first) == 0;
  const bool haveSecond = ::stat(b, &second) == 0;
  if (haveFirst != haveSecond) return false;
  if (haveFirst) {
    return S_ISREG(first.st_mode) && S_ISREG(second.st_mode) && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
  }
  const std::string path = resolved(a);
  return !path.empty() && path == resolved(b);
}

}  // namespace statecut
