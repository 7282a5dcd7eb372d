// All products of a release by statedb cuts, the cuts of these alone, and the plan of all of them.

#include <stdexcept>

#include "processes/contest.h"

namespace statecut::bench {

namespace {

constexpr const char* kJobs = "2";

Command cutsInto(const Setup& setup, const Path& out) {
  return {.words = {setup.program("statedb"), "cuts", "--ref", setup.ref(), "--rng", setup.rng(),
                    "--out", out, "--each", "--jobs", kJobs}};
}

// Finished products, and their copies: a cp a product, one after the other.
struct Products {
  States names;
  Paths files;
  std::vector<Side> copies;

  Products(const Setup& setup, const Path& folder) {
    std::filesystem::remove_all(folder);
    runWell(cutsInto(setup, folder));
    for (const std::string& state : allStates()) {
      if (!std::filesystem::exists(folder / state)) continue;
      const Paths pair = {folder / state / "city.sc", folder / state / "zip4us.sc"};
      names.push_back(state);
      files.insert(files.end(), pair.begin(), pair.end());
      copies.push_back(copyOf(setup.work / "copies" / state, pair));
    }
  }
};

Usage runCopies(const Setup& setup, const Products& products) {
  primePages(setup.work / "scratch", bytesOf(products.files));
  loadIntoCache(products.files);
  Usage sum;
  for (const Side& copy : products.copies) sum += runWell(copy.command);
  for (const Side& copy : products.copies) removeFiles(copy.writes);
  settle({});
  return sum;
}

// A command that makes the products in folders of `out`, which `clear` removes, against their
// copies.
template <typename Clear>
RowSamples againstCopies(const Setup& setup, const Command& command, const Path& out,
                         const Products& products, const Clear& clear) {
  const auto make = [&] {
    primePages(setup.work / "scratch", bytesOf(products.files));
    loadIntoCache({setup.ref(), setup.rng()});
    const Usage usage = runWell(command);
    for (const Path& file : products.files)
      if (!sameBytes(out / file.parent_path().filename() / file.filename(), file))
        throw std::runtime_error("made otherwise: " + file.string());
    clear();
    settle({});
    return usage;
  };
  Figure wall{"wall", "s", {}, {}};
  Figure cpu{"CPU", "s", {}, {}};
  alternate(
      setup.rounds, make, [&] { return runCopies(setup, products); }, wall, &cpu);
  return {{wall},
          {std::to_string(products.names.size()) + " products, " +
               std::to_string(bytesOf(products.files)) + " bytes",
           std::string(kJobs) + " cuts at once; CPU " + std::to_string(median(ratios(cpu)))}};
}

}  // namespace

RowSamples productsMade(const Setup& setup) {
  const Products products(setup, setup.work / "products");
  const Path out = setup.work / "made";
  const auto clear = [&] { std::filesystem::remove_all(out); };
  clear();
  return againstCopies(setup, cutsInto(setup, out), out, products, clear);
}

RowSamples productsCut(const Setup& setup) {
  const Products products(setup, setup.work / "products");
  const Path out = setup.work / "cut-alone";
  // xargs starts the programs: an argument a line, as many lines a program.
  Command command{.words = {"xargs", "-a", setup.work / "arguments", "-d", "\\n", "-P", kJobs}};
  std::string lines;
  std::size_t count = 0;
  std::vector<Cut> cuts;
  for (const std::string& name : products.names) {
    const Cut& cut = cuts.emplace_back(prepareCut(setup, out / name, {name}));
    count = cut.command.words.size() - 1;
    for (std::size_t i = 1; i <= count; ++i) lines += cut.command.words[i] + "\n";
  }
  writeFile(setup.work / "arguments", lines);
  for (const std::string& word :
       {std::string("-n"), std::to_string(count), setup.program("statecut")})
    command.words.push_back(word);
  const auto clear = [&] {
    for (const Cut& cut : cuts) cut.remove();
  };
  clear();
  return againstCopies(setup, command, out, products, clear);
}

RowSamples planEach(const Setup& setup) {
  const Command plan{.words = {setup.program("statedb"), "plan", "--ref", setup.ref(), "--rng",
                               setup.rng(), "--each"}};
  const Command info{
      .words = {setup.program("statedb"), "info", "--json", setup.ref(), setup.rng()}};
  loadIntoCache({setup.ref(), setup.rng()});
  Figure wall{"wall", "s", {}, {}};
  alternate(
      setup.rounds, [&] { return runWell(plan); }, [&] { return runWell(info); }, wall);
  return {{wall}, {}};
}

}  // namespace statecut::bench
