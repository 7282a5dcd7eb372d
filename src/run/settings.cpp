#include "run/settings.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "base/cmdline.h"
#include "base/system.h"
#include "log/utllgmsg.h"
#include "run/statelist.h"

namespace statecut {
namespace {

using Name = char* CmdLine::*;

struct NameOption {
  Name field;
  char letter;
  std::int32_t tooLong;  // the status of an argument that is too long
};

// Deliberate: -c is not in the option string, so never reached, and -o and -z have the statuses of
// -f and -g; scripts know them.
constexpr NameOption kNameOptions[] = {
    {&CmdLine::logFile, 'l', -1},  {&CmdLine::configFile, 'c', -2}, {&CmdLine::refDb, 'f', -3},
    {&CmdLine::rangeDb, 'g', -4},  {&CmdLine::stateFile, 's', -5},  {&CmdLine::refOut, 'o', -3},
    {&CmdLine::rangeOut, 'z', -4},
};

constexpr const char* kOptionString = "l:L:g:G:f:F:r:R:v:V:s:S:iIo:O:tTz:Z:hH?";

struct DefaultName {
  Name field;
  const char* name;
};

constexpr DefaultName kDefaultNames[] = {
    {&CmdLine::logFile, "tolvlog.txt"}, {&CmdLine::configFile, "tolv.cfg"},
    {&CmdLine::refDb, "city.dir"},      {&CmdLine::rangeDb, "zip4us.dir"},
    {&CmdLine::refOut, "city.sc"},      {&CmdLine::rangeOut, "zip4us.sc"},
};

// Deliberate: the configuration file that the text names is never read; the text stays as it is.
constexpr const char* kUsage =
    "where: \n"
    "    -s statefile  = File containing list of state abbreviations.\n"
    "    -l logfile    = Log file name.\n"
    "    -f refdb      = Reference/City DB file name.\n"
    "    -g rngdb      = Range/Zip4 DB file name.\n"
    "    -o refOut     = Output Reference/City DB file name.\n"
    "    -z rngOut     = Output Range/Zip4 DB file name.\n"
    "    -v loglevel   = Set log level.\n"
    "    -i            = Display state name and abbreviation info.\n"
    "    -t            = Prompt user to hit <Enter> key to complete process.\n"
    "    -h            = Display usage.\n"
    "    -?            = Display usage.\n"
    "A list of state abbreviations must be specified either in a file or at standard input.\n"
    "The list of state names and abbreviations can be displayed using the -i option.\n"
    "If the reference db and range db are not found, the configuration file will be used.\n"
    "There is no default state file name.\n"
    "The default log file is tolvlog.txt.\n"
    "The default ref/city db file is city.dir.\n"
    "The default range/zip4 db file is zip4us.dir.\n"
    "The default output ref/city db is city.sc.\n"
    "The default output range/zip4 db is zip4us.sc.\n"
    "Options can be in upper case (e.g. -S is the same as -s), but file names are case "
    "sensitive.\n"
    "See documentation for MF defaults.\n"
    " \n";

// Without memory the run ends: a default in place of a given name would read or overwrite other
// files.
char* ownedCopy(const char* text) {
  const std::size_t bytes = std::strlen(text) + 1;
  auto* const copy = static_cast<char*>(sys::allocateZeroed(bytes));
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy, text, bytes);
  return copy;
}

std::int32_t setName(const NameOption& option, const char* argument) {
  if (std::strlen(argument) > static_cast<std::size_t>(kMaxNameLength)) return option.tooLong;
  sys::release(cmdLine.*option.field);
  cmdLine.*option.field = nullptr;
  cmdLine.*option.field = ownedCopy(argument);
  return 0;
}

std::int32_t applyOption(int option, const char* argument) {
  const int letter = std::tolower(option);
  for (const NameOption& name : kNameOptions) {
    if (name.letter == letter) return setName(name, argument);
  }
  switch (letter) {
    case 'v':
      cmdLine.logLevel =
          static_cast<std::int32_t>(std::clamp(std::strtol(argument, nullptr, 10), 0L, 5L));
      return 0;
    case 'i':
      cmdLine.displayInfo = 1;
      return 0;
    case 't':
      cmdLine.prompt = 1;
      return 0;
    case 'r':  // Deliberate: accepted without effect, for scripts that give it
      return 0;
    default:  // -h, -? and what getopt has already reported
      return 1;
  }
}

void clearSettings() {
  cmdLine.logLevel = 3;
  cmdLine.displayInfo = 0;
  cmdLine.stateCount = 0;
  cmdLine.prompt = 0;
  for (const NameOption& name : kNameOptions) cmdLine.*name.field = nullptr;
}

std::int32_t readOptions(int argc, char** argv) {
  std::int32_t status = 0;
  optind = 0;  // not 1: an earlier call may have left an argument in the middle
  int option = 0;
  // Deliberate: one more option is taken after a status was set, and not applied, so that a bad one
  // behind it is still reported.
  while ((option = ::getopt(argc, argv, kOptionString)) != -1 && status == 0) {
    status = applyOption(option, optarg);
  }
  return status;
}

void writeLine(Stream* log, const char* label, const char* value) {
  char line[kMaxNameLength + 100];
  std::snprintf(line, sizeof line, "%s%s\n", label, orEmpty(value));
  utlWriteText(line, log, cmdLine.topOfForm);
}

}  // namespace

