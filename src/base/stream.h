#pragma once
// The thin layer under all file access of the core: buffered streams over POSIX descriptors.
// Semantics follow C streams (error and end-of-file indicators that stay set, appending mode, a
// flush of what is open at normal process exit); offsets are 64-bit bytes from the file's start.

#include <cstddef>
#include <cstdint>

namespace statecut {

struct Stream;  // owned by whoever opened it, released by streamClose

// Modes "rb", "wb", "w" (create, truncate) and "a+" (create, append). Null on failure, errno set.
[[nodiscard]] Stream* streamOpen(const char* path, const char* mode);

// 0, or -1 with errno set (not seekable, negative target). Clears the end-of-file indicator only.
int streamSeek(Stream* stream, std::uint64_t offset);
int streamSkip(Stream* stream, std::uint64_t distance);  // from the current position, forward

// The number of bytes moved; a smaller number means end of file or an error (indicators, errno).
std::size_t streamRead(Stream* stream, void* to, std::size_t count);
std::size_t streamWrite(Stream* stream, const void* from, std::size_t count);

// Appends some of the `count` bytes at `offset` of `from` to `to`, around both buffers. Returns how
// many; 0 when it can't or when `count` is too small to pay. The caller copies the rest by
// streamRead and streamWrite, which meet whatever failed here: it sets no indicator itself, except
// of a `to` that can't be flushed.
enum class Pages : std::uint8_t { kPresent, kAny };  // which may be read: those in memory, or all
std::size_t streamAppend(Stream* to, Stream* from, std::uint64_t offset, std::uint64_t count,
                         Pages pages = Pages::kAny);

// True when the first of these bytes, as many as are too few to append, are in memory.
[[nodiscard]] bool streamIsPresent(const Stream* from, std::uint64_t offset, std::uint64_t count);

// Tells how many bytes will be written next: a wish for room on the disk in one piece. The file's
// size stays, and what is not needed goes back when the stream is closed.
void streamReserve(Stream* stream, std::uint64_t bytes);

// Bytes of a regular file, 0 for anything else.
[[nodiscard]] std::uint64_t streamSize(const Stream* stream);
// Tells that these bytes will be read soon.
void streamWillNeed(const Stream* stream, std::uint64_t offset, std::uint64_t count);

int streamFlush(Stream* stream);  // 0, or -1 with errno set and the error indicator set
int streamClose(Stream* stream);  // flushes and releases; 0, or -1 with errno set. Null: 0
// As streamClose, but of the stream as much stays as shows that it is closed (its error is EBADF),
// for a caller that keeps the pointer. Closing such a stream again, in either way, does nothing: 0.
int streamCloseKept(Stream* stream);

// Bytes written to the stream that its file has not got yet.
[[nodiscard]] std::size_t streamPending(const Stream* stream);
[[nodiscard]] bool streamError(const Stream* stream);
[[nodiscard]] bool streamEof(const Stream* stream);
// errno of the first failure behind the error indicator, 0 when it is not set.
[[nodiscard]] int streamErrno(const Stream* stream);
// True when a read met the end of the file before the size that it had when the stream was opened;
// the file may have got its bytes back since.
[[nodiscard]] bool streamEndedEarly(const Stream* stream);
// True when it did, or the file is shorter now than when the stream was opened.
[[nodiscard]] bool streamShrank(const Stream* stream);

}  // namespace statecut
