#pragma once
// A Database on a damaged pair: it refuses the file where it must, else its answers are those of
// the oracle of the lookups, and no difference from the lookups in memory is unlisted.

#include <memory>
#include <string>
#include <vector>

namespace statecut::test {

class ReaderProgram {
 public:
  // The calls come from the sound reference file: on many of its keys and names, or one of each
  // operation.
  ReaderProgram(const std::vector<unsigned char>& reference, bool many);
  ReaderProgram(ReaderProgram&&) noexcept;
  ~ReaderProgram();

  // What is wrong, "" when nothing is. `answers` tells all answers, or the refusal.
  std::string run(const std::string& reference, const std::string& range, std::string& answers);

 private:
  struct Calls;
  std::unique_ptr<Calls> calls_;
  unsigned runs_ = 0;
};

}  // namespace statecut::test
