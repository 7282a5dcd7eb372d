#include "cuts/flushed.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cuts/descriptor.h"
#include "cuts/partfile.h"

namespace statecut::cuts {

bool flush(const std::string& path, std::string& error) {
  const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd || ::fsync(fd.get()) != 0) return failed(path, error);
  return true;
}

void beginFlush(const std::string& path) {
  const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (fd) (void)::sync_file_range(fd.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

bool replaceFile(const std::string& folder, const std::string& name, const std::string& text,
                 std::string& error) {
  PartFile part(folder, name, error);
  return !part.path().empty() && part.write(text, error) && part.flush(error) &&
         part.publish(error) && flush(folder, error);
}

bool publishFolder(const std::string& parent, const std::string& from, const std::string& to,
                   std::string& error) {
  const std::string source = parent + "/" + from, target = parent + "/" + to;
  if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
    return flush(parent, error);
  if (errno == EEXIST &&
      ::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) == 0)
    return flush(parent, error);
  if (errno != EINVAL && errno != ENOSYS) return failed(target, error);
  // A file system without exchange: for a moment the name is free. The older folder stands aside.
  const std::string aside = parent + "/." + to + ".old.part";
  const bool older = ::rename(target.c_str(), aside.c_str()) == 0;
  if (!older && errno != ENOENT) return failed(target, error);
  if (::rename(source.c_str(), target.c_str()) != 0) {
    failed(target, error);
    if (older) (void)::rename(aside.c_str(), target.c_str());
    return false;
  }
  if (older && ::rename(aside.c_str(), source.c_str()) != 0) return failed(aside, error);
  return flush(parent, error);
}

}  // namespace statecut::cuts
