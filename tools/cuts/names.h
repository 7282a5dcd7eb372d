#pragma once
// The names in a folder of products.

#include <string>

namespace statecut::cuts {

inline constexpr char kReferenceName[] = "city.sc";
inline constexpr char kRangeName[] = "zip4us.sc";
inline constexpr char kLogName[] = "tolvlog.txt";
inline constexpr char kManifestName[] = "manifest.json";
inline constexpr char kLockName[] = ".lock";

// Letters, digits and "._+-", up to 200 of them, the first a letter or a digit; not the manifest's.
bool isProductName(const std::string& name);

// Where a product is made until it is whole: ".NAME.part".
std::string partName(const std::string& product);
bool isPartName(const std::string& name);

}  // namespace statecut::cuts
