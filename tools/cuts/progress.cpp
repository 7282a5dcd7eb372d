#include "cuts/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

namespace statecut::cuts {

namespace {

using nlohmann::ordered_json;

std::string decimal(double value, const char* unit) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f%s", value, unit);
  return text;
}

std::string megabytes(std::uint64_t bytes) {
  return decimal(static_cast<double>(bytes) / 1e6, " MB");
}

const char* word(Outcome outcome) {
  if (outcome == Outcome::Made) return "made";
  return outcome == Outcome::There ? "there" : "failed";
}

std::size_t terminalWidth() {
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& one : words) text += (text.empty() ? "" : ", ") + one;
  return text;
}

// Names and paths may hold any bytes.
void printLine(std::ostream& out, const ordered_json& json) {
  out << json.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << std::endl;
}

}  // namespace

Progress::Progress(Form form, const Totals& totals, std::ostream& out, std::ostream& err)
    : form_(form),
      totals_(totals),
      out_(out),
      err_(err),
      begin_(std::chrono::steady_clock::now()) {}

double Progress::seconds() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
}

std::string Progress::totalLine(std::uint64_t runningBytes) const {
  const std::uint64_t bytes = made_.bytes + runningBytes;
  const double rate = static_cast<double>(bytes) / std::max(seconds(), 0.001);
  const std::size_t ended = made_.products + there_.products + failed_.size();
  std::string text = std::to_string(ended) + " of " + std::to_string(totals_.products) +
                     " products, " + megabytes(bytes) + " of " + megabytes(totals_.plannedBytes) +
                     ", " + decimal(rate / 1e6, " MB/s");
  if (bytes > 0 && bytes < totals_.plannedBytes)
    text += ", " + decimal(static_cast<double>(totals_.plannedBytes - bytes) / rate, " s left");
  return text;
}

void Progress::clear() {
  if (drawn_ > 0) out_ << "\x1b[" << drawn_ << "A\r\x1b[J";
  drawn_ = 0;
}

void Progress::draw(const std::vector<Running>& running) {
  if (form_ != Form::Terminal) return;
  clear();
  const std::size_t width = terminalWidth() - 1;
  std::uint64_t bytes = 0;
  const auto line = [&](const std::string& text) {
    out_ << text.substr(0, width) << '\n';
    ++drawn_;
  };
  for (const Running& one : running) {
    bytes += one.bytes;
    line(one.product + ": " + one.step + ", " + megabytes(one.bytes) + " of " +
         megabytes(one.planned));
  }
  line(totalLine(bytes));
  out_.flush();
}

void Progress::finish(const Finished& one) {
  if (one.outcome == Outcome::Failed) {
    failed_.push_back(one.product);
  } else {
    Sum& sum = one.outcome == Outcome::Made ? made_ : there_;
    ++sum.products;
    sum.bytes += one.bytes;
  }
  clear();
  if (form_ == Form::Json) {
    ordered_json json = {{"product", one.product},
                         {"result", word(one.outcome)},
                         {"bytes", one.bytes},
                         {"seconds", one.seconds}};
    if (!one.error.empty()) json["error"] = one.error;
    if (!one.warnings.empty()) json["warnings"] = one.warnings;
    printLine(out_, json);
  } else if (one.outcome == Outcome::Made && form_ == Form::Lines) {
    out_ << one.product << ": " << one.bytes << " bytes, " << decimal(one.seconds, " s")
         << std::endl;
  } else if (one.outcome == Outcome::There && form_ == Form::Lines) {
    out_ << one.product << ": " << one.bytes << " bytes, already there" << std::endl;
  }
  out_.flush();
  for (const std::string& warning : one.warnings)
    err_ << "statedb cuts: " << one.product << ": warning: " << warning << '\n';
  if (!one.error.empty()) err_ << "statedb cuts: " << one.product << ": " << one.error << '\n';
  err_.flush();
}

void Progress::printTable(std::size_t notMade) {
  const auto row = [&](const char* name, const std::string& products, const std::string& bytes,
                       const std::string& time) {
    out_ << std::left << std::setw(14) << name << std::right << std::setw(8) << products;
    if (!bytes.empty()) out_ << std::setw(15) << bytes;
    if (!time.empty()) out_ << std::setw(10) << time;
    out_ << '\n';
  };
  row("", "products", "bytes", "seconds");
  row("made", std::to_string(made_.products), std::to_string(made_.bytes), decimal(seconds(), ""));
  row("already there", std::to_string(there_.products), std::to_string(there_.bytes), "");
  row("failed", std::to_string(failed_.size()), "", "");
  if (notMade > 0) row("not made", std::to_string(notMade), "", "");
}

void Progress::printSummaryJson(const std::vector<std::string>& notMade, const std::string& why) {
  ordered_json json = {{"made", made_.products},
                       {"there", there_.products},
                       {"failed", failed_},
                       {"notMade", notMade},
                       {"bytes", made_.bytes + there_.bytes},
                       {"seconds", seconds()}};
  if (!why.empty()) json["stopped"] = why;
  ordered_json line = ordered_json::object();
  line["summary"] = std::move(json);
  printLine(out_, line);
}

void Progress::end(const std::vector<std::string>& notMade, const std::string& why) {
  clear();
  if (form_ == Form::Json)
    printSummaryJson(notMade, why);
  else
    printTable(notMade.size());
  out_.flush();
  if (!failed_.empty()) err_ << "statedb cuts: failed: " << joined(failed_) << '\n';
  if (!why.empty()) err_ << "statedb cuts: " << why << '\n';
  if (!notMade.empty()) err_ << "statedb cuts: not made: " << joined(notMade) << '\n';
}

}  // namespace statecut::cuts
