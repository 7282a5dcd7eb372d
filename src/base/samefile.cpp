#include "base/samefile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <optional>
#include <string>

namespace statecut {

namespace {

// Where a file that does not exist would be made.
struct Place {
  dev_t device;  // of its folder, as the next
  ino_t folder;
  std::string name;
  bool operator==(const Place&) const = default;
};

// The place that opening `path` would fill: symbolic links followed, the folder by device and
// inode, so that no path is too long. None when a folder does not exist.
std::optional<Place> placeOf(std::string path) {
  for (int links = 0; links < 40; ++links) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "./" : path.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0) return {};
    char target[PATH_MAX];
    const ssize_t length = ::readlink((folder + name).c_str(), target, sizeof target);
    if (length < 0) return Place{status.st_dev, status.st_ino, name};
    const std::string link(target, static_cast<std::size_t>(length));
    path = !link.empty() && link[0] == '/' ? link : folder + link;
  }
  return {};
}

}  // namespace

bool sameFile(const char* a, const char* b) {
  if (a == nullptr || b == nullptr || *a == '\0' || *b == '\0') return false;
  struct stat first {};
  struct stat second {};
  const bool haveFirst = ::stat(a, &first) == 0;
  const bool haveSecond = ::stat(b, &second) == 0;
  if (haveFirst != haveSecond) return false;
  if (haveFirst) {
    return S_ISREG(first.st_mode) && S_ISREG(second.st_mode) && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
  }
  const std::optional<Place> place = placeOf(a);
  return place && place == placeOf(b);
}

}  // namespace statecut
