// The command line of the utility and the state list, from a file and from standard input. The run
// goes on until it does not find its databases, or cuts the state list when it is named as both.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

// A process reads its standard input once; a run here must be able to read it again.
#include "basepair.h"
#include "run/statelist.cpp"

using namespace statecut;
using namespace statecut::fuzz;

namespace {

// Arguments by number, so that options are soon found; behind them, a long name.
const char* const kWords[] = {"-l", "-f", "-g",  "-s",  "-o", "-z",  "-v",  "-t",       "-i",
                              "-r", "-h", "-?",  "-c",  "--", "-L",  "-F",  "-vX",      "-v9",
                              "-",  "",   "log", "ref", "rg", "-tt", "-sS", kStatesPath};
constexpr std::uint8_t kFirstWord = 200;
constexpr std::uint8_t kLongName = 199;

std::string argumentFrom(Input& input) {
  const std::uint8_t length = input.u8();
  if (length >= kFirstWord) return kWords[(length - kFirstWord) % std::size(kWords)];
  if (length == kLongName) return std::string(input.u16() % 2048, 'n');
  std::string text(input.text(length));
  text.resize(std::strlen(text.c_str()));
  return text;
}

void checkStates() {
  if (cmdLine.stateCount < 0 || cmdLine.stateCount > kMaxStates) finding("too many states");
  for (std::int32_t i = 0; i < cmdLine.stateCount; ++i) {
    const char* const state = cmdLine.states[i];
    if (state[2] != '\0' || verifyState(state) != 0) finding("a state of the list is none");
    if (i > 0 && std::memcmp(cmdLine.states[i - 1], state, 2) > 0) finding("states out of order");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quietProcess();
  Input input(data, size);
  constexpr std::size_t kMostArguments = 12;
  std::vector<std::string> words = {"statecut"};
  for (std::size_t left = input.below(kMostArguments); left > 0; --left)
    words.push_back(argumentFrom(input));
  std::vector<const char*> arguments;
  for (const std::string& word : words) arguments.push_back(word.c_str());
  arguments.push_back(nullptr);
  const auto list = input.rest();

  diskStart();
  diskInput(kStatesPath, list.data(), list.size());
  // Nothing is written into the bytes.
  stdin = list.empty() ? std::fopen("/dev/null", "r")
                       : fmemopen(const_cast<std::uint8_t*>(list.data()), list.size(), "r");
  if (stdin == nullptr) finding("no standard input");
  standardInputClosed = false;
  runUtility(static_cast<int>(words.size()), arguments.data());
  if (!standardInputClosed) std::fclose(stdin);
  checkStates();
  for (State& state : states) state.selected = 0;
  return 0;
}
