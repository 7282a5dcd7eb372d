#pragma once
// How what changed is put into words, in text and JSON alike.

#include <cstdint>
#include <string>
#include <string_view>

#include "diff/changes.h"

namespace statecut::diff {

inline const char* kindText(Kind kind) {
  return kind == Kind::Sfh ? "SFH" : kind == Kind::Pob ? "POB" : "RR";
}

inline const char* changeText(Change change) {
  return change == Change::Added ? "added" : change == Change::Dropped ? "dropped" : "changed";
}

inline std::string zipText(std::uint32_t zip) {
  std::string digits = std::to_string(zip);
  return std::string(5 - digits.size(), '0') + digits;
}

}  // namespace statecut::diff
