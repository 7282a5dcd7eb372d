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

// The same list in another order where there is one, letters in any case, one at least in lower.
std::string shuffled(const States& list, std::uint64_t seed) {
  builder::Random random(seed);
  States other = list;
  for (std::size_t i = other.size(); i > 1; --i)
    std::swap(other[i - 1], other[random.below(static_cast<std::uint32_t>(i))]);
  if (other == list) std::reverse(other.begin(), other.end());
  std::string text = linesOf(other);
  for (std::size_t i = 0; i < text.size(); ++i)
    if (i == 0 || random.percent(50))
      text[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
  return text;
}

constexpr auto kStamp = Ref::stateCutTimeStamp;
static_assert(kStamp.at == RngControlRec::stateCutTimeStamp.at);

// The files as the same run makes them under another stamp.
Pair stamped(Pair made, std::uint32_t stamp) {
  for (FileBytes* file : {&made.ref, &made.rng})
    if (file->size() >= kStamp.at + 4) le::put<4>(file->data() + kStamp.at, stamp);
  return made;
}

}  // namespace

Baseline::Baseline(const Pair& of, const States& by) : pair(of), list(by), run(cut(of, by)) {}

std::string runEndsAndHarmsNoInput(const Baseline& base) {
  Breaches breaches;
  checkEnd(base.run, breaches);
  return breaches.text();
}

std::string orderAndCaseDoNotMatter(const Baseline& base, std::uint64_t seed) {
  Breaches breaches;
  Manner manner;
  manner.list = shuffled(base.list, seed);
  const CutRun other = cut(base.pair, manner);
  checkEnd(other, breaches);
  compareRuns(base.run, other, breaches);
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

std::string repeatsAddToTheNamesByStateAlone(const Baseline& base) {
  Breaches breaches;
  States twice = base.list;
  twice.push_back(base.list.front());
  if (base.list.size() > 1) twice.insert(twice.end(), 2, base.list.back());
  const CutRun& once = base.run;
  CutRun again = cut(base.pair, twice);
  checkEnd(again, breaches);
  if (once.status != 0 || again.status != 0) {
    // The room for the repeats may be more than there is; a cut that fails without them never
    // works.
    breaches.unless(again.status != 0, "only the list with repeats can be cut");
    return breaches.text();
  }
  const FileBytes expected =
      namesByStateWithRepeats(base.pair, twice, once.made.word(Ref::cityNamesCount));
  breaches.unless(namesByState(again.made) == expected, "other records by state");
  const FileBytes kept = namesByState(once.made);
  if (kept != expected) occurred(Exception::kRepeatedState);
  std::copy(kept.begin(), kept.end(),
            again.made.ref.begin() + again.made.word(Ref::cityNamesByStateRba));
  compareFiles(once.made, again.made, breaches);
  return breaches.text();
}

std::string stampIsAllThatTheEpochSets(const Baseline& base) {
  Breaches breaches;
  Manner manner;
  manner.list = linesOf(base.list);
  compareFiles(stamped(base.run.made, manner.stamp), base.run.made, breaches);
  manner.loaded = true;
  const CutRun same = cut(base.pair, manner);
  checkEnd(same, breaches);
  compareRuns(base.run, same, breaches);
  manner.loaded = false;
  manner.stamp = ~manner.stamp;  // each of its bytes is another one
  const CutRun later = cut(base.pair, manner);
  checkEnd(later, breaches);
  CutRun expected = base.run;
  expected.made = stamped(expected.made, manner.stamp);
  compareRuns(expected, later, breaches);
  return breaches.text();
}

std::string namesAndFoldersChangeTheLogAlone(const Baseline& base) {
  Breaches breaches;
  Manner plain;
  plain.list = linesOf(base.list);
  Manner other = plain;
  other.listInFile = true;
  other.folder = "a b/\xC3\xA9";
  other.ref = "../Q%sreference";
  other.rng = "./Qranges";
  other.refOut = "../../Qmade 1";
  other.rngOut = "Q;made\n2";
  other.log = "../Qlog";
  CutRun got = cut(base.pair, other);
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
  compareRuns(base.run, got, breaches);
  return breaches.text();
}

}  // namespace statecut::test
