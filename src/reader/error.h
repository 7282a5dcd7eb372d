#pragma once
// Why a Database could not be opened, or a partition not be read.

#include <cstdint>
#include <string>

namespace statecut {
inline namespace v1 {

enum class ErrorCode : std::int32_t {
  kNone = 0,
  kOpenFile = 1,     // the file cannot be opened; `number` is errno
  kReadFile = 2,     // it cannot be read, or it changed while it was read
  kNotDatabase = 3,  // it is no file of this kind
  kShortFile = 4,    // a table ends behind its end
  kDamaged = 5,      // a table leads outside of another one, or to another's record
  kOtherBuild = 6,   // the range file was built with another reference file
  kNoMemory = 7,
  kNoRange = 8,      // the database was opened without a range file
  kNoPartition = 9,  // the ZIP code has no partition of the kind
  kSmallBuffer = 10  // the partition is larger than the buffer; `offset` is its size
};

struct Error {
  ErrorCode code = ErrorCode::kNone;
  int number = 0;            // errno, 0 when there is none
  std::string text;          // names the file, and the table where there is one
  std::string table;         // empty: none
  std::uint64_t offset = 0;  // in the file
};

}  // namespace v1
}  // namespace statecut
