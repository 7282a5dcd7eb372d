#pragma once
// A file that gets its name when it is whole: until then it stands beside it, under another one.

#include <string>
#include <string_view>

#include "cuts/descriptor.h"

namespace statecut::cuts {

class PartFile {
 public:
  PartFile() = default;
  // For `name` in `folder`; what an earlier run left there goes. `error` tells why it can't be
  // made.
  PartFile(const std::string& folder, const std::string& name, std::string& error);
  PartFile(PartFile&& other) noexcept;
  PartFile& operator=(PartFile&& other) noexcept;
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile();  // removes it, if it did not get its name

  [[nodiscard]] const std::string& path() const { return part_; }  // for who writes it by its name
  bool write(std::string_view text, std::string& error);

  // Puts it on the disk.
  bool flush(std::string& error);
  // Gives it its name, in place of what stands there. The folder is to be flushed behind it.
  bool publish(std::string& error);

 private:
  bool failed(std::string& error) const;

  std::string folder_, name_, part_;
  Descriptor fd_;
};

}  // namespace statecut::cuts
