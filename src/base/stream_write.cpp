#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/streamstate.h"
#include "base/system.h"

namespace statecut {

namespace {

constexpr std::uint64_t kLeastAppend = 32 * 1024;    // below that the buffer is faster
constexpr std::uint64_t kAppendWindow = 512 * 1024;  // fits in the cache of a core

// Writes all `count` bytes, or fewer with the error indicator set. The bytes written.
std::size_t writeFully(Stream* stream, const unsigned char* from, std::size_t count,
                       decltype(sys::writeNext) write) {
  std::size_t done = 0;
  while (done < count) {
    const std::int64_t put = write(stream->fd, from + done, count - done);
    if (put > 0) {
      done += static_cast<std::size_t>(put);
    } else if (put == 0) {
      streamFail(stream, EIO);
      break;
    } else if (errno != EINTR) {
      streamFail(stream, errno);
      break;
    }
  }
  return done;
}

}  // namespace

std::size_t streamWrite(Stream* stream, const void* from, std::size_t count) {
  if (!stream->writable) {
    streamFail(stream, EBADF);
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
    if (stream->pending == kBufferBytes) {
      if (streamFlush(stream) != 0) break;
      continue;
    }
    const std::size_t part = std::min(count - done, kBufferBytes - stream->pending);
    std::memcpy(stream->buffer.get() + stream->pending, in + done, part);
    stream->pending += part;
    done += part;
  }
  stream->position += done;
  return done;
}

std::size_t streamAppend(Stream* to, Stream* from, std::uint64_t offset, std::uint64_t count) {
  if (count < kLeastAppend || !to->writable || to->append || to->error || !from->seekable) return 0;
  if (streamFlush(to) != 0) return 0;
  // Windows end at round positions of the file written: its page cache has large pieces then.
  std::uint64_t window = kAppendWindow - to->position % kAppendWindow;
  if (window < kLeastAppend) window += kAppendWindow;
  const auto part = static_cast<std::size_t>(std::min(count, window));
  const std::size_t put = sys::appendRange(to->fd, from->fd, offset, part);
  to->position += put;
  return put;
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

}  // namespace statecut
