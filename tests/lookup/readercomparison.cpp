// The calls on a Database against its oracle, and that against the lookups in memory.

#include "comparison.h"

namespace statecut::test {

namespace {

constexpr int kShown = 5;

// Operations whose answers have the same form in memory: a number, a record or a list.
bool sameForm(Op op) {
  switch (op) {
    case Op::kZipIndex:
    case Op::kZipData:
    case Op::kCityDataByName:
    case Op::kCityDataByTrunc:
    case Op::kFindPhonetic:
    case Op::kVariation:
      return false;
    default:
      return true;
  }
}

// No answer is no answer, whatever happened to the out-parameters.
std::string plain(const std::string& answer) { return answer.starts_with(kNull) ? kNull : answer; }

// The calls that only tell of a matcher's argument, which a pattern cannot give.
bool hasPattern(const Call& call) {
  return call.op != Op::kSequential ||
         (!call.name.empty() && call.name.find('*') == std::string::npos);
}

}  // namespace

std::string compareReader(ReaderWay way, const Database& database, const std::vector<Call>& calls,
                          Tally& tally) {
  ReaderOracle oracle(database.file);
  Oracle memory(database.file, Oracle::kMemory);
  const std::unique_ptr<ReaderFace> face = openFace(way, database.file);
  const std::string flaw = oracle.flaw();
  if (!face->opened()) {
    ++tally.refused;
    if (flaw.empty()) return database.name + ": refused: " + face->error().text + "\n";
    return face->error().code == ErrorCode::kNone || face->error().text.empty()
               ? database.name + ": refused without a reason\n"
               : "";
  }
  if (!flaw.empty()) return database.name + ": opened in spite of: " + flaw + "\n";
  std::string text;
  int failures = 0;
  const auto fail = [&](const Call& call, const std::string& what) {
    text += database.name + ": " + described(call) + "\n" + what;
    ++failures;
  };
  for (const Call& call : calls) {
    if (!readerHas(call.op) || !hasPattern(call)) continue;
    ++tally.calls[static_cast<std::size_t>(call.op)];
    const std::string wanted = oracle.answer(call);
    const std::string got = face->answer(call);
    if (got != wanted) fail(call, "  got    " + got + "\n  wanted " + wanted + "\n");
    const ReaderDifferences& meant = oracle.readerDifferences();
    const bool differs = sameForm(call.op) && wanted != plain(memory.answer(call));
    if (differs && meant.none())
      fail(call, "  outside the table of differences:\n  memory " + memory.answer(call) +
                     "\n  reader " + wanted + "\n");
    for (std::size_t i = 0; i < kReaderDifferences; ++i)
      if (meant[i] && (differs || !sameForm(call.op))) ++tally.readerOccurred[i];
    if (failures >= kShown) break;
  }
  return text;
}

}  // namespace statecut::test
