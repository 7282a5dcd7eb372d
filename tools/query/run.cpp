#include "query/run.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "query/ops.h"
#include "query/requestid.h"

namespace statecut::query {

namespace {

constexpr std::size_t kChunk = std::size_t{1} << 16;

// How answers are written: with the fields of records, behind the id of the request.
struct Form {
  bool decode = false;
  std::string_view id;
};

Outcome refuse(const Form& form, std::string_view argument, std::string_view text,
               std::string& out) {
  Answer(out, form.decode, form.id).error(argument, text);
  return Outcome::kNotUnderstood;
}

Outcome refuseCount(const Form& form, const Op& op, std::string& out) {
  const std::size_t wanted = op.parameters.size();
  return refuse(form, op.name,
                "takes " + std::to_string(wanted) + (wanted == 1 ? " argument" : " arguments"),
                out);
}

// Unanswered where lookups say "not found" as the file cannot be read, or the table is not there.
Outcome call(Session& session, const Form& form, const Op& op, const Args& args, std::string& out) {
  const std::size_t start = out.size();
  const bool loaded = session.prepare(op.sets);
  Answer answer(out, form.decode, form.id);
  answer.begin(op.name);
  op.handler(session, args, answer);
  answer.end();
  const std::string failure = readFailure();
  if (loaded && failure.empty()) return Outcome::kAnswered;
  out.resize(start);
  (void)refuse(form, op.name, failure.empty() ? "cannot load its tables" : failure, out);
  return Outcome::kUnanswered;
}

// Reused by all calls of a stream, for the room that its texts have.
Args& argsOfCall() {
  static Args args;
  return args;
}

// Reads a descriptor and hands out whole lines.
class Lines {
 public:
  explicit Lines(int descriptor) : descriptor_(descriptor) {}

  // The next whole line that is already there, without its end.
  bool next(std::string_view& line) {
    const char* from = buffer_.data() + scanned_;
    const void* end = std::memchr(from, '\n', buffer_.size() - scanned_);
    if (end == nullptr) {
      scanned_ = buffer_.size();
      return false;
    }
    const auto at = static_cast<std::size_t>(static_cast<const char*>(end) - buffer_.data());
    line = std::string_view(buffer_).substr(start_, at - start_);
    start_ = scanned_ = at + 1;
    return true;
  }

  // What stands behind the last line end.
  bool last(std::string_view& line) {
    line = std::string_view(buffer_).substr(start_);
    return !line.empty();
  }

  // Waits for more. The number of bytes, 0 at the end, -1 on failure.
  ssize_t read() {
    buffer_.erase(0, start_);
    scanned_ -= start_;
    start_ = 0;
    const std::size_t held = buffer_.size();
    buffer_.resize(held + kChunk);
    ssize_t got = 0;
    do got = ::read(descriptor_, buffer_.data() + held, kChunk);
    while (got == -1 && errno == EINTR);
    buffer_.resize(held + static_cast<std::size_t>(got < 0 ? 0 : got));
    return got;
  }

 private:
  int descriptor_;
  std::string buffer_;
  std::size_t start_ = 0;    // of the first line not handed out
  std::size_t scanned_ = 0;  // no line end stands between start_ and here
};

// What became of the calls of a stream.
class Counts {
 public:
  explicit Counts(Errors errors) : errors_(errors) {}

  void add(Outcome outcome) {
    ++of_[static_cast<std::size_t>(outcome)];
    status_ = std::max(status_, statusOf(outcome, errors_));
  }

  [[nodiscard]] int status() const { return status_; }

  void print() const {
    std::fprintf(stderr,
                 "statedb query: %" PRIu64 " answered, %" PRIu64 " not understood, %" PRIu64
                 " could not be answered\n",
                 of_[0], of_[1], of_[2]);
  }

 private:
  Errors errors_;
  int status_ = kDone;
  std::array<std::uint64_t, 3> of_ = {};  // by outcome
};

int failStreams(const char* what) {
  std::fprintf(stderr, "statedb query: %s: %s\n", what, std::strerror(errno));
  return kCannotRun;
}

}  // namespace

std::string readFailure() {
  int error = 0;
  if (!lookupsFailed(&error)) return {};
  return std::string("cannot read the reference file: ") +
         (error != 0 ? std::strerror(error) : "became shorter while it was read");
}

Outcome answerWords(Session& session, bool decode, std::span<const std::string> words,
                    std::string& out) {
  const Form form{decode, {}};
  const Op* op = findOp(words.front());
  if (op == nullptr) return refuse(form, "", "unknown op", out);
  if (words.size() - 1 != op->parameters.size()) return refuseCount(form, *op, out);
  Args& args = argsOfCall();
  for (std::size_t i = 0; i < op->parameters.size(); ++i) {
    const char* wrong = argFromText(words[i + 1], op->parameters[i].kind, args[i]);
    if (wrong != nullptr) return refuse(form, op->parameters[i].name, wrong, out);
  }
  return call(session, form, *op, args, out);
}

Outcome answerLine(Session& session, bool decode, std::string_view line, std::string& out) {
  const nlohmann::json request = nlohmann::json::parse(line.begin(), line.end(), nullptr, false);
  Form form{decode, {}};
  if (!request.is_object()) return refuse(form, "", "not a JSON object", out);
  if (request.contains("id")) form.id = requestId(line);
  const auto name = request.find("op");
  if (name == request.end() || !name->is_string()) return refuse(form, "op", "missing", out);
  const Op* op = findOp(name->get_ref<const std::string&>());
  if (op == nullptr) return refuse(form, "", "unknown op", out);
  const auto given = request.find("args");
  if (given == request.end() || !given->is_array())
    return refuse(form, "args", "missing or no array", out);
  if (given->size() != op->parameters.size()) return refuseCount(form, *op, out);
  Args& args = argsOfCall();
  for (std::size_t i = 0; i < op->parameters.size(); ++i) {
    const char* wrong = argFromJson((*given)[i], op->parameters[i].kind, args[i]);
    if (wrong != nullptr) return refuse(form, op->parameters[i].name, wrong, out);
  }
  return call(session, form, *op, args, out);
}

int statusOf(Outcome outcome, Errors errors) {
  if (outcome == Outcome::kAnswered) return kDone;
  if (errors == Errors::kStatus) return kFailed;
  return outcome == Outcome::kNotUnderstood ? kDone : kCannotRun;
}

int serve(Session& session, bool decode, Errors errors, int in, int out) {
  Lines lines(in);
  Counts counts(errors);
  std::string answers;
  std::string_view line;
  for (;;) {
    while (lines.next(line)) {
      counts.add(answerLine(session, decode, line, answers));
      if (answers.size() < kChunk) continue;
      if (!writeAll(out, answers)) return failStreams("cannot write the answers");
      answers.clear();
    }
    if (!writeAll(out, answers)) return failStreams("cannot write the answers");
    answers.clear();
    const ssize_t got = lines.read();
    if (got < 0) return failStreams("cannot read the calls");
    if (got == 0) break;
  }
  if (lines.last(line)) counts.add(answerLine(session, decode, line, answers));
  if (!writeAll(out, answers)) return failStreams("cannot write the answers");
  if (errors == Errors::kAnswer) counts.print();
  return counts.status();
}

bool writeAll(int out, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t wrote = ::write(out, bytes.data(), bytes.size());
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(wrote));
  }
  return true;
}

}  // namespace statecut::query
