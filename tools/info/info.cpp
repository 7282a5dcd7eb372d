#include "info/info.h"

#include <algorithm>
#include <ostream>

#include "format/mapped.h"

namespace statecut::info {

namespace {

void print(std::ostream& out, const Show& show, const FileInfo& file, bool isFirst,
           std::span<const unsigned char> bytes) {
  switch (show.tsv) {
    case Tsv::Tables:
      return printTsvTables(out, file);
    case Tsv::Zips:
      return printTsvZips(out, file, bytes);
    case Tsv::None:
      break;
  }
  if (!isFirst && !file.type.empty()) out << '\n';
  printText(out, file);
}

}  // namespace

int run(const std::vector<std::string>& paths, const Show& show, std::ostream& out,
        std::ostream& err) {
  std::vector<FileInfo> files;
  int status = 0;
  printTsvHeader(out, show.tsv);
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
    if (!show.key.empty()) {
      if (!printValue(out, file, show.key)) {
        err << "statedb info: " << path << ": no such value: " << show.key << '\n';
        status = 2;
      }
    } else if (!show.json) {
      print(out, show, file, files.size() == 1, mapped.bytes());
    }
    for (const std::string& damage : file.damage)
      err << "statedb info: " << path << ": " << damage << '\n';
    if (!file.damage.empty()) status = std::max(status, 1);
  }
  if (show.json) printJson(out, files);
  return status;
}

}  // namespace statecut::info
