#pragma once
// Files and folders that a power cut leaves as they were told to be.

#include <string>

namespace statecut::cuts {

// Waits until the file or folder is on the disk.
bool flush(const std::string& path, std::string& error);

// Begins to write a file to the disk, and does not wait.
void beginFlush(const std::string& path);

// Puts a file with this text in the place of what stands under its name: at any time the one or the
// other is there, whole.
bool replaceFile(const std::string& folder, const std::string& name, const std::string& text,
                 std::string& error);

// Gives the folder `from` of `parent` the name `to`, at once also where a folder has that name
// already: `from` is then that folder.
bool publishFolder(const std::string& parent, const std::string& from, const std::string& to,
                   std::string& error);

}  // namespace statecut::cuts
