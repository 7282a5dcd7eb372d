#pragma once
// The folders that products are made in, until they are whole.

#include <string>

namespace statecut::cuts {

// Removes what stands there under the product's part name and makes an empty folder.
bool makePartFolder(const std::string& out, const std::string& product, std::string& error);

// Removes a folder of a product's files and nothing else: one that holds other things stays, and is
// an error. One that is not there is removed.
bool removeProductFolder(const std::string& path, std::string& error);

// True when nothing stands under the path, or a folder with files of a product alone: one that may
// be replaced.
bool replaceable(const std::string& path, std::string& error);

// Removes what runs that were cut off left in the folder.
bool removeAllParts(const std::string& out, std::string& error);

}  // namespace statecut::cuts
