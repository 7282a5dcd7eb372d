#pragma once
// What one sorted list has and the other has not.

#include <algorithm>
#include <iterator>
#include <vector>

namespace statecut::diff {

// Sorts both; equal elements are told apart by their number.
template <typename T>
void differences(std::vector<T>& before, std::vector<T>& after, std::vector<T>& added,
                 std::vector<T>& dropped) {
  std::sort(before.begin(), before.end());
  std::sort(after.begin(), after.end());
  std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                      std::back_inserter(added));
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                      std::back_inserter(dropped));
}

}  // namespace statecut::diff
