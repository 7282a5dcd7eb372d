#pragma once
// A small pair in a folder of its own, its cut, and what is damaged in copies of it.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "dbbuilder/model.h"
#include "dbfiles/controlrec.h"
#include "reader/database.h"
#include "support/process.h"

namespace statecut::test {

class ReaderPair : public testing::Test {
 protected:
  ReaderPair();

  // Cuts the pair to Texas: ref_ and rng_ are then those of the cut.
  void cut();
  // A copy of the reference file with a number put at an offset; its path.
  std::string damaged(std::size_t at, std::size_t width, std::uint32_t value);
  [[nodiscard]] std::uint32_t word(std::size_t at) const;

  std::shared_ptr<const Database> open(const std::string& path);
  std::shared_ptr<const Database> openPair();
  // The message of an opening that has to fail with the code.
  std::string refusal(const std::string& path, ErrorCode code, const OpenOptions& options = {});

  TempDir folder_;
  builder::Model model_;
  std::string ref_;
  std::string rng_;
  FileBytes bytes_;  // of the reference file
  Error error_;
};

}  // namespace statecut::test
