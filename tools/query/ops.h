#pragma once
// The operations of `statedb query` as data: name, parameters, keys of the answer, tables.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "lookup/session.h"
#include "query/answer.h"
#include "query/values.h"

namespace statecut::query {

inline constexpr std::size_t kMostParameters = 4;

struct Parameter {
  const char* name;
  ArgKind kind;
};

using Args = std::array<Arg, kMostParameters>;

// Makes the call and writes the answer's keys.
using Handler = void(Session& session, const Args& args, Answer& answer);

struct Op {
  const char* name;
  std::span<const Parameter> parameters;
  const char* keys;    // of the answer, for people
  std::uint32_t sets;  // the TableSets that it uses
  Handler* handler;
};

// In groups by the family of the lookups.
[[nodiscard]] std::span<const Op> zipOps();
[[nodiscard]] std::span<const Op> cityNameOps();
[[nodiscard]] std::span<const Op> cityDataOps();
[[nodiscard]] std::span<const Op> nameOps();

inline constexpr std::size_t kOpGroups = 4;
[[nodiscard]] std::array<std::span<const Op>, kOpGroups> opGroups();

[[nodiscard]] const Op* findOp(std::string_view name);  // null: no such operation

}  // namespace statecut::query
