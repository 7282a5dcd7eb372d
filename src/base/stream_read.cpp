#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/streamstate.h"
#include "base/system.h"

namespace statecut {

namespace {

// One read of at most `count` bytes; fewer come from a pipe. Sets the indicators. The bytes read.
std::size_t readOnce(Stream* stream, unsigned char* to, std::size_t count, std::uint64_t at) {
  for (;;) {
    const std::int64_t got = stream->seekable ? sys::readAt(stream->fd, to, count, at)
                                              : sys::readNext(stream->fd, to, count);
    if (got > 0) return static_cast<std::size_t>(got);
    if (got < 0 && errno == EINTR) continue;
    if (got == 0) {
      stream->eof = true;
      if (at < stream->openedSize) stream->endedEarly = true;
    } else {
      streamFail(stream, errno);
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

}  // namespace

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

}  // namespace statecut
