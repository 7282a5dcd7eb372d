#pragma once
// Digests of files.

#include <string>

namespace statecut::cuts {

// SHA-256 in lower-case hex; empty when the file can't be read, `error` then says why.
std::string sha256OfFile(const std::string& path, std::string& error);

}  // namespace statecut::cuts
