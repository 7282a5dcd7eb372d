#include "basepair.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/clock.h"
#include "base/procobj.h"
#include "cut/openfiles.h"
#include "cut/workstate.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/rangefile.h"
#include "dbbuilder/writer.h"
#include "dbfiles/controlrec.h"
#include "format/directory.h"
#include "run/rundriver.h"
#include "run/settings.h"
#include "tables/refpointers.h"

namespace statecut::fuzz {

namespace {

builder::Model microModel() {
  std::vector<builder::Place> places = {
      {501, "NY", "HOLTSVILLE", "SUFFOLK"},       {601, "PR", "ADJUNTAS", "ADJUNTAS"},
      {5401, "VT", "SAINT ALBANS", "CHITTENDEN"}, {5402, "VT", "SAINT ALBANS", "CHITTENDEN"},
      {73001, "OK", "ALBERT", "CADDO"},           {75001, "TX", "ADDISON", "DALLAS"},
      {75002, "TX", "ALLEN", "COLLIN"},           {75003, "TX", "ALLEN", "COLLIN"},
      {75004, "TX", "MOUNT PLEASANT", "TITUS"},
  };
  builder::ProfileOptions options;
  options.rangeBytes = 3000;
  options.streets = 9;
  options.firms = 4;
  options.severalCitiesEvery = 3;
  return builder::makeModel(std::move(places), options);
}

struct Base {
  DamagedFile ref;
  DamagedFile rng;
};

void addVariations(Pool& made, const std::vector<builder::Variation>& from) {
  for (const builder::Variation& variation : from) made.texts.push_back(variation.name);
}

Pool poolOf(const builder::Model& model) {
  Pool made;
  const auto packed = [&made](const std::vector<std::string>& names) {
    std::uint32_t offset = 0;
    for (const std::string& name : names) {
      made.texts.push_back(name);
      made.numbers.push_back(offset);
      offset += static_cast<std::uint32_t>(name.size()) + 1;
    }
  };
  for (std::uint32_t i = 0; i <= model.cityNames.size(); ++i) made.numbers.push_back(i);
  for (const builder::ZipRecord& zip : model.zips) made.numbers.push_back(zip.zip);
  packed(model.streetNames);
  packed(model.firmNames);
  addVariations(made, model.streetPhonetics);
  addVariations(made, model.streetStandards);
  for (const builder::CityName& city : model.cityNames) {
    made.texts.push_back(city.name);
    made.texts.push_back(city.state + city.name);
    if (city.state.size() == 2) made.states.push_back(city.state);
  }
  for (const builder::CityPhonetic& phonetic : model.cityPhonetics) {
    made.texts.push_back(phonetic.key);
    made.texts.push_back(phonetic.state + phonetic.key);
  }
  made.states.erase(std::unique(made.states.begin(), made.states.end()), made.states.end());
  return made;
}

struct Bases {
  std::array<Base, kBaseKinds> pairs;
  Pool pool;

  Bases() {
    builder::Model model = microModel();
    pool = poolOf(model);
    const Bytes range = builder::rangeFile(model.range);
    for (const BaseKind kind : {kWhole, kShortIndex}) pairs[kind].rng.assign(range);
    pairs[kWhole].ref.assign(builder::referenceFile(model).bytes);
    makeCut();
    // The bytes of two ZIP codes; the rest of the index is what stands behind it.
    model.raw[builder::Table::ZipIndex] = Bytes(1204);
    pairs[kShortIndex].ref.assign(builder::referenceFile(model).bytes);
  }

