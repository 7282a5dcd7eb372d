#include "unit/cut/cutbench.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "base/cmdline.h"
#include "base/memory.h"
#include "base/stream.h"
#include "cut/openfiles.h"

namespace cutbench {

using namespace statecut;

namespace {

// Keeps a block that a test makes: it may be released by the product, replaced, or stay to the end.
template <typename Block>
Block* keep(Block* block) {
  static auto* kept = new std::vector<void*>;
  kept->push_back(block);
  return block;
}

}  // namespace

CutBench::CutBench() {
  const char* base = std::getenv("TMPDIR");
  folder_ = std::string(base == nullptr ? "/tmp" : base) + "/cutbenchXXXXXX";
  if (::mkdtemp(folder_.data()) == nullptr) std::abort();
  proc.files = &proc.fileRecord;
  proc.stats = &proc.statistics;
  proc.options = &options_;
  proc.logLevel = 5;
  proc.refControlRec = static_cast<RefControlRec*>(keep(allocTable(RefControlRec::size)));
  proc.rngControlRec = static_cast<RngControlRec*>(keep(allocTable(RngControlRec::size)));
  proc.files->log = streamOpen(path("log").c_str(), "a+");
  pProcObj = &proc;
  cmdLine = {};
  refPointers.fill(RefSlot{});
  forgetEarlierCut();
}

CutBench::~CutBench() {
  keepTables();
  streamClose(proc.files->log);
  std::filesystem::remove_all(folder_);
}

void CutBench::keepTables() {
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

void CutBench::writeFile(const std::string& name, std::span<const unsigned char> bytes) const {
  std::ofstream out(path(name), std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

Bytes CutBench::readFile(const std::string& name) const {
  std::ifstream in(path(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void CutBench::openSources(std::span<const unsigned char> reference,
                           std::span<const unsigned char> range) {
  writeFile("source.ref", reference);
  writeFile("source.rng", range);
  proc.files->reference = streamOpen(path("source.ref").c_str(), "rb");
  proc.files->range = streamOpen(path("source.rng").c_str(), "rb");
}

void CutBench::openOutputs() {
  newRefDb = streamOpen(path("out.ref").c_str(), "wb");
  newRangeDb = streamOpen(path("out.rng").c_str(), "wb");
  totalBytes = 0;
  totalRngBytes = 0;
}

Bytes CutBench::writtenReference() {
  streamFlush(newRefDb);
  return readFile("out.ref");
}

Bytes CutBench::writtenRange() {
  streamFlush(newRangeDb);
  return readFile("out.rng");
}

void CutBench::setStates(const std::vector<std::string>& states) {
  cmdLine.stateCount = 0;
  for (const std::string& state : states) {
    char* to = cmdLine.states[cmdLine.stateCount++];
    to[0] = state[0];
    to[1] = state[1];
    to[2] = '\0';
  }
}

void CutBench::setNames(const std::string& ref, const std::string& range, const std::string& refOut,
                        const std::string& rangeOut, const std::string& stateFile) {
  const std::string* given[] = {&ref, &range, &refOut, &rangeOut, &stateFile};
  char** fields[] = {&cmdLine.refDb, &cmdLine.rangeDb, &cmdLine.refOut, &cmdLine.rangeOut,
                     &cmdLine.stateFile};
  for (std::size_t i = 0; i < 5; ++i) {
    names_[i] = given[i]->empty() || given[i]->front() == '/' ? *given[i] : path(*given[i]);
    *fields[i] = names_[i].empty() ? nullptr : names_[i].data();
  }
}

std::vector<std::string> CutBench::log() {
  std::ifstream in(path("log"));
  std::vector<std::string> records;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string time, severity, site, process, rest;
    std::getline(fields, time, ';');
    std::getline(fields, severity, ';');
    std::getline(fields, site, ';');
    std::getline(fields, process, ';');
    std::getline(fields, rest);
    records.push_back(severity + ";" + site + ";" + rest);
  }
  std::filesystem::resize_file(path("log"), 0);
  return records;
}

void* CutBench::makeBlock(SlotNumber slot, std::size_t bytes) {
  void* block = keep(allocTable(bytes));
  refPointers[slot].table = static_cast<unsigned char*>(block);
  return block;
}

void CutBench::makeZipIndex() {
  scZipCodeIndex = static_cast<ZipIndexRow*>(keep(allocTable(kZipIndexBytes)));
}

void CutBench::select(std::uint32_t zip, std::uint32_t key) {
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

}  // namespace cutbench
