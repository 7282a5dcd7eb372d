#include "query/answer.h"

#include <charconv>

namespace statecut::query {

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

void appendHexByte(std::string& out, unsigned char byte) {
  out += kHexDigits[byte >> 4];
  out += kHexDigits[byte & 0xF];
}

}  // namespace

void appendJsonText(std::string& out, std::string_view bytes) {
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20) {
      out += "\\u00";
      appendHexByte(out, byte);
    } else if (byte == '"' || byte == '\\') {
      out += '\\';
      out += c;
    } else if (byte < 0x80) {
      out += c;
    } else {
      out += static_cast<char>(0xC0 | (byte >> 6));
      out += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
}

void Answer::open() {
  out_ += '{';
  first_ = true;
  if (id_.empty()) return;
  name("id");
  out_ += id_;
}

void Answer::begin(std::string_view op) {
  open();
  text("op", op);
}

void Answer::error(std::string_view argument, std::string_view text) {
  open();
  name("error");
  out_ += '"';
  appendJsonText(out_, argument);
  if (!argument.empty()) out_ += ": ";
  appendJsonText(out_, text);
  out_ += "\"}\n";
}

void Answer::name(const char* key) {
  if (!first_) out_ += ',';
  first_ = false;
  out_ += '"';
  out_ += key;
  out_ += "\":";
}

void Answer::appendNumber(std::int64_t value) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  out_.append(digits, end);
}

void Answer::null(const char* key) {
  name(key);
  out_ += "null";
}

void Answer::number(const char* key, std::int64_t value) {
  name(key);
  appendNumber(value);
}

void Answer::text(const char* key, std::string_view bytes) {
  name(key);
  out_ += '"';
  appendJsonText(out_, bytes);
  out_ += '"';
}

void Answer::hex(const char* key, std::span<const unsigned char> bytes) {
  name(key);
  out_ += '"';
  for (const unsigned char byte : bytes) appendHexByte(out_, byte);
  out_ += '"';
}

void Answer::textField(const char* key, std::string_view meaning,
                       std::span<const unsigned char> bytes) {
  if (meaning == "not interpreted") return hex(key, bytes);
  std::size_t length = bytes.size();
  while (length > 0 && (bytes[length - 1] == 0 || bytes[length - 1] == ' ')) --length;
  text(key, {reinterpret_cast<const char*>(bytes.data()), length});
}

}  // namespace statecut::query
