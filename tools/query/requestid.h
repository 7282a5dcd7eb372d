#pragma once
// The "id" of a request: a JSON value of any kind, for the caller to tell its answers apart.

#include <string_view>

namespace statecut::query {

// The text of the value of "id" in `object`, a line that is a valid JSON object; of the last one
// when there are several. Empty: it has none. As text, a number of any length stays what it is.
[[nodiscard]] std::string_view requestId(std::string_view object);

}  // namespace statecut::query
