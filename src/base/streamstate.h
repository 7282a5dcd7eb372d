#pragma once
// Inside of the streams: what a stream holds, for the files that implement stream.h.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/stream.h"

namespace statecut {

inline constexpr std::size_t kBufferBytes = 64 * 1024;
// The window of a sequential reader starts here and doubles up to the buffer.
inline constexpr std::size_t kFirstWindow = 8 * 1024;

struct Stream {
  int fd = -1;
  bool closed = false;  // by streamCloseKept: a mark that stays for the life of the process
  bool writable = false;
  bool append = false;
  bool seekable = false;
  bool error = false;
  bool eof = false;
  int firstErrno = 0;
  std::uint64_t openedSize = 0;  // as sys::fileBytes
  bool endedEarly = false;       // a read met the end before that size
  std::uint64_t position = 0;    // of the next byte that the caller sees
  std::unique_ptr<unsigned char[]> buffer;
  // Reading: the buffer holds `held` bytes of the file from `heldFrom`.
  std::uint64_t heldFrom = 0;
  std::size_t held = 0;
  std::uint64_t lastReadEnd = UINT64_MAX;
  std::size_t window = kFirstWindow;
  // Writing: the buffer holds `pending` bytes that the file has not got yet.
  std::size_t pending = 0;
  std::uint64_t reservedTo = 0;  // room of the file on the disk that was asked for; 0: none
  // Open streams form a list, flushed at normal process exit.
  Stream* next = nullptr;
  Stream* previous = nullptr;
};

// Gives room back that was reserved behind the end of the file.
void streamTrim(Stream* stream);
// Releases the window of streamAppend.
void streamDropWindow();

// Sets the error indicator and errno; the first failure is kept.
void streamFail(Stream* stream, int code);

}  // namespace statecut
