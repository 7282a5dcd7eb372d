#pragma once
// The same database through the C interface: every record that it fills is held against the bytes
// of the file.

#include <statecut/statecut_c.h>

#include <string>
#include <string_view>

#include "call.h"
#include "readersession.h"

namespace statecut::test {

class CSession : public ReaderFace {
 public:
  // With `batches` many questions at once, and the index of names.
  CSession(const Bytes& file, bool batches);
  ~CSession() override;
  CSession(const CSession&) = delete;
  CSession& operator=(const CSession&) = delete;

  [[nodiscard]] bool opened() const override { return db_ != nullptr; }
  [[nodiscard]] const Error& error() const override { return error_; }
  std::string answer(const Call& call) override;

 private:
  [[nodiscard]] std::uint32_t word(std::size_t at) const;
  // Record `index` of the table whose RBA stands at `rbaAt`, as the bytes of an answer.
  [[nodiscard]] std::string recordAt(std::size_t rbaAt, std::uint64_t index,
                                     std::size_t width) const;
  [[nodiscard]] std::string text(const statecut_city_name& city) const;
  [[nodiscard]] std::string text(const statecut_phonetic& phonetic) const;
  bool findZip(std::uint32_t code, statecut_zip& zip);
  bool findCity(std::string_view state, std::string_view name, statecut_city_name& city);
  bool findName(const Call& call, bool firm, statecut_name& found);
  std::string zips(const Call& call);
  std::string search(const Call& call);
  std::string cities(const Call& call);
  std::string phonetics(const Call& call);
  std::string cityData(const Call& call);
  std::string multiZip(std::uint32_t cityKey);
  std::string variation(const Call& call);
  std::string streets(const Call& call);

  const Bytes& file_;
  bool batches_;
  statecut_db* db_ = nullptr;
  Error error_;
};

}  // namespace statecut::test
