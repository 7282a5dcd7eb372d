#include "readerprogram.h"

#include "lookup/calls.h"
#include "lookup/comparison.h"
#include "support/process.h"

namespace statecut::test {

namespace {

constexpr std::size_t kMany = 2;  // keys and names a table, chosen, beside the edges of each
constexpr ReaderWay kWays[] = {ReaderWay::kSingle, ReaderWay::kIndexedBatches, ReaderWay::kBatches,
                               ReaderWay::kC, ReaderWay::kIndexed};

// The fourth call of each operation, or its last.
std::vector<Call> oneEach(const std::vector<Call>& calls) {
  std::vector<Call> few;
  std::size_t seen = 0;
  for (const Call& call : calls) {
    const bool another = few.empty() || few.back().op != call.op;
    if (another) seen = 0;
    if (another)
      few.push_back(call);
    else if (seen < 4)
      few.back() = call;
    ++seen;
  }
  return few;
}

// Every partition of a pair that opens, into a buffer of any size.
std::string partitions(const v1::Database& database) {
  std::vector<unsigned char> buffer(600);
  for (const Zip& zip : database.zips())
    for (const PartitionKind kind :
         {PartitionKind::kPoBox, PartitionKind::kStreet, PartitionKind::kRuralRoute}) {
      Error error;
      if (!database.readPartition(zip, kind, buffer, error) &&
          (error.code == ErrorCode::kNone || error.text.empty()))
        return "no partition and no reason; ";
    }
  return "";
}

// The file itself, with its range file, read or mapped: refused as its bytes are.
std::string opened(const std::string& reference, const std::string& range, bool mapped,
                   const Error& ofBytes) {
  OpenOptions options;
  options.mapped = mapped;
  Error error;
  const auto alone = v1::Database::open(reference, options, error);
  if (error.code != ofBytes.code || error.table != ofBytes.table || error.offset != ofBytes.offset)
    return "a file is refused otherwise than its bytes: " + error.text + "; ";
  if ((alone == nullptr) != (error.code != ErrorCode::kNone) ||
      (alone == nullptr && error.text.empty()))
    return "refused without a reason; ";
  options.range = range;
  const auto pair = v1::Database::open(reference, options, error);
  if (pair != nullptr) return partitions(*pair);
  return error.code == ErrorCode::kNone ? "refused without a reason; " : "";
}

}  // namespace

struct ReaderProgram::Calls {
  std::vector<Call> list;
};

ReaderProgram::ReaderProgram(const std::vector<unsigned char>& reference, bool many)
    : calls_(std::make_unique<Calls>()) {
  calls_->list = callsOn(reference, 1, kMany);
  if (!many) calls_->list = oneEach(calls_->list);
}

ReaderProgram::ReaderProgram(ReaderProgram&&) noexcept = default;
ReaderProgram::~ReaderProgram() = default;

std::string ReaderProgram::run(const std::string& reference, const std::string& range,
                               std::string& answers) {
  const Database file{"", readWholeFile(reference).value_or(Bytes())};
  const ReaderWay way = kWays[runs_++ % std::size(kWays)];
  answers.clear();
  const std::unique_ptr<ReaderFace> face = openFace(way, file.file);
  std::string wrong = opened(reference, range, runs_ % 2 == 0, face->error());
  Tally tally;
  wrong += compareReader(way, file, calls_->list, tally);
  if (!face->opened()) {
    answers = "refused: " + face->error().text + "\n";
    return wrong;
  }
  for (const Call& call : calls_->list)
    if (readerHas(call.op)) answers += face->answer(call) + "\n";
  return wrong;
}

}  // namespace statecut::test