std::int32_t parseCmdLine(int argc, char** argv) {
  clearSettings();
  const std::int32_t status = readOptions(argc, argv);
  if (status < 0) {
    std::fprintf(stderr, "Make sure files names are not longer than %d characters.\n",
                 kMaxNameLength);
    return status;
  }
  if (cmdLine.displayInfo != 0 || status > 0) return status;
  for (const DefaultName& entry : kDefaultNames) {
    if (cmdLine.*entry.field == nullptr) cmdLine.*entry.field = ownedCopy(entry.name);
  }
  return readStateList();
}

void logCmdLine(Stream* log) {
  if (cmdLine.stateFile != nullptr) {
    writeLine(log, "State file: ", cmdLine.stateFile);
  } else {
    writeLine(log, "States read from standard input.", "");
  }
  writeLine(log, "Log file           : ", cmdLine.logFile);
  writeLine(log, "Ref/City db file   : ", cmdLine.refDb);
  writeLine(log, "Range/Zip4 db file : ", cmdLine.rangeDb);
  writeLine(log, "Output Ref/City db : ", cmdLine.refOut);
  writeLine(log, "Output Range/Zip4  : ", cmdLine.rangeOut);
  writeLine(log, "Log level          : ", std::to_string(cmdLine.logLevel).c_str());
  writeLine(log, "List of States...", "");
  for (std::int32_t i = 0; i < std::min(cmdLine.stateCount, kMaxStates); ++i) {
    writeLine(log, "", cmdLine.states[i]);
  }
}

void printUsage(const char* programName) {
  // Deliberate: "logleve" is spelled so; the text stays as it is.
  std::fprintf(stderr,
               "Usage: %s [-s statefile][-l logfile][-f refdb][-g rngdb][-o refOut][-z rngOut]"
               "[-v logleve][-i][-h?]\n",
               orEmpty(programName));
  std::fputs(kUsage, stderr);
}

void freeCmdLine() {
  constexpr Name kNames[] = {&CmdLine::configFile, &CmdLine::stateFile, &CmdLine::logFile,
                             &CmdLine::refDb,      &CmdLine::rangeDb,   &CmdLine::refOut,
                             &CmdLine::rangeOut};
  for (const Name name : kNames) {
    sys::release(cmdLine.*name);
    cmdLine.*name = nullptr;
  }
}

}  // namespace statecut
