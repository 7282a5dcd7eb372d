#pragma once
// Damages that change what a lookup or a cut does and that no rule can tell from sound data.

#include <span>
#include <string>

#include "damages.h"

namespace statecut::test {

struct Exception {
  const char* table;  // "" = a control record
  const char* field;  // "*" = every field
  const char* why;    // nothing in the pair tells the damage from sound data
  // Whether it holds for this damage to the sound pair; null: for any.
  bool (*holds)(const PairImage& sound, const Field& field, const Damage& damage) = nullptr;
};

std::span<const Exception> exceptions();

std::string nameOf(const Exception& one);

// The exception that the damage falls under, null for none.
const Exception* exceptionOf(const PairImage& sound, const Field& field, const Damage& damage);

}  // namespace statecut::test
