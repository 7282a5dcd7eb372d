#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/largeblock.h"
#include "base/streamstate.h"
#include "base/system.h"

namespace statecut {

namespace {

constexpr std::uint64_t kLeastAppend = 32 * 1024;    // below that the buffer is faster
constexpr std::size_t kAppendWindow = 512 * 1024;    // fits in the cache of a core
constexpr std::uint64_t kLeastReserve = 256 * 1024;  // below that the call costs more than it saves

LargeBlock window;  // one for all streams, as one appends at a time

bool hasWindow() {
  if (window.data() == nullptr) window = LargeBlock(kAppendWindow);
  return window.data() != nullptr;
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

// The bytes pass through one window that stays in the cache: the kernel copies out of and into the
// pages of the files, and nothing of them is mapped.
std::size_t streamAppend(Stream* to, Stream* from, std::uint64_t offset, std::uint64_t count,
                         Pages pages) {
  if (count < kLeastAppend || !to->writable || to->append || to->error || !from->seekable) return 0;
  if (streamFlush(to) != 0) return 0;
  if (!hasWindow()) return 0;
  // Windows end at round positions of the file written: its page cache has large pieces then.
  const auto room = static_cast<std::size_t>(kAppendWindow - to->position % kAppendWindow);
  const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(count, room));
  const auto read = pages == Pages::kPresent ? sys::readPresent : sys::readAt;
  const std::int64_t got = read(from->fd, window.data(), part, offset);
  if (got <= 0) return 0;
  const std::int64_t put = sys::writeNext(to->fd, window.data(), static_cast<std::size_t>(got));
  if (put <= 0) return 0;
  to->position += static_cast<std::uint64_t>(put);
  return static_cast<std::size_t>(put);
}

bool streamIsPresent(const Stream* from, std::uint64_t offset, std::uint64_t count) {
  if (!hasWindow()) return false;
  const auto part = static_cast<std::size_t>(std::min(count, kLeastAppend));
  return sys::readPresent(from->fd, window.data(), part, offset) == static_cast<std::int64_t>(part);
}

void streamDropWindow() { window = LargeBlock(); }

void streamReserve(Stream* stream, std::uint64_t bytes) {
  if (!stream->writable || stream->append || stream->error || bytes < kLeastReserve) return;
  const std::uint64_t from = stream->position - stream->pending;
  stream->reservedTo = std::max(stream->reservedTo, stream->position + bytes);
  // What a failed call has taken all the same, other programs may need.
  if (sys::reserveBytes(stream->fd, from, stream->pending + bytes) != 0) streamTrim(stream);
}

void streamTrim(Stream* stream) {
  if (stream->reservedTo == 0) return;
  const std::uint64_t size = sys::fileBytes(stream->fd);
  if (size < stream->reservedTo) static_cast<void>(sys::truncateFile(stream->fd, size));
  stream->reservedTo = 0;
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
