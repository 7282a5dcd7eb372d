// Runs a fuzz target over the files of folders, in the order of their names, without a fuzzer.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#define STATECUT_FUZZ_TARGETS(each) \
  each(control) each(memory) each(disk) each(hash) each(cut) each(commandline) each(csv)

#define STATECUT_FUZZ_DECLARE(name) extern "C" int fuzz_##name(const std::uint8_t*, std::size_t);
STATECUT_FUZZ_TARGETS(STATECUT_FUZZ_DECLARE)

namespace {

struct Target {
  const char* name;
  int (*run)(const std::uint8_t* data, std::size_t size);
};

#define STATECUT_FUZZ_ENTRY(name) {#name, fuzz_##name},
constexpr Target kTargets[] = {STATECUT_FUZZ_TARGETS(STATECUT_FUZZ_ENTRY)};

std::vector<std::filesystem::path> filesOf(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 2; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) continue;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
      if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  std::FILE* const out = stdout;  // the targets send theirs nowhere
  const auto* const target = std::find_if(
      std::begin(kTargets), std::end(kTargets),
      [&](const Target& each) { return argc > 2 && !std::strcmp(each.name, argv[1]); });
  if (target == std::end(kTargets)) {
    std::fputs("usage: replay TARGET FOLDER...\n", stderr);
    return 2;
  }
  const auto files = filesOf(argc, argv);
  for (const auto& path : files) {
    std::ifstream in(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    if (argc > 3 && !std::strcmp(argv[argc - 1], "-v")) {
      std::fprintf(out, "%s\n", path.c_str());
      std::fflush(out);
    }
    target->run(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::fprintf(out, "%zu inputs\n", files.size());
  return files.empty() ? 1 : 0;
}
