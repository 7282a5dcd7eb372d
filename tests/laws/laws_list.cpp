// Laws of any pair, sound or not: they compare runs with each other.

#include <algorithm>
#include <cctype>
#include <set>

#include "dbbuilder/random.h"
#include "laws/laws.h"
#include "tables/rows.h"

namespace statecut::test {

namespace {

using Ref = RefControlRec;

void compareFiles(const Pair& expected, const Pair& got, Breaches& breaches) {
  breaches.unless(expected.ref == got.ref, "the reference outputs differ");
  breaches.unless(expected.rng == got.rng, "the range outputs differ");
}

void compareRuns(const CutRun& expected, const CutRun& got, Breaches& breaches) {
  breaches.unless(expected.status == got.status, "status " + std::to_string(got.status) + ", not " +
                                                     std::to_string(expected.status));
  compareFiles(expected.made, got.made, breaches);
  breaches.unless(expected.log == got.log, "the logs differ:\n" + expected.log + "and\n" + got.log);
  breaches.unless(expected.out == got.out, "standard output differs: " + got.out);
  breaches.unless(expected.err == got.err, "standard error differs: " + got.err);
}

void checkEnd(const CutRun& run, Breaches& breaches) {
  breaches.unless(run.status < 1000, "signal " + std::to_string(run.status - 1000) + run.err);
  breaches.unless(run.harm.empty(), run.harm);
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

// The same list in another order, each letter in any case.
std::string shuffled(States list, std::uint64_t seed) {
  builder::Random random(seed);
  for (std::size_t i = list.size(); i > 1; --i)
    std::swap(list[i - 1], list[random.below(static_cast<std::uint32_t>(i))]);
  std::string text = linesOf(list);
  for (char& c : text)
    if (random.percent(50)) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

std::string orderAndCaseDoNotMatter(const Pair& pair, const States& list, std::uint64_t seed) {
  Breaches breaches;
  Manner manner;
  manner.list = linesOf(list);
  const CutRun plain = cut(pair, manner);
  manner.list = shuffled(list, seed);
  const CutRun other = cut(pair, manner);
  checkEnd(plain, breaches);
  checkEnd(other, breaches);
  compareRuns(plain, other, breaches);
  return breaches.text();
}

FileBytes namesByState(const Pair& pair) {
  const std::uint32_t names = pair.word(Ref::cityNamesCount);
  return pair.refBytes(pair.word(Ref::cityNamesByStateRba),
                       std::uint64_t{CityByStateRow::size} * (names == 0 ? 0 : names - 1));
}

FileBytes namesByStateWithRepeats(const Pair& source, const States& list, std::uint32_t names) {
  States sorted = list;
  std::sort(sorted.begin(), sorted.end());
  const FileBytes from = namesByState(source);
  std::vector<CityByStateRow> rows;
  for (const std::string& state : sorted) {
    for (std::size_t at = 0; at + CityByStateRow::size <= from.size(); at += CityByStateRow::size) {
      if (!std::equal(state.begin(), state.end(),
                      from.begin() + static_cast<std::ptrdiff_t>(at + 32)))
        continue;
      rows.emplace_back();
      std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(at), CityByStateRow::size,
                  rows.back().bytes.begin());
    }
  }
  std::stable_sort(rows.begin(), rows.end(), [](const CityByStateRow& a, const CityByStateRow& b) {
    return std::lexicographical_compare(a.bytes.begin() + 4, a.bytes.end(), b.bytes.begin() + 4,
                                        b.bytes.end());
  });
  FileBytes bytes;
  for (const CityByStateRow& row : rows)
    bytes.insert(bytes.end(), row.bytes.begin(), row.bytes.end());
  bytes.resize(std::size_t{CityByStateRow::size} * (names == 0 ? 0 : names - 1));
  return bytes;
}

std::string repeatsAddToTheNamesByStateAlone(const Pair& pair, const States& list) {
  Breaches breaches;
  if (list.empty()) return {};
  States twice = list;
  twice.push_back(list.front());
  if (list.size() > 1) twice.insert(twice.end(), 2, list.back());
  const CutRun once = cut(pair, list);
  CutRun again = cut(pair, twice);
  checkEnd(again, breaches);
  if (once.status != 0 || again.status != 0) {
    // The room for the repeats may be more than there is; a cut that fails without them never
    // works.
    breaches.unless(again.status != 0, "only the list with repeats can be cut");
    return breaches.text();
  }
  const FileBytes expected =
      namesByStateWithRepeats(pair, twice, once.made.word(Ref::cityNamesCount));
  breaches.unless(namesByState(again.made) == expected, "other records by state");
  const FileBytes kept = namesByState(once.made);
  if (kept != expected) occurred(Exception::kRepeatedState);
  std::copy(kept.begin(), kept.end(),
            again.made.ref.begin() + again.made.word(Ref::cityNamesByStateRba));
  compareFiles(once.made, again.made, breaches);
  return breaches.text();
}

std::string runsWithOneStampAreEqual(const Pair& pair, const States& list) {
  Breaches breaches;
  const CutRun first = cut(pair, list);
  const CutRun second = cut(pair, list);
  checkEnd(first, breaches);
  compareRuns(first, second, breaches);
  return breaches.text();
}

std::string namesAndFoldersChangeTheLogAlone(const Pair& pair, const States& list) {
  Breaches breaches;
  Manner plain;
  plain.list = linesOf(list);
  Manner other = plain;
  other.listInFile = true;
  other.folder = "a b/\xC3\xA9";
  other.ref = "../Q%sreference";
  other.rng = "./Qranges";
  other.refOut = "../../Qmade 1";
  other.rngOut = "Q;made\n2";
  other.log = "../Qlog";
  const CutRun expected = cut(pair, plain);
  CutRun got = cut(pair, other);
  checkEnd(got, breaches);
  const std::pair<std::string, std::string> names[] = {{other.ref, plain.ref},
                                                       {other.rng, plain.rng},
                                                       {other.refOut, plain.refOut},
                                                       {other.rngOut, plain.rngOut},
                                                       {other.log, plain.log}};
  for (const auto& [from, to] : names) {
    got.log = replaced(got.log, from, to);
    got.err = replaced(got.err, from, to);
  }
  got.log = replaced(got.log, "State file: states.txt\n", "States read from standard input.\n");
  got.err = replaced(got.err, "Opened state file: states.txt\n", "");
  got.out.insert(0, "State Abbreviations read from standard input.\n");
  compareRuns(expected, got, breaches);
  return breaches.text();
}

}  // namespace statecut::test