  void makeCut() {
    diskStart();
    diskInput(kRefPath, pairs[kWhole].ref.bytes().data(), pairs[kWhole].ref.size());
    diskInput(kRngPath, pairs[kWhole].rng.bytes().data(), pairs[kWhole].rng.size());
    if (runCut("TX\nVT\n", 3) != 0) finding("the whole pair cannot be cut");
    pairs[kCutPair].ref.assign(*diskOutput(kOutRefPath));
    pairs[kCutPair].rng.assign(*diskOutput(kOutRngPath));
  }
};

Bases& bases() {
  static Bases* const made = new Bases;
  return *made;
}

const format::TableDef& tableOf(Input& input) {
  return format::tableDefs()[input.below(format::kTables)];
}

std::time_t fixedTime() { return 1767225600; }

}  // namespace

const Pool& pool() { return bases().pool; }

std::uint32_t DamagedFile::word(std::size_t at) const {
  return at + 4 <= size_ ? le::get<4>(room_.data() + at) : 0;
}

void DamagedFile::assign(const Bytes& original) {
  room_ = original;
  room_.resize(original.size() + kExtension);
  size_ = originalSize_ = original.size();
}

void DamagedFile::store(std::size_t at, std::span<const unsigned char> bytes) {
  if (bytes.empty() || at > room_.size() || bytes.size() > room_.size() - at) return;
  unsigned char* const to = room_.data() + at;
  saved_.push_back({at, Bytes(to, to + bytes.size())});
  std::memcpy(to, bytes.data(), bytes.size());
}

void DamagedFile::put(std::size_t at, std::size_t width, std::uint32_t value) {
  std::array<unsigned char, 4> bytes{};
  le::put<4>(bytes.data(), value);
  store(at, std::span(bytes).first(std::min<std::size_t>(width, 4)));
}

void DamagedFile::resize(std::size_t size) { size_ = std::min(size, originalSize_ + kExtension); }

void DamagedFile::restore() {
  for (; !saved_.empty(); saved_.pop_back())
    std::memcpy(room_.data() + saved_.back().at, saved_.back().bytes.data(),
                saved_.back().bytes.size());
  size_ = originalSize_;
}

DamagedPair::DamagedPair(Input& input) {
  constexpr std::uint8_t kRaw = 0x80;
  const std::uint8_t first = input.u8();
  kind_ = static_cast<BaseKind>((first & 0x7F) % kBaseKinds);
  ref_ = &bases().pairs[kind_].ref;
  rng_ = &bases().pairs[kind_].rng;
  if ((first & kRaw) != 0) {
    // The beginnings of both files: lengths, then the bytes. Length 65535: the whole file stays.
    for (DamagedFile* file : {ref_, rng_}) {
      const std::size_t size = input.u16();
      const auto bytes = input.bytes(size == 65535 ? 1000 : size);
      file->store(0, bytes);
      if (size != 65535) file->resize(bytes.size());
    }
    changed_ = true;
    return;
  }
  constexpr std::size_t kMostEdits = 12;
  for (std::size_t left = input.below(kMostEdits + 1); left > 0; --left) edit(input);
}

DamagedPair::~DamagedPair() {
  ref_->restore();
  rng_->restore();
}

void DamagedPair::mount() const {
  diskInput(kRefPath, ref_->bytes().data(), ref_->size());
  diskInput(kRngPath, rng_->bytes().data(), rng_->size());
}

std::uint32_t DamagedPair::value(Input& input, std::uint32_t old) const {
  switch (input.u8() % kValueKinds) {
    case kZero:
      return 0;
    case kOne:
      return 1;
    case kAllOnes:
      return 0xFFFFFFFF;
    case kMaxSigned:
      return 0x7FFFFFFF;
    case kMinSigned:
      return 0x80000000;
    case kOneMore:
      return old + 1;
    case kOneLess:
      return old - 1;
    case kDoubled:
      return old * 2;
    case kFileSize:
      return static_cast<std::uint32_t>(ref_->size());
    case kFileSizeLessOne:
      return static_cast<std::uint32_t>(ref_->size() - 1);
    case kTableRba:
      return ref_->word(tableOf(input).rbaAt);
    case kTablePlus: {
      const std::uint32_t rba = ref_->word(tableOf(input).rbaAt);
      return rba + input.u8();
    }
    case kByteLiteral:
      return input.u8();
    case kHalfLiteral:
      return input.u16();
    case kWordLiteral:
      return input.u32();
    default: {
      const std::size_t at = tableOf(input).countAt;
      return at == 0 ? 0 : ref_->word(at);
    }
  }
}

void DamagedPair::editRecord(Input& input) {
  const format::TableDef& table = tableOf(input);
  const std::uint32_t count = table.countAt == 0 ? 0 : ref_->word(table.countAt);
  constexpr std::uint8_t kLast = 255;
  constexpr std::uint8_t kMiddle = 254;
  const std::uint8_t which = input.u8();
  std::size_t record = which;
  if (which == kLast && count != 0) record = count - 1;
  if (which == kMiddle) record = count / 2;
  const std::size_t width = std::max<std::size_t>(table.width, 1);
  const std::size_t at = ref_->word(table.rbaAt) + record * width + input.below(width);
  const std::size_t bytes = std::size_t{1} << input.below(3);
  ref_->put(at, bytes, value(input, ref_->word(at)));
}

void DamagedPair::editLength(Input& input) {
  const std::uint8_t way = input.u8();
  DamagedFile& file = (way & 1) != 0 ? *rng_ : *ref_;
  if ((way & 2) != 0) return file.resize(input.u24());
  const std::size_t at = ref_->word(tableOf(input).rbaAt);
  file.resize(at + input.u8());
}

void DamagedPair::edit(Input& input) {
  changed_ = true;
  switch (input.u8() % kEditKinds) {
    case kRefWord: {
      const std::size_t at = 4 * input.below(RefControlRec::size / 4);
      return ref_->put(at, 4, value(input, ref_->word(at)));
    }
    case kRngWord: {
      const std::size_t at = 4 * input.below(RngControlRec::size / 4);
      return rng_->put(at, 4, value(input, rng_->word(at)));
    }
    case kRecord:
      return editRecord(input);
    case kRefBytes: {
      const std::size_t at = input.u24();
      return ref_->store(at, input.bytes(input.u8()));
    }
    case kRngBytes: {
      const std::size_t at = input.u24();
      return rng_->store(at, input.bytes(input.u8()));
    }
    case kLength:
      return editLength(input);
    case kBit: {
      const std::size_t at = ref_->word(tableOf(input).rbaAt) + std::size_t{input.u16()};
      return ref_->put(at, 1, ref_->word(at) ^ (1U << (input.u8() % 8)));
    }
    default: {
      const format::TableDef& table = tableOf(input);
      const std::size_t from = ref_->word(table.rbaAt) + std::size_t{input.u8()} * table.width;
      const std::size_t to = ref_->word(table.rbaAt) + std::size_t{input.u8()} * table.width;
      if (from >= ref_->size() || table.width > ref_->size() - from) return;
      const Bytes record(ref_->bytes().begin() + static_cast<std::ptrdiff_t>(from),
                         ref_->bytes().begin() + static_cast<std::ptrdiff_t>(from + table.width));
      return ref_->store(to, record);
    }
  }
}

void quietProcess() {
  static const bool done = [] {
    setenv("TZ", "UTC0", 1);  // else the zone file is looked at for every log record
    unsetenv("SOURCE_DATE_EPOCH");
    currentTime = fixedTime;
    stdout = std::fopen("/dev/null", "w");
    stderr = std::fopen("/dev/null", "w");
    return stdout != nullptr && stderr != nullptr;
  }();
  if (!done) std::abort();
}

std::int32_t runUtility(int argc, const char* const* argv) {
  const std::int32_t status = runMain(argc, const_cast<char**>(argv));
  if (status == 0) {
    // The tables that a cut keeps until the process ends.
    for (const SlotNumber slot : {kSlotHashTable, kSlotHashOverflow, kSlotMilitary, kSlotPobZones})
      releaseIfLive(refPointers[slot].table);
    loadedTables.drop();
    expectNothingLeft("a finished run");
  }
  // What a failed run leaves until the process ends.
  freeCmdLine();
  forgetEarlierCut();
  streamClose(pProcObj->files->range);
  // A cut closes the reference input early and keeps the pointer.
  if (diskOpenFiles(nullptr) != 0) streamClose(pProcObj->files->reference);
  if (diskOpenFiles(nullptr) != 0) finding("a failed run loses an open file");
  loadedTables.drop();
  releaseLiveBlocks();
  scZipCodeIndex = nullptr;
  scCityNames = nullptr;
  scCityNamesByState = nullptr;
  scCityPhonetics = nullptr;
  cityKeys = nullptr;
  multiZipKeys = nullptr;
  cityNameMap = nullptr;
  cityPhNameMap = nullptr;
  refPointers.fill(RefSlot{});
  pProcObj = nullptr;
  return status;
}

std::int32_t runCut(const std::string& states, int logLevel) {
  diskInput(kStatesPath, reinterpret_cast<const unsigned char*>(states.data()), states.size());
  diskSink(kLogPath);
  const std::string level = std::to_string(logLevel);
  const char* const arguments[] = {"statecut",  "-f", kRefPath,      "-g",   kRngPath,    "-s",
                                   kStatesPath, "-o", kOutRefPath,   "-z",   kOutRngPath, "-l",
                                   kLogPath,    "-v", level.c_str(), nullptr};
  return runUtility(static_cast<int>(std::size(arguments)) - 1, arguments);
}

}  // namespace statecut::fuzz
