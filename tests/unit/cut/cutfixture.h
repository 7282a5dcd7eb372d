#pragma once
// A cut's surroundings: a folder and a log as every log fixture has, control records and tables
// written by hand.

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/procobj.h"
#include "cut/workstate.h"
#include "dbfiles/controlrec.h"
#include "support/logfixture.h"
#include "tables/refpointers.h"

namespace statecut::test {

class CutFixture : public LogFixture {
 protected:
  CutFixture();
  ~CutFixture() override;

  // To be called before tables are made again: a cut that does not finish releases nothing, and
  // what it held must stay reachable.
  void keepTables();

  std::vector<std::string> log() { return recordsWithLines(); }

  // Opens files of the folder as the streams that a running cut has.
  void openSources(std::span<const unsigned char> reference, std::span<const unsigned char> range);
  void openOutputs();
  void start(const Bytes& source);  // both databases are `source`, nothing is written yet
  Bytes writtenReference();         // what the outputs hold by now
  Bytes writtenRange();

  void setStates(const std::vector<std::string>& states);
  void setNames(const std::string& ref, const std::string& range, const std::string& refOut,
                const std::string& rangeOut, const std::string& stateFile = "");

  // A zero-filled table of `count` rows in a slot; the control record's count is the caller's.
  template <typename RowType>
  RowType* makeTable(SlotNumber slot, std::size_t count) {
    return static_cast<RowType*>(makeBlock(slot, count * RowType::size));
  }
  template <std::size_t At>
  void setWord(Num<At, 4> field, std::uint32_t value) {
    proc.refControlRec->set(field, value);
  }
  template <std::size_t At>
  std::uint32_t word(Num<At, 4> field) const {
    return proc.refControlRec->get(field);
  }

  void makeZipIndex();
  void select(std::uint32_t zip, std::uint32_t key);

  ProcObj& proc = proc_;
  Bytes source_;  // of start

 private:
  void* makeBlock(SlotNumber slot, std::size_t bytes);

  std::string names_[5];
};

// `count` bytes that differ from place to place and from seed to seed.
Bytes pattern(std::size_t count, unsigned seed);
Bytes slice(const Bytes& bytes, std::size_t at, std::size_t count);

template <std::size_t N>
void setText(std::span<unsigned char, N> to, std::string_view text) {
  for (std::size_t i = 0; i < N; ++i)
    to[i] = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
}

}  // namespace statecut::test
