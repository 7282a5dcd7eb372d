#include "export/rows.h"

#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstdio>

#include "format/latin1.h"
#include "query/answer.h"

namespace statecut::exporting {

namespace {

using Kind = Value::Kind;

constexpr std::int64_t kBetween = 200;  // milliseconds
constexpr std::uint64_t kRowsBetween = 256;

void appendNumber(std::string& line, std::uint64_t number) {
  std::array<char, 24> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  line.append(digits.begin(), end);
}

void appendHex(std::string& line, std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    line += kDigits[byte >> 4];
    line += kDigits[byte & 0xF];
  }
}

// Quoted where a reader could take it for something else. An empty text is, so that nothing between
// two commas is no value.
void appendCsvText(std::string& line, std::string_view bytes) {
  const bool isPlain = !bytes.empty() && bytes.find_first_of(",\"\r\n") == std::string_view::npos;
  const std::string text = format::utf8Of(bytes);
  if (isPlain) {
    line += text;
    return;
  }
  line += '"';
  for (const char c : text) line.append(c == '"' ? 2 : 1, c);
  line += '"';
}

void appendDigits(std::string& line, std::uint64_t zip) {
  const auto digits = relations::digitsOf(zip);
  line.append(digits.begin(), digits.end());
}

}  // namespace

void Progress::row(const char* relation, std::uint64_t rows, std::uint64_t of) {
  if (!isShown_ || rows % kRowsBetween != 0) return;
  const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
                       std::chrono::steady_clock::now().time_since_epoch())
                       .count();
  if (now < next_) return;
  next_ = now + kBetween;
  isDrawn_ = true;
  // What is counted is about what there is.
  const std::string text = "\r\x1b[K" + std::string(relation) + ": " + std::to_string(rows) +
                           " of about " + std::to_string(of) + " rows";
  std::fputs(text.c_str(), stderr);
  std::fflush(stderr);
}

void Progress::clear() {
  if (isDrawn_) std::fputs("\r\x1b[K", stderr);
  isDrawn_ = false;
}

void appendCsvHeader(std::string& line, const Relation& relation) {
  for (const relations::Column& column : relation.columns) {
    if (&column != relation.columns.data()) line += ',';
    line += column.name;
  }
  line += "\r\n";
}

bool appendCsv(std::string& line, const Relation& relation, relations::Cursor& cursor) {
  for (std::size_t i = 0; i < relation.columns.size(); ++i) {
    if (i > 0) line += ',';
    const Value value = cursor.value(i);
    switch (value.kind) {
      case Kind::kNull:
        break;
      case Kind::kInteger:
        appendNumber(line, value.number);
        break;
      case Kind::kZip:
        appendDigits(line, value.number);
        break;
      case Kind::kText:
        appendCsvText(line, value.bytes);
        break;
      case Kind::kBlob:
      case Kind::kRead:
        appendHex(line, value.bytes);
        break;
      case Kind::kFault:
        return false;
    }
  }
  line += "\r\n";
  return true;
}

bool appendJson(std::string& line, const Relation& relation, relations::Cursor& cursor) {
  for (std::size_t i = 0; i < relation.columns.size(); ++i) {
    line += i > 0 ? ",\"" : "{\"";
    line += relation.columns[i].name;
    line += "\":";
    const Value value = cursor.value(i);
    if (value.kind == Kind::kFault) return false;
    if (value.kind == Kind::kNull) {
      line += "null";
    } else if (value.kind == Kind::kInteger) {
      appendNumber(line, value.number);
    } else {
      line += '"';
      if (value.kind == Kind::kZip)
        appendDigits(line, value.number);
      else if (value.kind == Kind::kText)
        query::appendJsonText(line, value.bytes);
      else
        appendHex(line, value.bytes);
      line += '"';
    }
  }
  line += "}\n";
  return true;
}

}  // namespace statecut::exporting
