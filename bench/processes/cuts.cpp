#include "processes/cuts.h"

#include <unistd.h>

#include <stdexcept>

#include "run/statetable.h"

namespace statecut::bench {

std::string joined(const States& states) {
  std::string text;
  for (const std::string& state : states) text += (text.empty() ? "" : ",") + state;
  return text;
}

States allStates() {
  States list;
  for (const auto& abbreviation : abvstates) list.emplace_back(abbreviation);
  return list;
}

void Cut::remove() const {
  removeFiles(outputs);
  removeFiles({log});
}

Cut prepareCut(const Setup& setup, const Path& folder, const States& states, const Path& ref,
               const Path& rng, const char* level) {
  std::filesystem::create_directories(folder);
  std::string list;
  for (const std::string& state : states) list += state + "\n";
  writeFile(folder / "states.txt", list);
  Cut cut;
  cut.outputs = {folder / "city.sc", folder / "zip4us.sc"};
  cut.log = folder / "log.txt";
  cut.command.words = {setup.program("statecut"),
                       "-s",
                       folder / "states.txt",
                       "-l",
                       cut.log,
                       "-v",
                       level,
                       "-f",
                       ref,
                       "-g",
                       rng,
                       "-o",
                       cut.outputs[0],
                       "-z",
                       cut.outputs[1]};
  return cut;
}

Cut prepareCut(const Setup& setup, const Path& folder, const States& states, const char* level) {
  return prepareCut(setup, folder, states, setup.ref(), setup.rng(), level);
}

Paths finishedCut(const Setup& setup, const std::string& name, const States& states) {
  const Cut cut = prepareCut(setup, setup.work / name, states);
  cut.remove();
  runWell(cut.command);
  runWell({.words = {setup.program("statedb"), "verify", "--ref", cut.outputs[0], "--rng",
                     cut.outputs[1], "--source-ref", setup.ref(), "--source-rng", setup.rng(),
                     "--states", joined(states)}});
  return cut.outputs;
}

Cut checkedCut(const Setup& setup, const States& states, const Paths& finished) {
  const Cut cut = prepareCut(setup, setup.work / "cut" / joined(states), states);
  cut.remove();
  runWell(cut.command);
  for (std::size_t i = 0; i < finished.size(); ++i)
    if (!sameBytes(cut.outputs[i], finished[i]))
      throw std::runtime_error(cut.outputs[i].string() + " differs from " + finished[i].string());
  cut.remove();
  return cut;
}

void settle(const Paths& files) {
  removeFiles(files);
  sync();
}

}  // namespace statecut::bench
