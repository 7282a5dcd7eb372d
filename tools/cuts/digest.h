#pragma once
// Digests of files.

#include <cstddef>
#include <span>
#include <string>

namespace statecut::cuts {

// SHA-256 in lower-case hex; empty when the library has none: `error` then says so.
std::string sha256OfBytes(std::span<const unsigned char> bytes, std::string& error);

// The same of a file; empty also when the file can't be read, `error` then says why.
std::string sha256OfFile(const std::string& path, std::string& error);

}  // namespace statecut::cuts
