#include "info/info.h"

#include <algorithm>
#include <ostream>

#include "format/mapped.h"

namespace statecut::info {

int run(const std::vector<std::string>& paths, bool json, std::ostream& out, std::ostream& err) {
  std::vector<FileInfo> files;
  int status = 0;
  for (const std::string& path : paths) {
    std::string error;
    const auto mapped = format::MappedFile::open(path, error);
    if (!error.empty()) {
      err << "statedb info: " << error << '\n';
      status = 2;
      continue;
    }
    files.push_back(describe(path, mapped.bytes()));
    const FileInfo& file = files.back();
    if (!json) {
      if (files.size() > 1 && !file.type.empty()) out << '\n';
      printText(out, file);
    }
    for (const std::string& damage : file.damage)
      err << "statedb info: " << path << ": " << damage << '\n';
    if (!file.damage.empty()) status = std::max(status, 1);
  }
  if (json) printJson(out, files);
  return status;
}

}  // namespace statecut::info
