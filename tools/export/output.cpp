#include "export/output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "cuts/flushed.h"

namespace statecut::exporting {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBuffer = std::size_t{256} << 10;

}  // namespace

// A link stays one: the file that it leads to is replaced. What is no file is written to.
Output Output::open(const std::string& path, std::string& error) {
  Output output;
  output.shown_ = path == "-" ? "standard output" : path;
  std::error_code code;
  const fs::file_status status = fs::status(path, code);
  if (path == "-") {
    output.direct_ = cuts::Descriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3));
  } else if (fs::is_directory(status)) {
    error = path + ": is a folder";
    return output;
  } else if (fs::exists(status) && !fs::is_regular_file(status)) {
    output.direct_ = cuts::Descriptor(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
  } else {
    const fs::path target =
        fs::is_symlink(path, code) ? fs::weakly_canonical(path, code) : fs::path(path);
    const std::string folder = target.parent_path().string();
    output.folder_ = folder.empty() ? "." : folder;
    output.part_ = cuts::PartFile(output.folder_, target.filename().string(), error);
    return output;
  }
  if (!output.direct_) error = output.shown_ + ": " + std::strerror(errno);
  return output;
}

bool Output::flushBuffer() {
  bool good = true;
  if (!direct_) {
    good = buffer_.empty() || part_.write(buffer_, error_);
  } else if (!cuts::writeAll(direct_.get(), buffer_)) {
    error_ = shown_ + ": " + std::strerror(errno);
    good = false;
  }
  buffer_.clear();
  return good;
}

bool Output::write(std::string_view bytes) {
  if (!error_.empty()) return false;
  bytes_ += bytes.size();
  buffer_ += bytes;
  return buffer_.size() < kBuffer || flushBuffer();
}

bool Output::finish() {
  return error_.empty() && flushBuffer() && (direct_ || part_.flush(error_));
}

bool Output::publish() {
  return direct_ || (part_.publish(error_) && cuts::flush(folder_, error_));
}

}  // namespace statecut::exporting
