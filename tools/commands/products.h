#pragma once
// The options that choose products.

#include <CLI/CLI.hpp>

#include "cuts/cuts.h"

namespace statecut {

// To a group of which one option is taken.
inline void addProductOptions(CLI::App& group, cuts::Choice& choice) {
  group.add_flag("--each", choice.each, "A product of each state that has ZIP codes");
  group
      .add_option("--product", choice.words,
                  "A product of these states, as often as wanted: SOUTH=TX,OK")
      ->type_name("NAME=STATES")
      ->allow_extra_args(false);
  group.add_option("--products", choice.file, "Lines NAME: TX OK, with # comments")
      ->type_name("FILE");
}

}  // namespace statecut
