// The run around the cut: state list, settings, messages and the exit status.

#include <algorithm>
#include <cctype>

#include "base/le.h"
#include "support/linepattern.h"
#include "support/secondcut_state.h"

namespace statecut::secondcut {
namespace {

// All abbreviations but one: the Armed Forces areas share AE.
const std::vector<std::string> kAllStates = {
    "AA", "AE", "AL", "AK", "AP", "AS", "AR", "AZ", "CA", "CO", "CT", "DC", "DE", "FM", "FL", "GA",
    "GU", "HI", "IA", "ID", "IL", "IN", "KS", "KY", "LA", "MA", "MD", "ME", "MI", "MH", "MN", "MO",
    "MP", "MS", "MT", "NC", "ND", "NE", "NH", "NJ", "NM", "NV", "NY", "OH", "OK", "OR", "PA", "PR",
    "PW", "RI", "SC", "SD", "TN", "TX", "UM", "UT", "VA", "VI", "VT", "WA", "WI", "WV", "WY"};

constexpr std::size_t kListRoom = 66;

const char* const kUsage[] = {
    "where: ",
    "    -s statefile  = File containing list of state abbreviations.",
    "    -l logfile    = Log file name.",
    "    -f refdb      = Reference/City DB file name.",
    "    -g rngdb      = Range/Zip4 DB file name.",
    "    -o refOut     = Output Reference/City DB file name.",
    "    -z rngOut     = Output Range/Zip4 DB file name.",
    "    -v loglevel   = Set log level.",
    "    -i            = Display state name and abbreviation info.",
    "    -t            = Prompt user to hit <Enter> key to complete process.",
    "    -h            = Display usage.",
    "    -?            = Display usage.",
    "A list of state abbreviations must be specified either in a file or at standard input.",
    "The list of state names and abbreviations can be displayed using the -i option.",
    "If the reference db and range db are not found, the configuration file will be used.",
    "There is no default state file name.",
    "The default log file is tolvlog.txt.",
    "The default ref/city db file is city.dir.",
    "The default range/zip4 db file is zip4us.dir.",
    "The default output ref/city db is city.sc.",
    "The default output range/zip4 db is zip4us.sc.",
    "Options can be in upper case (e.g. -S is the same as -s), but file names are case sensitive.",
    "See documentation for MF defaults.",
    " "};

void usage(const Inputs& in, Outcome& out) {
  out.err.push_back("Usage: " + in.program +
                    " [-s statefile][-l logfile][-f refdb][-g rngdb][-o refOut][-z rngOut]"
                    "[-v logleve][-i][-h?]");
  for (const char* line : kUsage) out.err.emplace_back(line);
}

void printErr(Outcome& out, const std::string& text) {
  for (const std::string& line : test::splitLines(text)) out.err.push_back(line);
}

bool known(const std::string& abbreviation) {
  return std::find(kAllStates.begin(), kAllStates.end(), abbreviation) != kAllStates.end();
}

// Reads the list up to its end or an empty line. Returns false when a line was bad.
bool readStates(const std::string& text, std::vector<std::string>& states, Outcome& out) {
  bool good = true;
  std::size_t at = 0;
  while (at < text.size() && text[at] != '\n') {
    const std::size_t lineEnd = text.find('\n', at);
    const std::size_t next = lineEnd == std::string::npos ? text.size() : lineEnd + 1;
    // The cut keeps two characters, the new line of a one-character line among them.
    std::string state = text.substr(at, std::min<std::size_t>(2, next - at));
    if (const std::size_t nul = state.find('\0'); nul != std::string::npos) state.resize(nul);
    for (char& c : state) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (known(state) && states.size() < kListRoom) {
      states.push_back(state);
    } else {
      printErr(out, "bad state: " + state + "\n");
      good = false;
    }
    at = next;
  }
  if (states.empty()) {
    printErr(out, "No input specified.\n  The entire database is being copied:\n\n");
    for (const std::string& state : kAllStates) out.err.push_back(" " + state);
    states = kAllStates;
  }
  std::sort(states.begin(), states.end());
  return good;
}

void logSettings(const Inputs& in, const std::vector<std::string>& states, LogBook& log) {
  log.text(in.stateFileName ? "State file: " + *in.stateFileName + "\n"
                            : "States read from standard input.\n");
  log.text("Log file           : " + in.logName + "\n");
  log.text("Ref/City db file   : " + in.refName + "\n");
  log.text("Range/Zip4 db file : " + in.rngName + "\n");
  log.text("Output Ref/City db : " + in.outRefName + "\n");
  log.text("Output Range/Zip4  : " + in.outRngName + "\n");
  log.text("Log level          : " + std::to_string(in.logLevel) + "\n");
  log.text("List of States...\n");
  for (const std::string& state : states) log.text(state + "\n");
}

std::string timeLine(const std::string& label) {
  const std::string two = {test::kDigit, test::kDigit};
  return label + ": " + two + " " + two + " " + two + two + " " + two + ":" + two + ":" + two +
         "\n";
}

}  // namespace

void OutputFile::append(const std::string& name, const unsigned char* data, std::size_t count) {
  regions.push_back({name, bytes.size(), bytes.size() + count});
  bytes.insert(bytes.end(), data, data + count);
}

std::string OutputFile::regionAt(std::size_t offset) const {
  for (const Region& region : regions)
    if (offset >= region.begin && offset < region.end)
      return region.name + " + " + std::to_string(offset - region.begin);
  return "past the expected end";
}

Outcome deriveCut(const Inputs& in) {
  Outcome out;
  std::vector<std::string> states;
  if (in.stateFileName) {
    if (!in.stateText) {
      out.err.push_back("Could not open state file: " + *in.stateFileName);
      usage(in, out);
      out.exitStatus = -8 & 0xFF;
      return out;
    }
    out.err.push_back("Opened state file: " + *in.stateFileName);
  } else {
    out.out.emplace_back("State Abbreviations read from standard input.");
  }
  if (!readStates(in.stateText.value_or(""), states, out)) {
    usage(in, out);
    out.exitStatus = 1;
    return out;
  }
  out.out.emplace_back("Processing ... please wait.");
  LogBook log(in, out);
  log.text(timeLine("Start Time"));
  logSettings(in, states, log);
  Cut cut(in, out, log, states);
  out.exitStatus = cut.run() & 0xFF;
  log.text(timeLine("End Time"));
  return out;
}

int Cut::run() {
  if (openReference() != 0) return -1;
  out.ref.created = true;
  if (copyReference() != 0) return -1;
  if (const int status = openRange(); status != 0) return status;
  if (le::get<4>(rngRecord.data() + 20) != le::get<4>(refRecord.data() + 20)) {
    log.record(kError, "cutstate", 1907, 0, "DB Error", "DB Timestamps are not the same.");
    return -13;
  }
  log.required("dbaccess", 814, "Info Msg ", "New Zip Code Index", 200000);
  selectZips();
  announceNewTables();
  updateReference();
  out.rng.created = true;
  writeRangeRecord();
  for (const Kind kind : {kSfh, kPob, kRr}) copyZipPartitions(kind);
  if (rebuildMultiZips() != 0) return -1;
  writeReference();
  reportNeverLoaded();
  return 0;
}

}  // namespace statecut::secondcut
