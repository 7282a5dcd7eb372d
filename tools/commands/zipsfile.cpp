#include "commands/zipsfile.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace statecut {

namespace {

namespace fs = std::filesystem;

constexpr const char* kName = "us_zip_city.csv";

// An installation may be moved as a whole: its data are found from the program's own folder.
std::vector<fs::path> places() {
  const char* named = std::getenv("STATECUT_DATA");
  if (named != nullptr && *named != '\0') return {fs::path(named) / kName};
  std::error_code unknown;
  const fs::path program = fs::read_symlink("/proc/self/exe", unknown);
  if (unknown) return {};
  const fs::path folder = program.parent_path();
  return {folder / kName, (folder / STATEDB_DATA_FROM_PROGRAM / kName).lexically_normal()};
}

}  // namespace

std::string findZipsFile(std::string& error) {
  error = "no ZIP codes";
  const char* separator = ": there is no ";
  for (const fs::path& path : places()) {
    std::error_code ignored;
    if (fs::exists(path, ignored)) return path.string();
    error += separator + path.string();
    separator = ", no ";
  }
  error += "; name their folder with STATECUT_DATA or a file with --zips";
  return {};
}

}  // namespace statecut
