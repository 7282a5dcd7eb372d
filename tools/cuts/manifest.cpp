#include "cuts/manifest.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cuts/flushed.h"
#include "cuts/names.h"

namespace statecut::cuts {

namespace {

using nlohmann::ordered_json;

constexpr char kTimeForm[] = "%Y-%m-%dT%H:%M:%SZ";

std::string timeText(std::uint32_t stamp) {
  const auto seconds = static_cast<std::time_t>(stamp);
  std::tm utc{};
  char text[40] = "";
  if (gmtime_r(&seconds, &utc) != nullptr) std::strftime(text, sizeof text, kTimeForm, &utc);
  return text;
}

std::uint32_t timeOf(const std::string& text) {
  std::tm utc{};
  const char* end = strptime(text.c_str(), kTimeForm, &utc);
  if (end == nullptr || *end != '\0') throw std::invalid_argument("no time");
  return static_cast<std::uint32_t>(timegm(&utc));
}

ordered_json fileJson(const FileRecord& file) {
  return {{"file", file.name}, {"bytes", file.bytes}, {"sha256", file.sha256}};
}

FileRecord fileOf(const ordered_json& json) {
  return {json.at("file"), json.at("bytes"), json.at("sha256")};
}

ordered_json sourceJson(const SourceRecord& source) {
  ordered_json json = fileJson(source.file);
  json["buildStamp"] = source.buildStamp;
  return json;
}

SourceRecord sourceOf(const ordered_json& json) { return {fileOf(json), json.at("buildStamp")}; }

ordered_json productJson(const ProductRecord& product) {
  return {{"states", product.states},
          {"zips", product.zips},
          {"cities", product.cities},
          {"partitions", product.partitions},
          {"reference", fileJson(product.reference)},
          {"range", fileJson(product.range)},
          {"time", timeText(product.time)},
          {"warnings", product.warnings}};
}

ProductRecord productOf(const ordered_json& json) {
  ProductRecord product;
  product.states = json.at("states").get<std::vector<std::string>>();
  product.zips = json.at("zips");
  product.cities = json.at("cities");
  product.partitions = json.at("partitions");
  product.reference = fileOf(json.at("reference"));
  product.range = fileOf(json.at("range"));
  product.time = timeOf(json.at("time"));
  product.warnings = json.at("warnings").get<std::vector<std::string>>();
  return product;
}

}  // namespace

std::string toText(const Manifest& manifest) {
  ordered_json json = {
      {"version", manifest.version},
      {"source",
       {{"reference", sourceJson(manifest.reference)}, {"range", sourceJson(manifest.range)}}},
      {"products", ordered_json::object()}};
  for (const auto& [name, product] : manifest.products)
    json["products"][name] = productJson(product);
  // File names may hold any bytes.
  return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::optional<Manifest> parseManifest(const std::string& text) {
  try {
    const ordered_json json = ordered_json::parse(text);
    Manifest manifest;
    manifest.version = json.at("version");
    manifest.reference = sourceOf(json.at("source").at("reference"));
    manifest.range = sourceOf(json.at("source").at("range"));
    for (const auto& [name, product] : json.at("products").items())
      if (isProductName(name)) manifest.products[name] = productOf(product);
    return manifest;
  } catch (const std::exception&) {
    return {};
  }
}

bool saveManifest(const std::string& folder, const Manifest& manifest, std::string& error) {
  return replaceFile(folder, kManifestName, toText(manifest), error);
}

std::optional<Manifest> loadManifest(const std::string& folder) {
  std::ifstream in(folder + "/" + kManifestName, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  if (!in) return {};
  return parseManifest(text.str());
}

}  // namespace statecut::cuts
