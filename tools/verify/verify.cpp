#include "verify/verify.h"

#include <ostream>

#include "verify/cutchecks.h"
#include "verify/pairrules.h"

namespace statecut::verify {

namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

void checkAlone(const Pair& pair, bool names, Report& report) {
  checkForm(pair, report);
  checkStamps(pair, report);
  checkTables(pair, report);
  checkTableLayout(pair, report);
  checkRangeAreas(pair, report);
  checkZipIndex(pair, report);
  checkZipRecords(pair, report);
  checkZipPartitions(pair, report);
  checkCityNames(pair, report);
  checkCityLinks(pair, report);
  checkCityFinance(pair, report);
  checkCityZips(pair, report);
  checkCitiesByState(pair, report);
  checkCityPhonetics(pair, report);
  checkNamePacking(pair, report);
  checkStreetLinks(pair, report);
  checkStreetLists(pair, report);
  if (names) checkHash(pair, report);
  checkMultiZip(pair, report);
  checkMultiZipLists(pair, report);
  checkRangeLayout(pair, report);
}

void compareCut(const Pair& pair, const Source& source, const std::vector<std::string>& states,
                Report& report) {
  const CutCase cut{deriveCut(source.pair, states), source.hash, pair};
  checkCutControl(cut, report);
  checkCutRangeControl(cut, report);
  if (!pair.isCut()) return;  // it holds other tables
  checkCutLayout(cut, report);
  checkCutTables(cut, report);
  checkCutZips(cut, report);
  checkCutCities(cut, report);
  checkCutHash(cut, report);
  checkCutRange(cut, report);
}

// With a source, as a cut of it to the states.
void checkInto(const Pair& pair, const Source* source, const std::vector<std::string>& states,
               Report& report, std::string& error) {
  if (!checkTypes(pair, report)) {
    if (report.clean()) error = "nothing can be checked of files that are no database pair";
    return;
  }
  checkAlone(pair, source == nullptr || !source->sound, report);
  if (source != nullptr) compareCut(pair, *source, states, report);
}

}  // namespace

std::optional<std::vector<std::string>> parseStates(const std::string& list) {
  std::vector<std::string> states;
  std::string word;
  for (const char c : list + ',') {
    if (c != ',' && c != ' ' && c != '\t' && c != '\n') {
      word += upper(c);
      continue;
    }
    if (word.empty()) continue;
    const auto letter = [](char l) { return l >= 'A' && l <= 'Z'; };
    if (word.size() != 2 || !letter(word[0]) || !letter(word[1])) return {};
    states.push_back(word);
    word.clear();
  }
  if (states.empty()) return {};
  return states;
}

Report check(const Options& options, std::string& error) {
  Report report;
  for (const std::string& id : options.ignored) {
    if (const auto one = ruleNamed(id))
      report.ignore(*one);
    else
      error = "no such rule: " + id;
  }
  if (!error.empty()) return report;
  const Pair pair = Pair::open(options.ref, options.rng, error);
  if (!error.empty()) return report;
  if (!options.withSource()) {
    checkInto(pair, nullptr, {}, report, error);
    return report;
  }
  const auto states = parseStates(options.states);
  if (!states) error = "not a list of two-letter states: \"" + options.states + "\"";
  Source source;
  if (error.empty()) source.pair = Pair::open(options.sourceRef, options.sourceRng, error);
  if (!error.empty()) return report;
  if (const std::string problem = sourceProblem(source.pair); !problem.empty()) {
    error = "can't compare with " + options.sourceRef + ", " + options.sourceRng + ": " + problem;
    return report;
  }
  source.hash = findHashPlaces(source.pair);
  checkInto(pair, &source, *states, report, error);
  return report;
}

Report checkPair(const Pair& pair, std::string& error) {
  Report report;
  checkInto(pair, nullptr, {}, report, error);
  return report;
}

Report checkCut(const Pair& cut, const Source& source, const std::vector<std::string>& states,
                std::string& error) {
  Report report;
  checkInto(cut, &source, states, report, error);
  return report;
}

int run(const Options& options, std::ostream& out, std::ostream& err) {
  std::string error;
  const Report report = check(options, error);
  if (!error.empty()) {
    err << "statedb verify: " << error << '\n';
    return 2;
  }
  const FileNames names{options.ref, options.rng};
  if (options.json)
    printJson(out, report, names);
  else
    printText(out, report, names);
  return report.clean() ? 0 : 1;
}

}  // namespace statecut::verify
