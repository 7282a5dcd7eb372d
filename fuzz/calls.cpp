#include "calls.h"

#include <string>

#include "dbfiles/apiutil.h"
#include "format/directory.h"
#include "query/ops.h"

#if defined(__SANITIZE_ADDRESS__)
#define STATECUT_POISON 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define STATECUT_POISON 1
#endif
#endif
#ifdef STATECUT_POISON
#include <sanitizer/asan_interface.h>
#endif

namespace statecut::fuzz {

namespace {

using query::Arg;
using query::ArgKind;

const std::vector<const query::Op*>& operations() {
  static const std::vector<const query::Op*> made = [] {
    std::vector<const query::Op*> all;
    for (const auto group : query::opGroups())
      for (const query::Op& op : group) all.push_back(&op);
    return all;
  }();
  return made;
}

// What stands behind a text in its own object is no part of it.
void guardText(const Arg& arg, bool guarded) {
#ifdef STATECUT_POISON
  constexpr std::size_t kInside = 15;  // bytes that need no block of their own
  if (arg.text.size() >= kInside) return;
  const char* const behind = arg.text.data() + arg.text.size() + 1;
  const std::size_t count = kInside - arg.text.size();
  if (guarded)
    ASAN_POISON_MEMORY_REGION(behind, count);
  else
    ASAN_UNPOISON_MEMORY_REGION(behind, count);
#else
  static_cast<void>(arg);
  static_cast<void>(guarded);
#endif
}

}  // namespace

std::uint32_t numberFrom(const unsigned char* record, Input& input) {
  const std::uint8_t way = input.u8();
  const auto& numbers = pool().numbers;
  if (way < 128) return numbers[way % numbers.size()];
  switch (way % 8) {
    case 0:
      return 0;
    case 1:
      return input.u8();
    case 2:
      return input.u16();
    case 3:
      return input.u32();
    case 4:
      return numbers[input.below(numbers.size())] + input.u8() - 128U;
    case 5:
      return 0xFFFFFFFF;
    case 6: {
      // A table's count, or one beside it.
      const std::size_t at = format::tableDefs()[input.below(format::kTables)].countAt;
      return le::get<4>(record + at) + input.u8() % 3U - 1U;
    }
    default:
      return 0x7FFFFFFFU + input.u8() % 3U;
  }
}

std::string textFrom(Input& input) {
  const std::uint8_t way = input.u8();
  const auto& texts = pool().texts;
  if (way == 255) return std::string(input.text(input.u8()));
  std::string text = texts[(way % 64 + input.below(4) * 64) % texts.size()];
  if (way >= 192) text.resize(input.below(text.size() + 1));
  if (way >= 128 && way < 192) text += input.text(input.below(40));
  return text;
}

std::string stateFrom(Input& input) {
  const std::uint8_t way = input.u8();
  const auto& states = pool().states;
  if (way < 192) return states[way % states.size()];
  std::string state(input.text(2));
  state.resize(2, 'X');
  return state;
}

std::string patternFrom(Input& input) {
  std::string text = textFrom(input);
  const std::uint8_t way = input.u8();
  if ((way & 1) != 0) text.insert(0, "*");
  if ((way & 2) != 0) text += '*';
  if (const std::size_t end = text.find('\0'); end != std::string::npos) text.resize(end);
  return text;
}

namespace {

void fillArg(const Session& session, ArgKind kind, Input& input, Arg& arg) {
  constexpr NameMatcher kMatchers[] = {containsString, startsWith, endsWith};
  switch (kind) {
    case ArgKind::kNumber:
      arg.number = numberFrom(session.ref().bytes.data(), input);
      break;
    case ArgKind::kState:
      arg.text = stateFrom(input);
      break;
    case ArgKind::kText:
      arg.text = textFrom(input);
      break;
    case ArgKind::kPattern:
      arg.text = patternFrom(input);
      break;
    case ArgKind::kMatcher:
      arg.matcher = kMatchers[input.below(std::size(kMatchers))];
      break;
    case ArgKind::kTable:
      arg.number = 3U + (input.u8() & 1U);
      break;
    case ArgKind::kScfKeys:
      for (std::size_t left = input.below(8); left > 0; --left) arg.keys.push_back(input.u16());
      break;
  }
}

}  // namespace

std::size_t operationCount() { return operations().size(); }

void makeCall(Session& session, Input& input) {
  static std::string out;
  out.clear();
  const query::Op& op = *operations()[input.below(operations().size())];
  query::Args args;
  for (std::size_t i = 0; i < op.parameters.size(); ++i) {
    fillArg(session, op.parameters[i].kind, input, args[i]);
  }
  (void)session.prepare(op.sets);
  for (const Arg& arg : args) guardText(arg, true);
  query::Answer answer(out, true);
  op.handler(session, args, answer);
  for (const Arg& arg : args) guardText(arg, false);
}

}  // namespace statecut::fuzz
