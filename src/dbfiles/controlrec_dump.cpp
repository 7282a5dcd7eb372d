#include <array>
#include <cstddef>
#include <cstdio>
#include <span>

#include "base/clock.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/reports.h"

namespace statecut {

namespace {

using Ref = RefControlRec;
using Rng = RngControlRec;

struct LabelledWord {
  const char* label;
  std::size_t at;
};

constexpr std::array<LabelledWord, 32> kRefCounts{{
    {"City Names USPS and Standard   : ", Ref::cityNamesCount.at},
    {"City Phonetics                 : ", Ref::cityPhoneticsCount.at},
    {"Street Names USPS              : ", Ref::streetNamesCount.at},
    {"Street Names USPS Bytes        : ", Ref::streetNamesBytes.at},
    {"Street Phonetics               : ", Ref::streetPhoneticsCount.at},
    {"Street Phonetics Bytes         : ", Ref::streetPhoneticsBytes.at},
    {"Street Phntc Ambig Data Bytes  : ", Ref::streetPhoneticAmbDataBytes.at},
    {"Street Standardized Names      : ", Ref::streetStandardsCount.at},
    {"Street Stndrdzed Names Bytes   : ", Ref::streetStandardsBytes.at},
    {"Street Stnd Ambig Data Bytes   : ", Ref::streetStandardAmbDataBytes.at},
    {"Firms                          : ", Ref::firmsCount.at},
    {"Firms Bytes                    : ", Ref::firmsBytes.at},
    {"Multi Zip Lists for City       : ", Ref::cityMultiZipListsCount.at},
    {"Multi Finance Lists for City   : ", Ref::cityMultiFinanceListsCount.at},
    {"City Data                      : ", Ref::cityDataCount.at},
    {"Zip Code Data                  : ", Ref::zipDataCount.at},
    {"Multi City Lists for Zip       : ", Ref::zipMultiCityListsCount.at},
    {"Counties                       : ", Ref::countiesCount.at},
    {"Urbanizations                  : ", Ref::urbsCount.at},
    {"Urb Variations                 : ", Ref::urbVariationsCount.at},
    {"Street Patterns                : ", Ref::streetPatternsCount.at},
    {"POB Patterns                   : ", Ref::pobPatternsCount.at},
    {"RR Patterns                    : ", Ref::rrPatternsCount.at},
    {"General Delivery               : ", Ref::generalDeliveryCount.at},
    {"Unique Zips                    : ", Ref::uniqueZipsCount.at},
    {"SCFs                           : ", Ref::scfsCount.at},
    {"Multi Zip Lists for City n Zip : ", Ref::multiZipListsCount.at},
    {"Multi Zip RBAs for City        : ", Ref::cityMultiZipRbasCount.at},
    {"Fin Multi Zip RBAs 4 Cty n Zip : ", Ref::finMultiZipRbasCount.at},
    {"SFH Multi-Zip Bytes            : ", Ref::sfhMultiZipBytesCount.at},
    {"POB Multi-Zip Bytes            : ", Ref::pobMultiZipBytesCount.at},
    {"RR Multi-Zip Bytes             : ", Ref::rrMultiZipBytesCount.at},
}};

constexpr std::array<LabelledWord, 42> kRefRbas{{
    {"Street Patterns            : ", Ref::streetPatternsRba.at},
    {"POB Patterns               : ", Ref::pobPatternsRba.at},
    {"RR Pattern                 : ", Ref::rrPatternsRba.at},
    {"Street Names USPS          : ", Ref::streetNamesRba.at},
    {"Street RBOs (aka Keys)     : ", Ref::streetRbosRba.at},
    {"Firm Names                 : ", Ref::firmsRba.at},
    {"Firm RBOs (aka Keys)       : ", Ref::firmRbosRba.at},
    {"City Data                  : ", Ref::cityDataRba.at},
    {"City Multi Zip Lists       : ", Ref::cityMultiZipListsRba.at},
    {"City Multi Finance Lists   : ", Ref::cityMultiFinanceListsRba.at},
    {"City Multi Zip RBA Data    : ", Ref::cityMultiZipRbasRba.at},
    {"Fin Multi Zip RBA Data     : ", Ref::finMultiZipRbasRba.at},
    {"City Names USPS            : ", Ref::cityNamesRba.at},
    {"City Names By State        : ", Ref::cityNamesByStateRba.at},
    {"City Phonetics             : ", Ref::cityPhoneticsRba.at},
    {"Zip Code Data              : ", Ref::zipDataRba.at},
    {"Zip Multi City Lists       : ", Ref::zipMultiCityListsRba.at},
    {"Zip Code Index Table       : ", Ref::zipIndexRba.at},
    {"Unique Zip Data            : ", Ref::uniqueZipsRba.at},
    {"County Data                : ", Ref::countiesRba.at},
    {"Urbanizations              : ", Ref::urbsRba.at},
    {"Urb Multi Zip Lists        : ", Ref::urbMultiZipListsRba.at},
    {"Urb Variations             : ", Ref::urbVariationsRba.at},
    {"Street Phonetic Amb Data   : ", Ref::streetPhoneticAmbDataRba.at},
    {"Street Phonetics           : ", Ref::streetPhoneticsRba.at},
    {"Street Phonetics RBOs      : ", Ref::streetPhoneticsRbosRba.at},
    {"Street Standard Amb Data   : ", Ref::streetStandardAmbDataRba.at},
    {"Street Names Standardized  : ", Ref::streetStandardsRba.at},
    {"Street Standards RBOs      : ", Ref::streetStandardsRbosRba.at},
    {"General Delivery           : ", Ref::generalDeliveryRba.at},
    {"SCFs                       : ", Ref::scfsRba.at},
    {"Multi Zip Lists            : ", Ref::multiZipListsRba.at},
    {"Zip Bytes                  : ", Ref::zipBytesRba.at},
    {"POB Multi Zip Bytes        : ", Ref::pobMultiZipBytesRba.at},
    {"RR Multi Zip Bytes         : ", Ref::rrMultiZipBytesRba.at},
    {"SFH Multi Zip Bytes        : ", Ref::sfhMultiZipBytesRba.at},
    {"Hash Table                 : ", Ref::hashTableRba.at},
    {"Hash Table Count           : ", Ref::hashTableCount.at},
    {"Hash Overflow              : ", Ref::hashOverflowRba.at},
    {"Hash Overflow Count        : ", Ref::hashOverflowCount.at},
    {"Military RBA               : ", Ref::militaryRba.at},
    {"PO BOX Zone RBA            : ", Ref::pobZonesRba.at},
}};

constexpr std::array<LabelledWord, 11> kRngCounts{{
    {"SFH Zip Bytes               : ", Rng::sfhZipBytes.at},
    {"SFH Multi Zip Bytes         : ", Rng::sfhMultiZipBytes.at},
    {"SFH Zip Max Street Count    : ", Rng::sfhZipMaxStreets.at},
    {"SFH Multi Zip Max Street Cnt: ", Rng::sfhMultiZipMaxStreets.at},
    {"POB Zip Bytes               : ", Rng::pobZipBytes.at},
    {"POB Multi Zip Bytes         : ", Rng::pobMultiZipBytes.at},
    {"RR Zip Bytes                : ", Rng::rrZipBytes.at},
    {"RR Multi Zip Bytes          : ", Rng::rrMultiZipBytes.at},
    {"RR Zip Max Street Count     : ", Rng::rrZipMaxStreets.at},
    {"RR Multi Zip Max Street Cnt : ", Rng::rrMultiZipMaxStreets.at},
    {"Max Range Overheads         : ", Rng::maxRangeOverheads.at},
}};

constexpr std::array<LabelledWord, 6> kRngRbas{{
    {"SFH Zip partition start       : ", Rng::sfhZipStart.at},
    {"POB Zip partition start       : ", Rng::pobZipStart.at},
    {"RR Zip partition start        : ", Rng::rrZipStart.at},
    {"SFH Multi Zip partition start : ", Rng::sfhMultiZipStart.at},
    {"POB Multi Zip partition start : ", Rng::pobMultiZipStart.at},
    {"RR Multi Zip partition start  : ", Rng::rrMultiZipStart.at},
}};

constexpr char kTitle[] = "Debug Control Record";

constexpr LogSource kRefDump{kApiutil, 8000};
constexpr LogSource kRngDump{kApiutil, 9000};

// The context and the places of a dump; each record has the line of its caller.
struct Dump {
  ProcObj* proc;
  LogSource source;

