#include "commands/zipsfile.h"

#include <filesystem>
#include <system_error>

namespace statecut {

namespace {

namespace fs = std::filesystem;

constexpr const char* kName = "us_zip_city.csv";

// An installation may be moved as a whole: its data folder is found from the program's own.
fs::path installedFile() {
  std::error_code unknown;
  const fs::path program = fs::read_symlink("/proc/self/exe", unknown);
  if (unknown) return {};
  return (program.parent_path() / STATEDB_DATA_FROM_PROGRAM / kName).lexically_normal();
}

}  // namespace

std::string findZipsFile(std::string& error) {
  const fs::path installed = installedFile();
  const fs::path source = fs::path(STATEDB_SOURCE_DATA) / kName;
  for (const fs::path& path : {installed, source}) {
    std::error_code ignored;
    if (!path.empty() && fs::exists(path, ignored)) return path.string();
  }
  error = "no ZIP codes: neither " + (installed.empty() ? "" : installed.string() + " nor ") +
          source.string() + " is there; name a file with --zips";
  return {};
}

}  // namespace statecut
