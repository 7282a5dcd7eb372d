#pragma once
// One run at a time in a folder.

#include <string>

#include "cuts/descriptor.h"

namespace statecut::cuts {

// Held by the process that took it, and let go by the system however that process ends: children
// do not share it.
class FolderLock {
 public:
  // False when another process holds it or the folder can't be written to: `error` says which.
  bool take(const std::string& folder, std::string& error);

 private:
  Descriptor file_;
};

}  // namespace statecut::cuts
