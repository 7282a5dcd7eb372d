#pragma once
// Table tests: a log, a control record by hand and the slot table, emptied after each test.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/memory.h"
#include "support/logfixture.h"
#include "tables/dbapi.h"
#include "tables/refpointers.h"

namespace statecut::test {

using Lines = std::vector<std::string>;

constexpr std::uint32_t kTooMany = 0x80000000U;  // more records than any table can have

class TableFixture : public LogFixture {
 protected:
  ~TableFixture() override {
    emptySlots();
    proc_.refControlRec = nullptr;  // the fixture's own record
  }

  // The control record of a test is the context's own as well.
  TableFixture() { proc_.refControlRec = &record_; }

  void word(std::size_t at, std::uint32_t value) { le::put<4>(record_.bytes.data() + at, value); }

  static void emptySlots() {
    for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
      const bool pointer = slot != kSlotHashMask && slot != kSlotMilitaryHeader &&
                           slot != kSlotMilitarySecond && slot != kSlotPobZoneCount;
      if (pointer) freeTable(refPointers[slot].table);
    }
    refPointers = {};
  }
  static Bytes held(std::size_t slot, std::size_t size) {
    const unsigned char* const table = refPointers[slot].table;
    return table == nullptr ? Bytes() : Bytes(table, table + size);
  }
  static std::string info(const std::string& table, std::int32_t bytes) {
    return "INFO;dbapi;0;Info Message;" + sizeLine(table, bytes);
  }
  static std::string trace(const std::string& text) { return "DBG;dbapi;20070;Debug;" + text; }
  static std::string allocError(const std::string& name) {
    return "ERR;apiutil;20001;Mem Alloc Err;Could not allocate memory for " + name + ".";
  }
  static std::string allocWarning(const std::string& name) {
    return "WARN;apiutil;20001;Mem Alloc;Could not allocate memory for " + name + ".";
  }
  static std::string readError(const std::string& name) {
    return "ERR;apiutil;20045;RefDB Read Err;Could not read Reference db partition: " + name;
  }
  static std::string readWarning(const std::string& name) {
    return "WARN;apiutil;20045;RefDB Read;Could not read Reference db partition: " + name;
  }

  RefControlRec record_{};
};

}  // namespace statecut::test
