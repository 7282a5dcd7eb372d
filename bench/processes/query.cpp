// A stream of questions to statedb query and to the sqlite3 shell.

#include <algorithm>
#include <stdexcept>

#include "processes/cuts.h"
#include "processes/peerdb.h"
#include "processes/questions.h"

namespace statecut::bench {

namespace {

Questions prepare(const Setup& setup, const std::string& file, int count) {
  Session session;
  SessionSettings settings;
  settings.ref = setup.ref();
  std::string error;
  if (!session.open(settings, error)) throw std::runtime_error(error);
  writePeerDb(session, file);
  return mixedQuestions(session, count);
}

}  // namespace

RowSamples query(const Setup& setup) {
  const int count = 100000;
  const std::string file = setup.work / "questions.sqlite";
  const Questions questions = prepare(setup, file, count);
  const Command ours{.words = {setup.program("statedb"), "query", "--ref", setup.ref()}};
  const Command peer{.words = {"sqlite3", "-batch", "-readonly", file}};
  loadIntoCache({setup.ref(), file});
  std::string answers;
  std::string rows;
  runPiped(ours, questions.calls, &answers);
  runPiped(peer, questions.statements, &rows);
  if (std::count(answers.begin(), answers.end(), '\n') != count)
    throw std::runtime_error("statedb query does not answer every call");
  compareOutputs(answers, rows);
  Figure wall{"wall", "s", {}, {}};
  Figure cpu{"CPU", "s", {}, {}};
  alternate(
      setup.rounds, [&] { return runPiped(ours, questions.calls); },
      [&] { return runPiped(peer, questions.statements); }, wall, &cpu);
  settle({file});
  return {{wall}, {"CPU " + std::to_string(median(ratios(cpu)))}};
}

}  // namespace statecut::bench
