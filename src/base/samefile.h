#pragma once
// Two names of one file.

namespace statecut {

// True when both names lead to one regular file, however aliased: by device and inode where they
// exist, by their folder and the name in it where neither does. Devices never.
[[nodiscard]] bool sameFile(const char* a, const char* b);

}  // namespace statecut
