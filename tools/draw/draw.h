#pragma once
// What a database holds, as a page or a picture that a browser shows without anything else.

#include <iosfwd>
#include <string>

#include "draw/sources.h"

namespace statecut::draw {

// Writes the report beside its name and renames it. 0 written, 2 not: a file is damaged or does not
// belong to the others, or the report can't be written. What stood under its name is then
// untouched.
int run(const Options& options, std::ostream& err);

}  // namespace statecut::draw
