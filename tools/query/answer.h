#pragma once
// One answer line: a JSON object written straight to text. A tree of the JSON library takes about
// 1 microsecond a line, as much as reading a request, its lookup and its answer together do. Texts
// are bytes, one character each, U+0000 to U+00FF.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/row.h"

namespace statecut::query {

// Appends the text of a JSON string, without its quotes.
void appendJsonText(std::string& out, std::string_view bytes);

class Answer {
 public:
  // Appends to `out`; with `decode`, records bring their fields along. `id`, JSON text or nothing,
  // stands in front.
  Answer(std::string& out, bool decode, std::string_view id = {})
      : out_(out), decode_(decode), id_(id) {}

  void begin(std::string_view op);
  void end() { out_ += "}\n"; }
  // A whole answer that tells what is wrong.
  void error(std::string_view argument, std::string_view text);

  void null(const char* key);
  void number(const char* key, std::int64_t value);
  void text(const char* key, std::string_view bytes);
  void hex(const char* key, std::span<const unsigned char> bytes);
  template <typename Number>
  void numbers(const char* key, std::span<const Number> values) {
    name(key);
    out_ += '[';
    for (const Number value : values) {
      appendNumber(std::int64_t{value});
      out_ += ',';
    }
    if (!values.empty()) out_.pop_back();
    out_ += ']';
  }

  // A record as hex under `key`, its fields as an object under `fieldsKey`; null for no record.
  template <typename RowType>
  void record(const char* key, const RowType* row, const char* fieldsKey = "fields") {
    if (row == nullptr) {
      null(key);
      if (decode_) null(fieldsKey);
      return;
    }
    hex(key, row->bytes);
    if (!decode_) return;
    name(fieldsKey);
    out_ += '{';
    first_ = true;
    forEachField<RowType>([&](const auto& field) { this->field(*row, field); });
    out_ += '}';
    first_ = false;
  }

 private:
  void open();
  void name(const char* key);
  void appendNumber(std::int64_t value);

  template <typename RowType, typename Field>
  void field(const RowType& row, const Field& field) {
    if constexpr (Field::isNumber)
      number(field.name, row.get(field));
    else
      textField(field.name, field.meaning, row.get(field));
  }
  // Filling at the end of a text is left out; bytes without a meaning are shown in hex.
  void textField(const char* key, std::string_view meaning, std::span<const unsigned char> bytes);

  std::string& out_;
  bool decode_;
  std::string_view id_;
  bool first_ = true;  // of the object being written
};

}  // namespace statecut::query
