#pragma once
// The kinds of partitions, as a report names them.

#include <cstddef>

#include "diff/texts.h"

namespace statecut::draw {

inline constexpr diff::Kind kKinds[] = {diff::Kind::Sfh, diff::Kind::Pob, diff::Kind::Rr};
inline constexpr std::size_t kKindCount = 3;

inline std::size_t indexOf(diff::Kind kind) { return static_cast<std::size_t>(kind); }

// In words: "Streets", "PO Boxes", "Rural routes".
inline const char* kindWords(diff::Kind kind) {
  return kind == diff::Kind::Sfh   ? "Streets"
         : kind == diff::Kind::Pob ? "PO Boxes"
                                   : "Rural routes";
}

}  // namespace statecut::draw
