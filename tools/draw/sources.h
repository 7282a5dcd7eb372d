#pragma once
// The files of a report.

#include <optional>
#include <string>
#include <vector>

#include "diff/release.h"

namespace statecut::draw {

struct Options {
  std::string ref, rng;          // the range file may be missing
  std::vector<std::string> cut;  // none, or both files of a cut of it
  std::vector<std::string>
      old;  // none, or an older release: its reference file, maybe its range file
  std::string out;
  std::string places;  // the CSV file of coordinates
  std::string credit;  // who is to be named for them; empty: nobody
  bool svg = false;    // the pictures alone
};

struct Sources {
  diff::Release database;
  std::optional<diff::Release> cut;
  std::optional<diff::Release> old;
};

// `error` names the file that can't be drawn and says why: it can't be read, is no database, is
// damaged, or does not belong to the others.
Sources openSources(const Options& options, std::string& error);

}  // namespace statecut::draw
