#include "unit/cut/cutfixture.h"

#include <algorithm>

#include "base/cmdline.h"
#include "base/memory.h"
#include "base/stream.h"
#include "cut/openfiles.h"

namespace statecut::test {

namespace {

// Keeps a block that a test makes: it may be released by the product, replaced, or stay to the end.
template <typename Block>
Block* keep(Block* block) {
  static auto* kept = new std::vector<void*>;
  kept->push_back(block);
  return block;
}

}  // namespace

CutFixture::CutFixture() {
  proc.refControlRec = static_cast<RefControlRec*>(keep(allocTable(RefControlRec::size)));
  proc.rngControlRec = static_cast<RngControlRec*>(keep(allocTable(RngControlRec::size)));
  cmdLine = {};
  refPointers.fill(RefSlot{});
  forgetEarlierCut();
}

CutFixture::~CutFixture() { keepTables(); }

void CutFixture::keepTables() {
  for (const RefSlot& slot : refPointers) keep(slot.table);
  keep(proc.refControlRec);
  keep(proc.rngControlRec);
  keep(scZipCodeIndex);
  keep(scCityNames);
  keep(scCityNamesByState);
  keep(scCityPhonetics);
  keep(cityKeys);
  keep(multiZipKeys);
  keep(cityNameMap);
  keep(cityPhNameMap);
}

void CutFixture::openSources(std::span<const unsigned char> reference,
                             std::span<const unsigned char> range) {
  write("source.ref", {reference.begin(), reference.end()});
  write("source.rng", {range.begin(), range.end()});
  proc.files->reference = streamOpen(path("source.ref").c_str(), "rb");
  proc.files->range = streamOpen(path("source.rng").c_str(), "rb");
}

void CutFixture::openOutputs() {
  newRefDb = streamOpen(path("out.ref").c_str(), "wb");
  newRangeDb = streamOpen(path("out.rng").c_str(), "wb");
  totalBytes = 0;
  totalRngBytes = 0;
}

void CutFixture::start(const Bytes& source) {
  source_ = source;
  openSources(source, source);
  openOutputs();
}

Bytes CutFixture::writtenReference() {
  streamFlush(newRefDb);
  return contents("out.ref");
}

Bytes CutFixture::writtenRange() {
  streamFlush(newRangeDb);
  return contents("out.rng");
}

void CutFixture::setStates(const std::vector<std::string>& states) {
  cmdLine.stateCount = 0;
  for (const std::string& state : states) {
    char* to = cmdLine.states[cmdLine.stateCount++];
    to[0] = state[0];
    to[1] = state[1];
    to[2] = '\0';
  }
}

void CutFixture::setNames(const std::string& ref, const std::string& range,
                          const std::string& refOut, const std::string& rangeOut,
                          const std::string& stateFile) {
  const std::string* given[] = {&ref, &range, &refOut, &rangeOut, &stateFile};
  char** fields[] = {&cmdLine.refDb, &cmdLine.rangeDb, &cmdLine.refOut, &cmdLine.rangeOut,
                     &cmdLine.stateFile};
  for (std::size_t i = 0; i < 5; ++i) {
    names_[i] = given[i]->empty() || given[i]->front() == '/' ? *given[i] : path(*given[i]);
    *fields[i] = names_[i].empty() ? nullptr : names_[i].data();
  }
}

void* CutFixture::makeBlock(SlotNumber slot, std::size_t bytes) {
  void* block = keep(allocTable(bytes));
  refPointers[slot].table = static_cast<unsigned char*>(block);
  return block;
}

void CutFixture::makeZipIndex() {
  scZipCodeIndex = static_cast<ZipIndexRow*>(keep(allocTable(kZipIndexBytes)));
}

void CutFixture::select(std::uint32_t zip, std::uint32_t key) {
  scZipCodeIndex[zip].set(ZipIndexRow::zipKey, key);
}

Bytes pattern(std::size_t count, unsigned seed) {
  Bytes bytes(count);
  std::uint32_t state = seed * 2654435761u + 1;
  for (unsigned char& byte : bytes) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<unsigned char>(state >> 24);
  }
  return bytes;
}

Bytes slice(const Bytes& bytes, std::size_t at, std::size_t count) {
  if (at >= bytes.size()) return {};
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
  return {first, first + static_cast<std::ptrdiff_t>(std::min(count, bytes.size() - at))};
}

}  // namespace statecut::test
