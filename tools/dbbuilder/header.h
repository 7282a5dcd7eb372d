#pragma once
// What both control records have in common.

#include <span>
#include <vector>

#include "dbbuilder/model.h"

namespace statecut::builder {

// The 32 bytes of the identification header.
Bytes headerBytes(const Header& header);

// Stores each word that lies inside the record.
void patchWords(std::span<Byte> record, const std::vector<WordPatch>& words);

}  // namespace statecut::builder
