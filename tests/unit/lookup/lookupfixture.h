#pragma once
// A small reference file written by hand, loaded or read in place, with all pointers of the lookups
// null at the start of a test.

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "dbfiles/controlrec.h"
#include "lookup/cache.h"
#include "lookup/dispatch.h"
#include "support/logfixture.h"
#include "tables/refpointers.h"

namespace statecut::test {

// Bytes put together from texts and little-endian numbers.
class Pack {
 public:
  Pack& number(std::uint32_t value, std::size_t width);
  Pack& text(std::string_view text, std::size_t width);
  Pack& name(std::string_view text);  // a length byte and the text
  Pack& zeros(std::size_t count);
  operator Bytes() const { return bytes_; }  // NOLINT(google-explicit-constructor)

 private:
  Bytes bytes_;
};

Pack cityName(std::uint32_t key, std::uint32_t value, std::string_view state,
              std::string_view name);
Pack phonetic(std::string_view state, std::string_view code, std::uint32_t count);

class LookupFixture : public LogFixture {
 protected:
  LookupFixture();
  ~LookupFixture() override;

  // Appends a table and stores its RBA in a word of the control record; its offset in the file.
  std::uint32_t table(std::size_t rbaWord, const Bytes& bytes);
  void word(std::size_t at, std::uint32_t value) { putWord(file_, at, value); }
  void named(std::string_view key, std::uint32_t type, std::uint32_t number);

  // Writes the file with the name index and opens it. Files of one test differ by name.
  void open(const std::string& name = "city.dir");
  void load();  // every table that lookups use
  void useIn() { installInLookups(&proc_); }
  void useOff() { installOffLookups(&proc_); }
  void buildCache(std::uint32_t blockSize, std::int32_t entries);
  static void emptySlots();

  RefControlRec& record() { return *proc_.refControlRec; }

  Bytes file_ = Bytes(844);
  CacheControlBlock block_{};

 private:
  struct Named {
    std::string key;
    std::uint32_t type;
    std::uint32_t number;
  };
  void writeIndex();
  std::vector<Named> names_;
};

// The fixture with a handful of ZIPs, cities, streets and firms.
class SmallDatabase : public LookupFixture {
 protected:
  SmallDatabase();
};

std::vector<std::uint32_t> keysOf(const KeyRow* keys, std::size_t count);
std::string nameOf(const CityNameRow* record);

}  // namespace statecut::test
