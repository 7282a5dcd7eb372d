// Starting the program, and verifying a cut.

#include "processes/cuts.h"

namespace statecut::bench {

RowSamples startup(const Setup& setup) {
  const int starts = 200;
  const Command nothing{.words = {"/bin/true"}};
  RowSamples samples;
  for (const char* option : {"-i", "-h"}) {
    const Command command{.words = {setup.program("statecut"), option}};
    Figure figure{option, "s", {}, {}};
    for (int round = 0; round < setup.rounds; ++round) {
      std::vector<double> ours;
      std::vector<double> peer;
      for (int i = 0; i < starts; ++i) {
        ours.push_back(run(command).wall);
        peer.push_back(run(nothing).wall);
      }
      figure.ours.push_back(median(ours));
      figure.peer.push_back(median(peer));
    }
    samples.figures.push_back(figure);
  }
  samples.notes.push_back("a round is the median of " + std::to_string(starts) + " starts in turn");
  return samples;
}

RowSamples verifyCut(const Setup& setup) {
  const Paths cut = finishedCut(setup, "finished-txok", {"TX", "OK"});
  const Path equal = setup.work / "equal.dir";
  std::filesystem::copy_file(setup.rng(), equal, std::filesystem::copy_options::overwrite_existing);
  loadIntoCache({setup.ref(), setup.rng(), equal, cut[0], cut[1]});
  const Command verify{.words = {setup.program("statedb"), "verify", "--ref", cut[0], "--rng",
                                 cut[1], "--source-ref", setup.ref(), "--source-rng", setup.rng(),
                                 "--states", "TX,OK"}};
  const Command compare{.words = {"cmp", setup.rng(), equal}};
  Figure wall{"wall", "s", {}, {}};
  alternate(
      setup.rounds, [&] { return runWell(verify); }, [&] { return runWell(compare); }, wall);
  settle({equal, cut[0], cut[1]});
  return {{wall}, {}};
}

}  // namespace statecut::bench
