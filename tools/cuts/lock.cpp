#include "cuts/lock.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cuts/names.h"

namespace statecut::cuts {

// A record lock: of the kinds of locks the one that no child inherits, so that it ends with this
// process even while a child that was killed with it is still on its way out.
bool FolderLock::take(const std::string& folder, std::string& error) {
  const std::string path = folder + "/" + kLockName;
  Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  if (!file) {
    error = path + ": " + std::strerror(errno);
    return false;
  }
  struct flock whole {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  if (::fcntl(file.get(), F_SETLK, &whole) == 0) {
    file_ = std::move(file);
    return true;
  }
  if (errno != EACCES && errno != EAGAIN) {
    error = path + ": " + std::strerror(errno);
    return false;
  }
  error = "another run works in " + folder;
  if (::fcntl(file.get(), F_GETLK, &whole) == 0 && whole.l_type != F_UNLCK && whole.l_pid > 0)
    error += " (process " + std::to_string(whole.l_pid) + ")";
  return false;
}

}  // namespace statecut::cuts
