#pragma once
// Files as the measurements need them: compared, removed, brought into the page cache or out of it.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace statecut::bench {

using Path = std::filesystem::path;
using Paths = std::vector<Path>;

std::string readFile(const Path& path);
void writeFile(const Path& path, std::string_view text);

std::uint64_t bytesOf(const Paths& paths);
[[nodiscard]] bool sameBytes(const Path& a, const Path& b);
void removeFiles(const Paths& paths);

// Writes a file of so many bytes and removes it, so that the system has as many pages free at once:
// in a virtual machine the first touch of a page that the host took back costs much more.
void primePages(const Path& scratch, std::uint64_t bytes);
// Until the disk has the bytes.
void syncFiles(const Paths& paths);

// Until every page is there. Throws when the machine has no room for them.
void loadIntoCache(const Paths& paths);
// Writes back what is dirty, then drops the pages; the share of the pages that stayed, 0 to 1.
double evictFromCache(const Paths& paths);
// Pages in the cache, of all pages; 0 to 1.
double cachedShare(const Path& path);

}  // namespace statecut::bench
