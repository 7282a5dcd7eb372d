#include "query/run.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "query/ops.h"

namespace statecut::query {

namespace {

constexpr std::size_t kChunk = std::size_t{1} << 16;

bool refuse(bool decode, std::string_view argument, std::string_view text, std::string& out) {
  Answer(out, decode).error(argument, text);
  return false;
}

bool refuseCount(bool decode, const Op& op, std::string& out) {
  const std::size_t wanted = op.parameters.size();
  return refuse(decode, op.name,
                "takes " + std::to_string(wanted) + (wanted == 1 ? " argument" : " arguments"),
                out);
}

// False when the answer is that there is none: lookups say "not found" when the file cannot be
// read, and for a table that is not there.
bool call(Session& session, bool decode, const Op& op, const Args& args, std::string& out) {
  const std::size_t start = out.size();
  const bool loaded = session.prepare(op.sets);
  Answer answer(out, decode);
  answer.begin(op.name);
  op.handler(session, args, answer);
  answer.end();
  const std::string failure = readFailure();
  if (loaded && failure.empty()) return true;
  out.resize(start);
  return refuse(decode, op.name, failure.empty() ? "cannot load its tables" : failure, out);
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

bool answerWords(Session& session, bool decode, std::span<const std::string> words,
                 std::string& out) {
  const Op* op = findOp(words.front());
  if (op == nullptr) return refuse(decode, "", "unknown op", out);
  if (words.size() - 1 != op->parameters.size()) return refuseCount(decode, *op, out);
  Args& args = argsOfCall();
  for (std::size_t i = 0; i < op->parameters.size(); ++i) {
    const char* wrong = argFromText(words[i + 1], op->parameters[i].kind, args[i]);
    if (wrong != nullptr) return refuse(decode, op->parameters[i].name, wrong, out);
  }
  return call(session, decode, *op, args, out);
}

bool answerLine(Session& session, bool decode, std::string_view line, std::string& out) {
  const nlohmann::json request = nlohmann::json::parse(line.begin(), line.end(), nullptr, false);
  if (!request.is_object()) return refuse(decode, "", "not a JSON object", out);
  const auto name = request.find("op");
  if (name == request.end() || !name->is_string()) return refuse(decode, "op", "missing", out);
  const Op* op = findOp(name->get_ref<const std::string&>());
  if (op == nullptr) return refuse(decode, "", "unknown op", out);
  const auto given = request.find("args");
  if (given == request.end() || !given->is_array())
    return refuse(decode, "args", "missing or no array", out);
  if (given->size() != op->parameters.size()) return refuseCount(decode, *op, out);
  Args& args = argsOfCall();
  for (std::size_t i = 0; i < op->parameters.size(); ++i) {
    const char* wrong = argFromJson((*given)[i], op->parameters[i].kind, args[i]);
    if (wrong != nullptr) return refuse(decode, op->parameters[i].name, wrong, out);
  }
  return call(session, decode, *op, args, out);
}

int serve(Session& session, bool decode, int in, int out) {
  Lines lines(in);
  std::string answers;
  bool good = true;
  std::string_view line;
  for (;;) {
    while (lines.next(line)) {
      good = answerLine(session, decode, line, answers) && good;
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
  if (lines.last(line)) good = answerLine(session, decode, line, answers) && good;
  if (!writeAll(out, answers)) return failStreams("cannot write the answers");
  return good ? kDone : kFailed;
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
