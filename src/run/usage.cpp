#include "run/usage.h"

#include <cstdio>

namespace statecut {
namespace {

// The configuration file that the text names is never read; meant.
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

}  // namespace

void printUsage(const char* programName) {
  // "logleve" is spelled so; meant.
  std::fprintf(stderr,
               "Usage: %s [-s statefile][-l logfile][-f refdb][-g rngdb][-o refOut][-z rngOut]"
               "[-v logleve][-i][-h?]\n",
               programName == nullptr ? "" : programName);
  std::fputs(kUsage, stderr);
}

}  // namespace statecut
