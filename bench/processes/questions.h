#pragma once
// Mixed questions, as calls of statedb query and as statements of SQL.

#include <string>
#include <vector>

#include "lookup/session.h"

namespace statecut::bench {

struct Questions {
  std::string calls;       // a line each
  std::string statements;  // a line each, within one transaction
};

// Eight kinds in turn, of the session that is open in memory; every tenth name is unknown.
Questions mixedQuestions(Session& session, int count);

// Throws unless both outputs answer the same. A call without a find has a null or -1, a statement
// no line.
void compareOutputs(const std::string& answers, const std::string& rows);

}  // namespace statecut::bench
