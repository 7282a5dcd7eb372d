#include "query/requestid.h"

#include <nlohmann/json.hpp>
#include <string>

namespace statecut::query {

namespace {

// Where the text that begins at `at` with a quote ends. A backslash takes the next character along.
std::size_t endOfText(std::string_view json, std::size_t at) {
  for (++at; json[at] != '"'; ++at)
    if (json[at] == '\\') ++at;
  return at + 1;
}

// Where the value that begins at `at` ends: at the comma or bracket that belongs to its object.
std::size_t endOfValue(std::string_view json, std::size_t at) {
  for (std::size_t depth = 0;;) {
    const char c = json[at];
    if (c == '"') {
      at = endOfText(json, at);
      continue;
    }
    if (depth == 0 && (c == ',' || c == '}')) return at;
    if (c == '{' || c == '[') ++depth;
    if (c == '}' || c == ']') --depth;
    ++at;
  }
}

std::string_view trimmed(std::string_view text) {
  constexpr const char* kSpace = " \t\r\n";
  const std::size_t from = text.find_first_not_of(kSpace);
  return text.substr(from, text.find_last_not_of(kSpace) + 1 - from);
}

bool isId(std::string_view key) {
  if (key == "\"id\"") return true;
  return key.find('\\') != std::string_view::npos &&
         nlohmann::json::parse(key).get_ref<const std::string&>() == "id";
}

}  // namespace

std::string_view requestId(std::string_view object) {
  std::string_view id;
  // A mark of the byte order may stand in front of the object.
  for (std::size_t at = object.find('{'); object[at] != '}';) {
    const std::size_t key = object.find_first_of("\"}", at + 1);
    if (object[key] == '}') break;
    const std::size_t keyEnd = endOfText(object, key);
    const std::size_t value = object.find(':', keyEnd) + 1;
    at = endOfValue(object, value);
    if (isId(object.substr(key, keyEnd - key))) id = trimmed(object.substr(value, at - value));
  }
  return id;
}

}  // namespace statecut::query
