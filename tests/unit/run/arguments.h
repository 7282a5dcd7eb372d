#pragma once
// An argument vector as a process gets it.

#include <string>
#include <vector>

namespace statecut::test {

class Arguments {
 public:
  explicit Arguments(std::vector<std::string> arguments) : texts_(std::move(arguments)) {
    texts_.insert(texts_.begin(), "statecut");
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }
  [[nodiscard]] int count() const { return static_cast<int>(texts_.size()); }
  [[nodiscard]] char** vector() { return pointers_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

}  // namespace statecut::test
