// The builder's reader of places in CSV, and the models of what it accepts.

#include <sys/mman.h>
#include <unistd.h>

#include <set>
#include <string>

#include "basepair.h"
#include "dbbuilder/places.h"
#include "dbbuilder/profiles.h"

using namespace statecut;
using namespace statecut::fuzz;

namespace {

void checkPlaces(const std::vector<builder::Place>& places) {
  if (places.empty()) finding("no place and no error");
  std::set<std::uint32_t> zips;
  for (const builder::Place& place : places) {
    if (place.zip == 0 || place.zip > 99999) finding("a ZIP code out of range");
    if (!zips.insert(place.zip).second) finding("a ZIP code twice");
    if (place.state.size() != 2 || place.city.empty() || place.city.size() > 28)
      finding("a text that no record holds");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quietProcess();
  static const int file = memfd_create("statecut-fuzz", MFD_CLOEXEC);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  static std::size_t held = 0;
  if (pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) finding("no memory file");
  if (size != held && ftruncate(file, static_cast<off_t>(size)) != 0) finding("no memory file");
  held = size;

  std::vector<builder::Place> places;
  std::string error;
  if (!builder::readPlaces(path, places, error)) {
    if (error.empty()) finding("refused without a reason");
    return 0;
  }
  checkPlaces(places);
  // A model takes far longer than the reader: only of few places, and not of each input.
  if (places.size() > 6 || size % 32 != 0) return 0;
  builder::ProfileOptions options = builder::tinyOptions();
  options.rangeBytes = 1000;
  options.streets = 8;
  options.firms = 2;
  const builder::Model model = builder::makeModel(places, options);
  if (model.zips.size() != places.size() + 1) finding("a place is missing from its model");
  return 0;
}
