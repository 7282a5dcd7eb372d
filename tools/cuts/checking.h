#pragma once
// What is done with the files of a product once they are cut: in a process of its own, as a file
// that gets lost while it is read ends the process.

#include <cstdint>
#include <string>
#include <vector>

#include "cuts/manifest.h"
#include "verify/verify.h"

namespace statecut::cuts {

struct Source {
  std::string ref;  // paths that lead there from any folder
  std::string rng;
  std::string state;        // of the files when they were opened, see stateOf
  verify::Source database;  // shared by the processes of all checks
};

// Tells files that changed, or were replaced, from those that did not.
std::string stateOf(const Source& source);

// What the checks found out; `error` is empty when the product is good.
struct Checked {
  std::string error;
  FileRecord reference;
  FileRecord range;
  std::uint32_t time = 0;
  std::vector<std::string> warnings;  // of the log
};

std::string toText(const Checked& checked);
Checked parseChecked(const std::string& text);

// Verifies the product in its part folder against its source and digests the same bytes; the disk
// begins to write them meanwhile.
Checked checkProduct(const Source& source, const std::string& out, const std::string& product,
                     const std::vector<std::string>& states);

// Waits until the product is on the disk and gives it its name; why it could not be done, else
// empty.
std::string publish(const std::string& out, const std::string& product);

// Whether verify finds nothing wrong with the source.
bool isSound(const Source& source);

// The texts of the log's records of a severity, "WARN" or "ERR", each once.
std::vector<std::string> logRecords(const std::string& path, const std::string& severity);

}  // namespace statecut::cuts
