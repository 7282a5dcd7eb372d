// A whole cut of a damaged pair, from the command line to the closed files; then what the outputs
// hold, and `verify` of them.

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "basepair.h"
#include "dbfiles/controlrec.h"
#include "format/directory.h"
#include "run/statetable.h"
#include "verify/verify.h"

using namespace statecut;
using namespace statecut::fuzz;

namespace {

// Settings, a byte of bits; the log level in the low three.
constexpr std::uint8_t kVerify = 0x18;  // all of them
constexpr std::uint8_t kLargeTables = 0xE0;

std::string statesFrom(Input& input) {
  std::string list;
  const auto& states = pool().states;
  for (std::size_t left = input.below(8); left > 0; --left) {
    const std::uint8_t way = input.u8();
    list +=
        way < 192 ? states[way % states.size()] : std::string(abvstates[way % abvstates.size()]);
    list += '\n';
  }
  return list;
}

bool tablesFit(std::span<const unsigned char> file) {
  for (std::size_t i = 0; i < format::kTables; ++i) {
    const auto place = format::placeTable(static_cast<format::TableId>(i), file);
    if (place.carried && !place.fits) return false;
  }
  return true;
}

// What every finished cut keeps, whatever its source holds.
void checkOutputs(const DamagedPair& pair) {
  const Bytes* const ref = diskOutput(kOutRefPath);
  const Bytes* const rng = diskOutput(kOutRngPath);
  if (ref == nullptr || rng == nullptr) finding("a finished cut has no output");
  if (ref->size() < RefControlRec::size || rng->size() < RngControlRec::size)
    finding("an output ends in its control record");
  constexpr std::size_t kFlags = RefControlRec::typeFlags.at;
  static_assert(kFlags == RngControlRec::typeFlags.at);
  for (const Bytes* file : {ref, rng})
    if ((le::get<4>(file->data() + kFlags) & kTypeStateCut) == 0)
      finding("an output is not marked as a cut");
  if (pair.ref().size() >= RefControlRec::size && tablesFit(pair.ref().bytes()) && !tablesFit(*ref))
    finding("a table of the cut does not fit its file");
}

// A file that `verify` can map; kept for the next run.
class MappableFile {
 public:
  void hold(std::span<const unsigned char> bytes) {
    if (ftruncate(fd_, 0) != 0 || write(fd_, bytes) != static_cast<ssize_t>(bytes.size()))
      finding("no memory file");
  }
  [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(fd_); }

 private:
  static ssize_t write(int fd, std::span<const unsigned char> bytes) {
    return pwrite(fd, bytes.data(), bytes.size(), 0);
  }
  int fd_ = memfd_create("statecut-fuzz", MFD_CLOEXEC);
};

void runVerify(const DamagedPair& pair, const std::string& states) {
  static MappableFile files[4];
  files[0].hold(pair.ref().bytes());
  files[1].hold(pair.rng().bytes());
  verify::Options options;
  options.ref = files[0].path();
  options.rng = files[1].path();
  std::string error;
  const verify::Report source = verify::check(options, error);
  const Bytes* const ref = diskOutput(kOutRefPath);
  const Bytes* const rng = diskOutput(kOutRngPath);
  if (ref == nullptr || rng == nullptr) return;
  files[2].hold(*ref);
  files[3].hold(*rng);
  options = {files[2].path(), files[3].path(), files[0].path(), files[1].path(), states, {}, false};
  error.clear();
  const verify::Report report = verify::check(options, error);
  if (!pair.changed() && pair.kind() == kWhole && !states.empty() && !report.clean())
    finding("a cut of the whole pair does not verify");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quietProcess();
  Input input(data, size);
  DamagedPair pair(input);
  const std::uint8_t bits = input.u8();
  const std::string states = statesFrom(input);
  DiskLimits limits;
  // Tables and copies of more than this are refused as on a small machine with a small disk: that
  // they work is tested elsewhere.
  if ((bits & kLargeTables) == kLargeTables) limits.blockBytes = std::uint64_t{64} << 20;
  diskStart(limits);
  pair.mount();
  const std::int32_t status = runCut(states, bits % 6);
  if (diskInputHarmed()) finding("a cut opens an input for writing");
  if (!pair.changed() && pair.kind() == kWhole && status != 0)
    finding("the whole pair cannot be cut");
  if (status == 0) checkOutputs(pair);
  if ((bits & kVerify) == kVerify) runVerify(pair, states);
  return 0;
}
