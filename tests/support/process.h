#pragma once
// Runs a program as a user would and keeps what it wrote; temporary folders; whole files.

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace statecut::test {

// A folder of its own under TMPDIR (or /tmp), removed with all it holds.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

struct Command {
  std::string program;
  std::vector<std::string> arguments;
  std::string input;                               // standard input, then its end
  std::map<std::string, std::string> environment;  // on top of the caller's
  std::string folder;                              // working folder, empty = the caller's
  int timeoutSeconds = 60;
};

struct ProcessResult {
  bool timedOut = false;
  int signal = 0;      // the signal that ended it, 0 = none
  int exitStatus = 0;  // valid when neither of the above
  std::string out;
  std::string err;
};

// Waits for the end; past the timeout the program is killed.
ProcessResult runProcess(const Command& command);

using FileBytes = std::vector<unsigned char>;

void writeWholeFile(const std::string& path, const FileBytes& bytes);
std::optional<FileBytes> readWholeFile(const std::string& path);  // none: not there
std::string readTextFile(const std::string& path);                // "" when not there

}  // namespace statecut::test
