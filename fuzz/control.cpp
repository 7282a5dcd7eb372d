// The control records of a damaged pair: opened, read, checked and dumped by the cut and by the
// library, and described by `statedb info`.

#include <sstream>

#include "base/cmdline.h"
#include "base/memory.h"
#include "basepair.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"
#include "info/info.h"
#include "log/utllgmsg.h"

using namespace statecut;
using namespace statecut::fuzz;

namespace {

struct Context {
  ProcObj proc{};
  OptionsRecord options{};

  explicit Context(std::int32_t level) {
    proc.files = &proc.fileRecord;
    proc.stats = &proc.statistics;
    proc.options = &options;
    pProcObj = &proc;
    if (utlInitLog(level, kLogPath, &proc) != 0) finding("the log cannot be opened");
  }
  ~Context() {
    streamClose(proc.fileRecord.reference);
    streamClose(proc.fileRecord.range);
    utlLogMsgClose(&proc.fileRecord.log);
    freeTable(proc.refControlRec);
    freeTable(proc.rngControlRec);
    pProcObj = nullptr;
  }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
};

void openForCut() {
  Context context(kDebug);
  cmdLine.refDb = const_cast<char*>(kRefPath);
  cmdLine.rangeDb = const_cast<char*>(kRngPath);
  openRefDb();
  openRangeDb();
  cmdLine.refDb = nullptr;
  cmdLine.rangeDb = nullptr;
}

void openForLookups() {
  Context context(kInfo);
  ProcObj& proc = context.proc;
  proc.files->reference = dbOpenRefDB(&proc, kRefPath);
  proc.files->range = dbOpenRangeDB(&proc, kRngPath);
  if (proc.files->reference != nullptr) dbReadRefControlRec(proc.files->reference, &proc);
  if (proc.files->range != nullptr)
    proc.rngControlRec = dbReadRangeControlRec(proc.files->range, &proc);
  evalTimeStamps(proc.refControlRec, proc.rngControlRec, &proc);
  dbDebugControlRecord(&proc);
  dbDebugRngControlRec(&proc);
}

void describeBoth(const DamagedPair& pair) {
  static std::ostringstream out;
  out.str({});
  out.clear();
  const std::vector<info::FileInfo> files = {info::describe("ref", pair.ref().bytes()),
                                             info::describe("rng", pair.rng().bytes())};
  for (const info::FileInfo& file : files) info::printText(out, file);
  info::printJson(out, files);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quietProcess();
  Input input(data, size);
  DamagedPair pair(input);
  diskStart();
  pair.mount();
  diskSink(kLogPath);
  openForCut();
  openForLookups();
  describeBoth(pair);
  expectNothingLeft("closed databases");
  return 0;
}
