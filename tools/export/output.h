#pragma once
// Where an export goes: a file that appears when it is whole, or something that takes bytes as they
// come, such as standard output, a pipe or a device.

#include <cstdint>
#include <string>
#include <string_view>

#include "cuts/partfile.h"

namespace statecut::exporting {

class Output {
 public:
  Output() = default;
  // "-" is standard output.
  static Output open(const std::string& path, std::string& error);

  // False when writing has failed, now or earlier; what error() tells then.
  bool write(std::string_view bytes);
  // The rest, on the disk but not yet under its name.
  bool finish();
  bool publish();

  [[nodiscard]] const std::string& error() const { return error_; }
  [[nodiscard]] std::uint64_t bytes() const { return bytes_; }
  // A file that another program writes by this name; empty where bytes are taken as they come.
  [[nodiscard]] const std::string& partPath() const { return part_.path(); }
  void setBytes(std::uint64_t bytes) { bytes_ = bytes; }

 private:
  bool flushBuffer();

  std::string folder_;
  std::string shown_;  // the name, for messages
  cuts::PartFile part_;
  cuts::Descriptor direct_;
  std::string buffer_;
  std::string error_;
  std::uint64_t bytes_ = 0;
};

}  // namespace statecut::exporting
