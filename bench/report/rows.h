#pragma once
// The rows of the table: what is compared with what, and how good it is meant to be.

#include <span>
#include <string>

namespace statecut::bench {

enum class Measure { kRatio, kMebibytes, kPercent };

struct Row {
  const char* id;
  const char* what;
  const char* against;
  Measure measure;
  double goal;  // at most
  double stretch;
  const char* how;  // the figure was taken
};

std::span<const Row> rows();

}  // namespace statecut::bench
