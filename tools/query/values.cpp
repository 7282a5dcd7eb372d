#include "query/values.h"

#include <charconv>

#include "dbfiles/apiutil.h"

namespace statecut::query {

namespace {

constexpr const char* kNoNumber = "not an integer from -2147483648 to 4294967295";
constexpr std::uint32_t kFirstTable = 3;
constexpr std::uint32_t kLastTable = 4;

// Names longer than a signed 32-bit length cannot be counted.
constexpr std::size_t kLongestText = 0x7FFFFFF0;

bool numberFromJson(const nlohmann::json& value, std::uint32_t& number) {
  if (!value.is_number_integer()) return false;
  if (value.is_number_unsigned()) {
    const auto wide = value.get<std::uint64_t>();
    if (wide > static_cast<std::uint64_t>(kMostNumber)) return false;
    number = static_cast<std::uint32_t>(wide);
    return true;
  }
  const auto wide = value.get<std::int64_t>();
  if (wide < kLeastNumber || wide > kMostNumber) return false;
  number = static_cast<std::uint32_t>(wide);
  return true;
}

bool numberFromText(std::string_view text, std::uint32_t& number) {
  std::int64_t wide = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, wide);
  if (error != std::errc() || stop != end || wide < kLeastNumber || wide > kMostNumber)
    return false;
  number = static_cast<std::uint32_t>(wide);
  return true;
}

bool listFromJson(const nlohmann::json& value, std::vector<std::uint16_t>& keys) {
  if (!value.is_array()) return false;
  for (const nlohmann::json& element : value) {
    std::uint32_t number = 0;
    if (!numberFromJson(element, number)) return false;
    keys.push_back(static_cast<std::uint16_t>(number));
  }
  return true;
}

bool listFromText(std::string_view text, std::vector<std::uint16_t>& keys) {
  if (text.empty()) return true;
  for (;;) {
    const std::size_t comma = text.find(',');
    std::uint32_t number = 0;
    if (!numberFromText(text.substr(0, comma), number)) return false;
    keys.push_back(static_cast<std::uint16_t>(number));
    if (comma == std::string_view::npos) return true;
    text.remove_prefix(comma + 1);
  }
}

NameMatcher matcherOf(std::string_view name) {
  if (name == "contains") return containsString;
  if (name == "starts") return startsWith;
  if (name == "ends") return endsWith;
  return nullptr;
}

bool isText(ArgKind kind) {
  return kind == ArgKind::kState || kind == ArgKind::kText || kind == ArgKind::kPattern ||
         kind == ArgKind::kMatcher;
}

const char* checkTable(const Arg& arg) {
  return arg.number < kFirstTable || arg.number > kLastTable ? "a table is 3 or 4" : nullptr;
}

// What its kind asks of an argument whose text is set.
const char* finishText(ArgKind kind, Arg& arg) {
  if (arg.text.size() > kLongestText) return "too long";
  if (kind == ArgKind::kState && arg.text.size() != 2) return "a state is two characters";
  if (kind == ArgKind::kPattern)
    arg.text.resize(arg.text.find('\0') == std::string::npos ? arg.text.size()
                                                             : arg.text.find('\0'));
  if (kind == ArgKind::kMatcher) {
    arg.matcher = matcherOf(arg.text);
    if (arg.matcher == nullptr) return "a matcher is contains, starts or ends";
  }
  return nullptr;
}

}  // namespace

const char* kindText(ArgKind kind) {
  switch (kind) {
    case ArgKind::kNumber:
      return "number";
    case ArgKind::kState:
      return "state";
    case ArgKind::kText:
      return "text";
    case ArgKind::kPattern:
      return "pattern";
    case ArgKind::kMatcher:
      return "contains|starts|ends";
    case ArgKind::kTable:
      return "3|4";
    case ArgKind::kScfKeys:
      return "list";
  }
  return "";
}

const char* argFromJson(const nlohmann::json& value, ArgKind kind, Arg& arg) {
  if (isText(kind)) {
    if (!value.is_string()) return "not a string";
    if (!bytesOfUtf8(value.get_ref<const std::string&>(), arg.text))
      return "a character is above U+00FF";
    return finishText(kind, arg);
  }
  if (kind == ArgKind::kScfKeys) {
    arg.keys.clear();
    return listFromJson(value, arg.keys) ? nullptr : "not a list of integers";
  }
  if (!numberFromJson(value, arg.number)) return kNoNumber;
  return kind == ArgKind::kTable ? checkTable(arg) : nullptr;
}

const char* argFromText(std::string_view text, ArgKind kind, Arg& arg) {
  if (isText(kind)) {
    arg.text = text;
    return finishText(kind, arg);
  }
  if (kind == ArgKind::kScfKeys) {
    arg.keys.clear();
    return listFromText(text, arg.keys) ? nullptr : "not a list of integers like 1,2,3";
  }
  if (!numberFromText(text, arg.number)) return kNoNumber;
  return kind == ArgKind::kTable ? checkTable(arg) : nullptr;
}

}  // namespace statecut::query
