#pragma once
// Calls of the operations of `statedb query`, made from an input and from what the tables hold.

#include <cstdint>
#include <string>

#include "basepair.h"
#include "input.h"
#include "lookup/session.h"

namespace statecut::fuzz {

// Makes one call; the answer is made too, so that every record and list is read whole. In memory,
// only the tables that it needs are loaded first.
void makeCall(Session& session, Input& input);

[[nodiscard]] std::size_t operationCount();

// Arguments: numbers and names of the tables or near them, counts of the control record at
// `record`, and whatever the input says.
std::uint32_t numberFrom(const unsigned char* record, Input& input);
std::string textFrom(Input& input);
std::string stateFrom(Input& input);  // two characters
std::string patternFrom(Input& input);

}  // namespace statecut::fuzz
