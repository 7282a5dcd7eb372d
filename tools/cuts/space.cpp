#include "cuts/space.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>

namespace statecut::cuts {

// What products grow by stays; one that is replaced stands there twice while it is made.
std::uint64_t spaceNeeded(const std::vector<Room>& rooms, std::size_t atOnce) {
  std::uint64_t needed = 0;
  std::vector<std::uint64_t> twice;
  for (const Room& room : rooms) {
    needed += room.bytes - std::min(room.bytes, room.replaced);
    twice.push_back(std::min(room.bytes, room.replaced));
  }
  std::sort(twice.begin(), twice.end(), std::greater<>());
  twice.resize(std::min(twice.size(), atOnce));
  for (const std::uint64_t bytes : twice) needed += bytes;
  return needed;
}

std::uint64_t spaceFree(const std::string& folder, std::string& error) {
  struct statvfs disk {};
  if (::statvfs(folder.c_str(), &disk) != 0) {
    error = folder + ": " + std::strerror(errno);
    return 0;
  }
  return std::uint64_t{disk.f_bavail} * disk.f_frsize;
}

}  // namespace statecut::cuts
