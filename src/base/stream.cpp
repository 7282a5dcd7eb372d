#include "base/stream.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

#include "base/streamstate.h"
#include "base/system.h"

namespace statecut {

namespace {

Stream* openStreams = nullptr;
Stream* closedStreams = nullptr;  // marks that closed streams left

void flushOpenStreams() {
  for (Stream* stream = openStreams; stream != nullptr; stream = stream->next) {
    streamFlush(stream);
    streamTrim(stream);
  }
}

void enlist(Stream* stream) {
  static const bool registered = std::atexit(flushOpenStreams) == 0;
  static_cast<void>(registered);
  stream->next = openStreams;
  if (openStreams != nullptr) openStreams->previous = stream;
  openStreams = stream;
}

// Whether an open stream may be appended to.
bool appends() {
  const Stream* stream = openStreams;
  while (stream != nullptr && (!stream->writable || stream->append)) stream = stream->next;
  return stream != nullptr;
}

void delist(Stream* stream) {
  if (stream->previous != nullptr) stream->previous->next = stream->next;
  if (stream->next != nullptr) stream->next->previous = stream->previous;
  if (openStreams == stream) openStreams = stream->next;
  if (!appends()) streamDropWindow();
}

}  // namespace

void streamFail(Stream* stream, int code) {
  if (!stream->error) stream->firstErrno = code;
  stream->error = true;
  errno = code;
}

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
  std::unique_ptr<Stream> stream(new (std::nothrow) Stream);
  if (stream != nullptr) stream->buffer.reset(new (std::nothrow) unsigned char[kBufferBytes]);
  if (stream == nullptr || stream->buffer == nullptr) {
    sys::closeFile(fd);
    errno = ENOMEM;
    return nullptr;
  }
  stream->fd = fd;
  stream->writable = mode[0] != 'r';
  stream->append = mode[0] == 'a';
  stream->seekable = sys::isSeekable(fd);
  if (!stream->writable) stream->openedSize = sys::fileBytes(fd);
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

namespace {

// Flushes, closes the file and takes the stream off the list. 0, or -1 with errno set.
int closeFileOf(Stream* stream) {
  int result = streamFlush(stream);
  int code = errno;
  streamTrim(stream);
  if (sys::closeFile(stream->fd) != 0 && result == 0 && errno != EINTR) {
    result = -1;
    code = errno;
  }
  delist(stream);
  errno = code;
  return result;
}

}  // namespace

int streamClose(Stream* stream) {
  if (stream == nullptr || stream->closed) return 0;
  const int result = closeFileOf(stream);
  const int code = errno;
  delete stream;
  errno = code;
  return result;
}

int streamCloseKept(Stream* stream) {
  if (stream == nullptr || stream->closed) return 0;
  const int result = closeFileOf(stream);
  const int code = errno;
  *stream = Stream{};  // releases the buffer
  stream->closed = true;
  stream->error = true;
  stream->firstErrno = EBADF;
  stream->next = closedStreams;
  closedStreams = stream;
  errno = code;
  return result;
}

std::uint64_t streamSize(const Stream* stream) { return sys::fileBytes(stream->fd); }

void streamWillNeed(const Stream* stream, std::uint64_t offset, std::uint64_t count) {
  sys::willNeed(stream->fd, offset, count);
}

std::size_t streamPending(const Stream* stream) { return stream->pending; }
bool streamError(const Stream* stream) { return stream->error; }
bool streamEof(const Stream* stream) { return stream->eof; }
int streamErrno(const Stream* stream) { return stream->firstErrno; }
bool streamEndedEarly(const Stream* stream) { return stream->endedEarly; }
bool streamShrank(const Stream* stream) {
  return streamEndedEarly(stream) || streamSize(stream) < stream->openedSize;
}

}  // namespace statecut
