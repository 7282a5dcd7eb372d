#pragma once
// What a folder of products holds: manifest.json.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace statecut::cuts {

struct FileRecord {
  std::string name;  // without its folder
  std::uint64_t bytes = 0;
  std::string sha256;
  bool operator==(const FileRecord&) const = default;
};

struct SourceRecord {
  FileRecord file;
  std::uint32_t buildStamp = 0;
  bool operator==(const SourceRecord&) const = default;
};

struct ProductRecord {
  std::vector<std::string> states;  // sorted, each once
  std::uint64_t zips = 0;
  std::uint64_t cities = 0;
  std::uint64_t partitions = 0;  // those of several ZIP codes among them
  FileRecord reference;
  FileRecord range;
  std::uint32_t time = 0;  // the state cut stamp of both files
  std::vector<std::string> warnings;
};

struct Manifest {
  std::string version;  // of the program that made the products
  SourceRecord reference;
  SourceRecord range;
  std::map<std::string, ProductRecord> products;  // by name
};

// Equal manifests give equal texts.
std::string toText(const Manifest& manifest);

// Nothing when the text is no manifest.
std::optional<Manifest> parseManifest(const std::string& text);

// Replaces the manifest of the folder by rename, flushed to disk.
bool saveManifest(const std::string& folder, const Manifest& manifest, std::string& error);
std::optional<Manifest> loadManifest(const std::string& folder);

}  // namespace statecut::cuts