  void line(const char* text, int at = __builtin_LINE()) const {
    utlWriteLogMsg(proc, source.name, source.line(at), kDebug, kTitle, kReasonNone, kMsgText, text);
  }
  void labelled(const char* label, const char* text, int at = __builtin_LINE()) const {
    utlWriteLogMsg(proc, source.name, source.line(at), kDebug, kTitle, kReasonNone, kMsgTextText,
                   label, text);
  }
  void words(const unsigned char* record, std::span<const LabelledWord> rows,
             int at = __builtin_LINE()) const {
    for (const LabelledWord& row : rows) {
      // Deliberate: numbers above 2147483647 are shown negative, as in every numbered message.
      utlWriteLogMsg(proc, source.name, source.line(at), kDebug, kTitle, kReasonNone,
                     kMsgTextNumber, row.label,
                     static_cast<std::int32_t>(le::get<4>(record + row.at)));
    }
  }
};

// The identification header, which both record types share.
template <typename Record>
void header(const Dump& to, const Record& record) {
  char text[kStampTextSize];
  to.labelled("Version and Release      : ", formatVersion(record.get(Record::version).data()));
  to.labelled("Copyright Date           : ",
              formatCopyRight(record.get(Record::copyrightDate).data()));
  formatLocalTime(text, sizeof text, kStampFormat, record.get(Record::buildTimeStamp));
  to.labelled("Build Time Stamp         : ", text);
  to.labelled("Character Type           : ",
              record.get(Record::characterType) == 1 ? "ASCII" : "EBCDIC");
  const char* value = record.get(Record::endianType) == 1 ? "LITTLE ENDIAN" : "BIG ENDIAN";
  to.labelled("Endian Type              : ", value);

  // Deliberate: with neither type flag the type line repeats the endian text; dumps of such files
  // have always read so.
  const std::uint32_t flags = record.get(Record::typeFlags);
  const bool cut = (flags & kTypeStateCut) != 0;
  if ((flags & kTypeReference) != 0) {
    value = cut ? "REFERENCE STATE CUT" : "REFERENCE";
  } else if ((flags & kTypeRange) != 0) {
    value = cut ? "RANGE STATE CUT" : "RANGE";
  }
  to.labelled("Data Base Type           : ", value);
  const std::uint32_t stamp = record.get(Record::stateCutTimeStamp);
  formatLocalTime(text, sizeof text, kStampFormat, stamp);
  to.labelled("State Cut Time Stamp     : ", stamp == 0 ? "not state cut" : text);
}

template <typename Record>
void dump(const Dump& to, const Record& record, const char* title,
          std::span<const LabelledWord> counts, std::span<const LabelledWord> rbas) {
  to.line(title);
  header(to, record);
  to.line("--------- Counts ----------------------------------");
  to.words(record.bytes.data(), counts);
  to.line("------- RBAS --------------------------------------");
  to.words(record.bytes.data(), rbas);
  to.line("---------------- end control record -----------");
}

}  // namespace

void dbDebugControlRecord(ProcObj* proc) {
  if (proc == nullptr || proc->refControlRec == nullptr) return;
  traceEntering(proc, kRefDump, __LINE__, "dbDebugControlRecord");
  dump(Dump{proc, kRefDump}, *proc->refControlRec,
       "------- Reference database control record ------", kRefCounts, kRefRbas);
  traceLeaving(proc, kRefDump, __LINE__, "dbDebugControlRecord");
}

void dbDebugRngControlRec(ProcObj* proc) {
  if (proc == nullptr || proc->rngControlRec == nullptr) return;
  traceEntering(proc, kRngDump, __LINE__, "dbDebugRngControlRec");
  dump(Dump{proc, kRngDump}, *proc->rngControlRec, "------- Range database control record ------",
       kRngCounts, kRngRbas);
  traceLeaving(proc, kRngDump, __LINE__, "dbDebugRngControlRec");
}

}  // namespace statecut
