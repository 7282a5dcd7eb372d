#include "query/ops.h"

#include <unordered_map>

namespace statecut::query {

std::array<std::span<const Op>, kOpGroups> opGroups() {
  return {zipOps(), cityNameOps(), cityDataOps(), nameOps()};
}

const Op* findOp(std::string_view name) {
  static const std::unordered_map<std::string_view, const Op*> ops = [] {
    std::unordered_map<std::string_view, const Op*> made;
    for (const auto group : opGroups())
      for (const Op& op : group) made.emplace(op.name, &op);
    return made;
  }();
  const auto found = ops.find(name);
  return found == ops.end() ? nullptr : found->second;
}

}  // namespace statecut::query
