#pragma once
// Calls of the operations of `statedb query`, made from an input and from what the tables hold.

#include "basepair.h"
#include "input.h"
#include "lookup/session.h"

namespace statecut::fuzz {

// Makes one call; the answer is made too, so that every record and list is read whole. In memory,
// only the tables that it needs are loaded first.
void makeCall(Session& session, Input& input);

[[nodiscard]] std::size_t operationCount();

}  // namespace statecut::fuzz
