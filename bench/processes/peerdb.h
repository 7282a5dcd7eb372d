#pragma once
// The reference database as an SQLite file: the same records under the same keys.

#include <string>

#include "lookup/session.h"

namespace statecut::bench {

// Writes the tables that the questions ask of, out of the session that is open in memory.
void writePeerDb(Session& session, const std::string& file);

}  // namespace statecut::bench
