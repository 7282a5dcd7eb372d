#include "cuts/partfolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

#include "cuts/descriptor.h"
#include "cuts/names.h"

namespace statecut::cuts {

bool removeProductFolder(const std::string& path, std::string& error) {
  // A program that was killed a moment ago may still be making its last file there.
  constexpr int kTries = 20;
  for (int tries = 0;; ++tries) {
    for (const char* name : {kReferenceName, kRangeName, kLogName})
      if (::unlink((path + "/" + name).c_str()) != 0 && errno != ENOENT && errno != ENOTDIR)
        return failed(path + "/" + name, error);
    if (::rmdir(path.c_str()) == 0 || errno == ENOENT) return true;
    if ((errno != ENOTEMPTY && errno != EEXIST) || tries == kTries) return failed(path, error);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

bool replaceable(const std::string& path, std::string& error) {
  namespace fs = std::filesystem;
  std::error_code code;
  const fs::file_status status = fs::symlink_status(path, code);
  if (status.type() == fs::file_type::not_found) return true;
  if (!code && !fs::is_directory(status)) {
    error = path + ": not a folder";
    return false;
  }
  for (fs::directory_iterator entry(path, code), end; !code && entry != end;
       entry.increment(code)) {
    const std::string name = entry->path().filename().string();
    if (name == kReferenceName || name == kRangeName || name == kLogName) continue;
    error = path;
    error.append(": holds what is no product's: ").append(name);
    return false;
  }
  if (code) error = path + ": " + code.message();
  return !code;
}

bool makePartFolder(const std::string& out, const std::string& product, std::string& error) {
  const std::string path = out + "/" + partName(product);
  if (!removeProductFolder(path, error)) return false;
  return ::mkdir(path.c_str(), 0777) == 0 || failed(path, error);
}

bool removeAllParts(const std::string& out, std::string& error) {
  namespace fs = std::filesystem;
  std::error_code code;
  bool good = true;
  for (fs::directory_iterator entry(out, code), end; !code && entry != end; entry.increment(code)) {
    const std::string name = entry->path().filename().string();
    std::error_code ignored;
    if (isPartName(name) && fs::is_directory(entry->symlink_status(ignored)))
      good = removeProductFolder(entry->path().string(), error) && good;
    if (name == partName(kManifestName) && ::unlink(entry->path().c_str()) != 0)
      good = failed(entry->path().string(), error);
  }
  if (code) error = out + ": " + code.message();
  return good && !code;
}

}  // namespace statecut::cuts
