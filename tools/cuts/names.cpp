#include "cuts/names.h"

#include <algorithm>
#include <string_view>

namespace statecut::cuts {

namespace {

constexpr std::size_t kLongestName = 200;
constexpr std::string_view kPartEnd = ".part";

bool isLetterOrDigit(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

}  // namespace

bool isProductName(const std::string& name) {
  const auto allowed = [](char c) {
    return isLetterOrDigit(c) || std::string_view("._+-").find(c) != std::string_view::npos;
  };
  return !name.empty() && name.size() <= kLongestName && isLetterOrDigit(name[0]) &&
         std::all_of(name.begin(), name.end(), allowed) && name != kManifestName;
}

std::string partName(const std::string& product) { return "." + product + std::string(kPartEnd); }

bool isPartName(const std::string& name) {
  return name.size() > 1 + kPartEnd.size() && name[0] == '.' && name.ends_with(kPartEnd) &&
         isProductName(name.substr(1, name.size() - 1 - kPartEnd.size()));
}

}  // namespace statecut::cuts
