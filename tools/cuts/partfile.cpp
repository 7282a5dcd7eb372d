#include "cuts/partfile.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "cuts/descriptor.h"
#include "cuts/names.h"

namespace statecut::cuts {

PartFile::PartFile(const std::string& folder, const std::string& name, std::string& error)
    : folder_(folder), name_(name), part_(folder + "/" + partName(name)) {
  (void)::unlink(part_.c_str());
  fd_ = Descriptor(::open(part_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (fd_) return;
  error = part_ + ": " + std::strerror(errno);
  part_.clear();
}

PartFile::PartFile(PartFile&& other) noexcept { *this = std::move(other); }

PartFile& PartFile::operator=(PartFile&& other) noexcept {
  std::swap(folder_, other.folder_);
  std::swap(name_, other.name_);
  std::swap(part_, other.part_);
  std::swap(fd_, other.fd_);
  return *this;
}

PartFile::~PartFile() {
  if (!part_.empty()) (void)::unlink(part_.c_str());
}

bool PartFile::failed(std::string& error) const {
  error = folder_ + "/" + name_ + ": " + std::strerror(errno);
  return false;
}

bool PartFile::write(std::string_view text, std::string& error) {
  return writeAll(fd_.get(), text) || failed(error);
}

bool PartFile::flush(std::string& error) { return ::fsync(fd_.get()) == 0 || failed(error); }

bool PartFile::publish(std::string& error) {
  if (::rename(part_.c_str(), (folder_ + "/" + name_).c_str()) != 0) return failed(error);
  part_.clear();
  return true;
}

}  // namespace statecut::cuts
