#pragma once
// Temporary folders; whole files.

#include <optional>
#include <string>
#include <vector>

namespace statecut::test {

// TMPDIR, or /tmp.
std::string temporaryBase();

// A folder of its own, removed with all it holds.
class TempDir {
 public:
  explicit TempDir(const std::string& base = temporaryBase());
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

using FileBytes = std::vector<unsigned char>;

void writeWholeFile(const std::string& path, const FileBytes& bytes);
std::optional<FileBytes> readWholeFile(const std::string& path);  // none: not there
std::string readTextFile(const std::string& path);                // "" when not there

}  // namespace statecut::test
