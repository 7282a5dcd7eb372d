#pragma once
// The files and memory of the core, held in this process: this library takes the place of the
// core's system calls, so that a run touches no real file. What a run reads, writes and allocates
// is limited; past a limit the calls fail as those of a worn, full or small machine do.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace statecut::fuzz {

using Bytes = std::vector<unsigned char>;

struct DiskLimits {
  std::uint64_t readBytes = std::uint64_t{16} << 20;  // of all files together, then EIO
  std::uint64_t readCalls = 200000;                   // then EIO
  std::uint64_t fileBytes = std::uint64_t{2} << 20;   // of one written file, then ENOSPC
  std::uint64_t blockBytes = std::uint64_t{1} << 20;  // of one block of memory, then none
};

// Starts a run: no file, nothing open. What the last run left is reported by the counts below.
void diskStart(const DiskLimits& limits = {});

// An input; the bytes stay the caller's and are read where they are.
void diskInput(const char* path, const unsigned char* bytes, std::size_t size);
// A file whose bytes are dropped as they come.
void diskSink(const char* path);

// The bytes of a written file, null when there is none.
[[nodiscard]] const Bytes* diskOutput(const char* path);
// True when an input was opened for writing.
[[nodiscard]] bool diskInputHarmed();
[[nodiscard]] std::size_t diskOpenFiles(const char* path);  // null: of all files
[[nodiscard]] std::uint64_t diskReadCalls();

[[nodiscard]] std::size_t liveBlocks();
void releaseIfLive(void* block);
void releaseLiveBlocks();  // what a failed run leaves hanging until the process ends

// Ends the process with a message, as a finding.
[[noreturn]] void finding(const char* what);
// A finding when memory or an open file is left; `who` leaves it: "a closed session".
void expectNothingLeft(const char* who);

}  // namespace statecut::fuzz
