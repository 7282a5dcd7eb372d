// Opening both source files: control records, their checks and their dumps in the log.

#include <cerrno>
#include <cstring>
#include <ctime>

#include "base/le.h"
#include "support/secondcut_state.h"

namespace statecut::secondcut {
namespace {

constexpr std::size_t kRefRecordSize = 844;
constexpr std::size_t kRngRecordSize = 624;

struct Label {
  const char* text;
  std::size_t offset;
};

constexpr Label kRefCounts[] = {
    {"City Names USPS and Standard   : ", 132}, {"City Phonetics                 : ", 136},
    {"Street Names USPS              : ", 140}, {"Street Names USPS Bytes        : ", 144},
    {"Street Phonetics               : ", 148}, {"Street Phonetics Bytes         : ", 152},
    {"Street Phntc Ambig Data Bytes  : ", 156}, {"Street Standardized Names      : ", 160},
    {"Street Stndrdzed Names Bytes   : ", 164}, {"Street Stnd Ambig Data Bytes   : ", 168},
    {"Firms                          : ", 172}, {"Firms Bytes                    : ", 176},
    {"Multi Zip Lists for City       : ", 180}, {"Multi Finance Lists for City   : ", 184},
    {"City Data                      : ", 188}, {"Zip Code Data                  : ", 192},
    {"Multi City Lists for Zip       : ", 196}, {"Counties                       : ", 200},
    {"Urbanizations                  : ", 204}, {"Urb Variations                 : ", 208},
    {"Street Patterns                : ", 212}, {"POB Patterns                   : ", 216},
    {"RR Patterns                    : ", 220}, {"General Delivery               : ", 224},
    {"Unique Zips                    : ", 236}, {"SCFs                           : ", 240},
    {"Multi Zip Lists for City n Zip : ", 252}, {"Multi Zip RBAs for City        : ", 256},
    {"Fin Multi Zip RBAs 4 Cty n Zip : ", 268}, {"SFH Multi-Zip Bytes            : ", 296},
    {"POB Multi-Zip Bytes            : ", 300}, {"RR Multi-Zip Bytes             : ", 304}};

constexpr Label kRefRbas[] = {
    {"Street Patterns            : ", 120}, {"POB Patterns               : ", 124},
    {"RR Pattern                 : ", 128}, {"Street Names USPS          : ", 80},
    {"Street RBOs (aka Keys)     : ", 84},  {"Firm Names                 : ", 112},
    {"Firm RBOs (aka Keys)       : ", 116}, {"City Data                  : ", 32},
    {"City Multi Zip Lists       : ", 36},  {"City Multi Finance Lists   : ", 40},
    {"City Multi Zip RBA Data    : ", 260}, {"Fin Multi Zip RBA Data     : ", 264},
    {"City Names USPS            : ", 44},  {"City Names By State        : ", 48},
    {"City Phonetics             : ", 52},  {"Zip Code Data              : ", 56},
    {"Zip Multi City Lists       : ", 60},  {"Zip Code Index Table       : ", 64},
    {"Unique Zip Data            : ", 232}, {"County Data                : ", 68},
    {"Urbanizations              : ", 72},  {"Urb Multi Zip Lists        : ", 276},
    {"Urb Variations             : ", 76},  {"Street Phonetic Amb Data   : ", 88},
    {"Street Phonetics           : ", 92},  {"Street Phonetics RBOs      : ", 96},
    {"Street Standard Amb Data   : ", 100}, {"Street Names Standardized  : ", 104},
    {"Street Standards RBOs      : ", 108}, {"General Delivery           : ", 228},
    {"SCFs                       : ", 244}, {"Multi Zip Lists            : ", 248},
    {"Zip Bytes                  : ", 280}, {"POB Multi Zip Bytes        : ", 288},
    {"RR Multi Zip Bytes         : ", 292}, {"SFH Multi Zip Bytes        : ", 284},
    {"Hash Table                 : ", 308}, {"Hash Table Count           : ", 312},
    {"Hash Overflow              : ", 316}, {"Hash Overflow Count        : ", 320},
    {"Military RBA               : ", 324}, {"PO BOX Zone RBA            : ", 328}};

constexpr Label kRngCounts[] = {
    {"SFH Zip Bytes               : ", 76},  {"SFH Multi Zip Bytes         : ", 80},
    {"SFH Zip Max Street Count    : ", 92},  {"SFH Multi Zip Max Street Cnt: ", 96},
    {"POB Zip Bytes               : ", 60},  {"POB Multi Zip Bytes         : ", 64},
    {"RR Zip Bytes                : ", 68},  {"RR Multi Zip Bytes          : ", 72},
    {"RR Zip Max Street Count     : ", 100}, {"RR Multi Zip Max Street Cnt : ", 104},
    {"Max Range Overheads         : ", 88}};

constexpr Label kRngRbas[] = {
    {"SFH Zip partition start       : ", 32}, {"POB Zip partition start       : ", 44},
    {"RR Zip partition start        : ", 52}, {"SFH Multi Zip partition start : ", 36},
    {"POB Multi Zip partition start : ", 48}, {"RR Multi Zip partition start  : ", 56}};

std::string cString(const std::string& text) { return text.c_str(); }

std::string versionText(const Bytes& r) {
  const auto c = [&r](std::size_t i) { return static_cast<char>(r[i]); };
  return cString({c(0), c(1), '.', c(2), c(3), '.', c(4), '.', c(5), '.', c(6), c(7)});
}

std::string copyrightText(const Bytes& r) {
  const std::string month = {static_cast<char>(r[9]), static_cast<char>(r[10])};
  const std::string year = {static_cast<char>(r[11]), static_cast<char>(r[12])};
  return cString(month + (month == "99" ? "-99-20" : "-15-20") + year);
}

std::string timeText(std::uint32_t stamp) {
  const std::time_t time = stamp;
  std::tm parts{};
  char text[40] = "";
  if (gmtime_r(&time, &parts) != nullptr)
    std::strftime(text, sizeof text, "%m-%d-%Y %H:%M:%S", &parts);
  return text;
}

std::string typeText(std::uint32_t flags, const std::string& endianText) {
  if ((flags & 3) == 0) return endianText;  // the line repeats the one above it
  return std::string((flags & 1) != 0 ? "REFERENCE" : "RANGE") +
         ((flags & 4) != 0 ? " STATE CUT" : "");
}

void dumpLine(LogBook& log, const std::string& text) {
  log.record(kDebug, "apiutil", kAnyLine, 0, "Debug Control Record", text);
}

template <std::size_t N>
void dumpWords(LogBook& log, const Bytes& record, const Label (&labels)[N]) {
  for (const Label& label : labels) {
    const auto value = static_cast<std::int32_t>(le::get<4>(record.data() + label.offset));
    dumpLine(log, label.text + std::to_string(value));
  }
}

std::string openFailure(const std::string& what, const std::string& name) {
  return "Could not open " + what + ": " + name + "\nErrno = " + std::to_string(ENOENT) + " : " +
         std::strerror(ENOENT) + "\n";
}

}  // namespace

std::uint32_t Cut::word(std::size_t offset) const { return le::get<4>(refRecord.data() + offset); }

void Cut::setWord(std::size_t offset, std::uint32_t value) {
  le::put<4>(refRecord.data() + offset, value);
}

int Cut::openReference() {
  if (!in.ref) {
    log.record(kError, "dbaccess", kAnyLine, 0, "Error", openFailure("ref/city db", in.refName));
    return -10;
  }
  log.record(kInfo, "dbaccess", kAnyLine, 0, "Info", "Opened ref/city db: " + in.refName);
  log.required("dbaccess", kAnyLine, "Info Message", "Reference Control Record", kRefRecordSize);
  if (in.ref->size() < kRefRecordSize) {
    log.readRefError("control record");
    log.record(kError, "dbaccess", kAnyLine, 0, "Warning",
               "Could not read ref/city db control record.");
    return -12;
  }
  refRecord.assign(in.ref->begin(), in.ref->begin() + kRefRecordSize);
  reportEmptyPartitions();
  if ((word(24) & 1) == 0) {
    log.record(kError, "dbaccess", kAnyLine, 0, "RefDB Read Err",
               "Could not read Reference db partition: Ref/City DB Type Incorrect");
    return -1;
  }
  dumpReference();
  return 0;
}

int Cut::openRange() {
  if (!in.rng) {
    log.record(kError, "dbaccess", kAnyLine, 0, "Error", openFailure("range/zip4 db", in.rngName));
    return -11;
  }
  log.record(kInfo, "dbaccess", kAnyLine, 0, "Info", "Opened range/zip4 db: " + in.rngName);
  if (in.rng->size() < kRngRecordSize) {
    log.readRangeError("Range Control Record");
    log.record(kError, "dbaccess", kAnyLine, 0, "Error",
               "Could not read range/zip4 db control record.");
    return -12;
  }
  rngRecord.assign(in.rng->begin(), in.rng->begin() + kRngRecordSize);
  if ((le::get<4>(rngRecord.data() + 24) & 2) == 0) {
    log.record(kError, "dbaccess", kAnyLine, 0, "RngDB Err",
               "Could not read Range db record: Range/Zip4 DB Type Incorrect");
    return -1;
  }
  dumpRange();
  return 0;
}

void Cut::reportEmptyPartitions() {
  const std::vector<std::vector<std::size_t>> tested = {
      {212, 216, 220}, {188, 180, 184}, {132}, {136}, {192, 196}, {236}, {200},
      {204},           {208},           {144}, {156}, {168},      {176}, {224}};
  int empty = 0;
  for (std::size_t i = 0; i < tested.size(); ++i) {
    bool anyZero = false;
    for (const std::size_t offset : tested[i]) anyZero = anyZero || word(offset) == 0;
    if (!anyZero) continue;
    ++empty;
    log.record(kInfo, "dbaccess", kAnyLine, 0, "Info Message",
               "partition " + std::to_string(i + 1) + " is empty.");
  }
  if (empty == 0) return;
  for (const std::string& text :
       {"There are " + std::to_string(empty) + " empty partitions in the ",
        std::string("reference database."), std::string("See log file.")})
    log.record(kDebug, "dbaccess", kAnyLine, 0, "Debug Message", text);
}

void Cut::dumpHeader(const Bytes& record) {
  const std::string endian = record[19] == 1 ? "LITTLE ENDIAN" : "BIG ENDIAN";
  const std::uint32_t cutStamp = le::get<4>(record.data() + 28);
  dumpLine(log, "Version and Release      : " + versionText(record));
  dumpLine(log, "Copyright Date           : " + copyrightText(record));
  dumpLine(log, "Build Time Stamp         : " + timeText(le::get<4>(record.data() + 20)));
  dumpLine(log,
           std::string("Character Type           : ") + (record[18] == 1 ? "ASCII" : "EBCDIC"));
  dumpLine(log, "Endian Type              : " + endian);
  dumpLine(log, "Data Base Type           : " + typeText(le::get<4>(record.data() + 24), endian));
  dumpLine(log,
           "State Cut Time Stamp     : " + (cutStamp == 0 ? "not state cut" : timeText(cutStamp)));
}

void Cut::dumpReference() {
  dumpLine(log, "------- Reference database control record ------");
  dumpHeader(refRecord);
  dumpLine(log, "--------- Counts ----------------------------------");
  dumpWords(log, refRecord, kRefCounts);
  dumpLine(log, "------- RBAS --------------------------------------");
  dumpWords(log, refRecord, kRefRbas);
  dumpLine(log, "---------------- end control record -----------");
}

void Cut::dumpRange() {
  dumpLine(log, "------- Range database control record ------");
  dumpHeader(rngRecord);
  dumpLine(log, "--------- Counts ----------------------------------");
  dumpWords(log, rngRecord, kRngCounts);
  dumpLine(log, "------- RBAS --------------------------------------");
  dumpWords(log, rngRecord, kRngRbas);
  dumpLine(log, "---------------- end control record -----------");
}

}  // namespace statecut::secondcut
