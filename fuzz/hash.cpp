// The name hash index: built of the input's names, searched in memory and on disk, sound and
// damaged, and renumbered.

#include <cstring>

#include "base/memory.h"
#include "basepair.h"
#include "dbbuilder/bytes.h"
#include "dbbuilder/nameindex.h"
#include "dbfiles/apiutil.h"
#include "dbfiles/controlrec.h"
#include "hash/namehash.h"
#include "tables/refpointers.h"
#include "tables/rows.h"

using namespace statecut;
using namespace statecut::fuzz;

namespace {

constexpr unsigned kTypes = 6;
constexpr std::size_t kLongest[kTypes] = {40, 28, 28, 28, 28, 19};
constexpr SlotNumber kNameSlots[kTypes] = {kSlotFirms,           kSlotStreetNames,
                                           kSlotCityNames,       kSlotStreetStandards,
                                           kSlotStreetPhonetics, kSlotCityPhonetics};

struct Index {
  std::vector<builder::HashName> names;
  builder::ByteWriter tables[kTypes];
  std::uint32_t counts[kTypes] = {};  // records or bytes
};

// Stores the name in the table of its type; its number.
std::uint32_t addName(Index& index, unsigned type, std::string_view name) {
  builder::ByteWriter& table = index.tables[type];
  const auto length = static_cast<std::uint32_t>(name.size());
  const bool records = type == kCityNames || type == kCityPhonetics;
  const std::uint32_t number = records ? index.counts[type] : table.size();
  switch (type) {
    case kFirmNames:
    case kStreetNames:
      table.u8(length);
      table.text(name, length);
      break;
    case kCityNames:
      table.zeros(3);
      table.u8(length);
      table.text("TX", 2);
      table.text(name, 28);
      break;
    case kCityPhonetics:
      table.zeros(2);
      table.text("TX", 2);
      table.text(name, 20);
      table.u8(1);
      table.u8(length);
      break;
    default:
      table.zeros(4);
      table.u8(length);
      table.text(name, length);
  }
  index.counts[type] = records ? number + 1 : table.size();
  return number;
}

Index makeIndex(Input& input) {
  Index index;
  constexpr std::size_t kMostNames = 40;
  for (std::size_t left = input.below(kMostNames); left > 0; --left) {
    const auto type = static_cast<unsigned>(input.below(kTypes));
    const std::string name(input.text(input.below(kLongest[type] + 1)));
    const bool withState = type == kCityNames || type == kCityPhonetics;
    index.names.push_back({type, (withState ? "TX" : "") + name, addName(index, type, name)});
  }
  return index;
}

// The parts of a reference file that the searches use, in memory and in a file.
struct Search {
  ProcObj proc{};
  RefControlRec record{};
  builder::Bytes file;

  Search(Index& index, std::uint32_t slotCount) {
    const builder::NameIndex made = builder::buildNameIndex(index.names, slotCount);
    builder::Bytes parts[kTypes + 2];
    for (unsigned type = 0; type < kTypes; ++type) parts[type] = index.tables[type].take();
    parts[kTypes] = made.slots;
    parts[kTypes + 1] = made.overflow;
    using R = RefControlRec;
    record.set(R::firmsBytes, index.counts[kFirmNames]);
    record.set(R::streetNamesBytes, index.counts[kStreetNames]);
    record.set(R::cityNamesCount, index.counts[kCityNames]);
    record.set(R::streetStandardsBytes, index.counts[kStreetStandards]);
    record.set(R::streetPhoneticsBytes, index.counts[kStreetPhonetics]);
    record.set(R::cityPhoneticsCount, index.counts[kCityPhonetics]);
    record.set(R::hashTableCount, made.slotCount);
    record.set(R::hashOverflowCount, made.overflowCount);
    const std::size_t rbas[] = {R::firmsRba.at,           R::streetNamesRba.at,
                                R::cityNamesRba.at,       R::streetStandardsRba.at,
                                R::streetPhoneticsRba.at, R::cityPhoneticsRba.at,
                                R::hashTableRba.at,       R::hashOverflowRba.at};
    file.resize(RefControlRec::size);
    for (std::size_t i = 0; i < std::size(parts); ++i) {
      le::put<4>(record.bytes.data() + rbas[i], static_cast<std::uint32_t>(file.size()));
      file.insert(file.end(), parts[i].begin(), parts[i].end());
    }
    starts_ = {file.size() - parts[kTypes].size() - parts[kTypes + 1].size(),
               file.size() - parts[kTypes + 1].size()};
  }
  ~Search() {
    streamClose(proc.fileRecord.reference);
    for (RefSlot& slot : refPointers) {
      if (&slot != &refPointers[kSlotHashMask]) freeTable(slot.table);
      slot = {};
    }
    pProcObj = nullptr;
  }
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;

  // Number `i` of the slots (7 bytes) or the overflow entries (6).
  void damage(Input& input) {
    const std::uint8_t way = input.u8();
    const std::size_t at = input.u16();
    switch (way % 4) {
      case 0:
        return putFile(starts_.slots + at % 4096, input.u8(), 1);
      case 1:
        return putFile(starts_.slots + at % 512 * HashSlotRow::size + 3, input.u32(), 4);
      case 2:
        return putFile(RefControlRec::size + at, input.u8(), 1);
      default:
        // A word of the control record, the reader's view of all sizes.
        le::put<4>(record.bytes.data() + at % (RefControlRec::size / 4) * 4, input.u32());
    }
  }

  void open() {
    diskInput(kRefPath, file.data(), file.size());
    proc.files = &proc.fileRecord;
    proc.stats = &proc.statistics;
    proc.refControlRec = &record;
    pProcObj = &proc;
    proc.files->reference = dbOpenRefDB(&proc, kRefPath);
    using R = RefControlRec;
    const std::uint64_t sizes[] = {record.get(R::firmsBytes),
                                   record.get(R::streetNamesBytes),
                                   std::uint64_t{34} * record.get(R::cityNamesCount),
                                   record.get(R::streetStandardsBytes),
                                   record.get(R::streetPhoneticsBytes),
                                   std::uint64_t{26} * record.get(R::cityPhoneticsCount)};
    const std::uint32_t rbas[] = {
        record.get(R::firmsRba),           record.get(R::streetNamesRba),
        record.get(R::cityNamesRba),       record.get(R::streetStandardsRba),
        record.get(R::streetPhoneticsRba), record.get(R::cityPhoneticsRba)};
    for (unsigned type = 0; type < kTypes; ++type) load(kNameSlots[type], rbas[type], sizes[type]);
    load(kSlotHashTable, record.get(R::hashTableRba),
         std::uint64_t{7} * record.get(R::hashTableCount));
    load(kSlotHashOverflow, record.get(R::hashOverflowRba),
         std::uint64_t{6} * record.get(R::hashOverflowCount));
  }

 private:
  struct Starts {
    std::size_t slots;
    std::size_t overflow;
  };

  void putFile(std::size_t at, std::uint32_t value, std::size_t width) {
    for (std::size_t i = 0; i < width && at + i < file.size(); ++i)
      file[at + i] = static_cast<unsigned char>(value >> (8 * i));
  }
  void load(SlotNumber slot, std::uint32_t rba, std::uint64_t bytes) {
    void* const block = allocTable(bytes);
    refPointers[slot].table = static_cast<unsigned char*>(block);
    if (block != nullptr)
      dbReadFile(proc.files->reference, rba, static_cast<std::int32_t>(bytes), block, &proc);
  }

  Starts starts_{};
};

const unsigned char* bytesOf(const std::string& name) {
  return reinterpret_cast<const unsigned char*>(name.data());
}

// Whether the table of a type, read as it lies in the file, has the name at a number.
bool hasName(const Search& in, std::uint32_t type, std::uint32_t number, const std::string& name) {
  constexpr std::size_t kRbas[kTypes] = {
      RefControlRec::firmsRba.at,           RefControlRec::streetNamesRba.at,
      RefControlRec::cityNamesRba.at,       RefControlRec::streetStandardsRba.at,
      RefControlRec::streetPhoneticsRba.at, RefControlRec::cityPhoneticsRba.at};
  constexpr std::size_t kUnits[kTypes] = {1, 1, 34, 1, 1, 26};
  constexpr std::size_t kLengthAt[kTypes] = {0, 0, 3, 4, 4, 25};
  constexpr std::size_t kNameAt[kTypes] = {1, 1, 4, 5, 5, 2};
  const std::size_t at = le::get<4>(in.record.bytes.data() + kRbas[type]) + number * kUnits[type];
  const std::size_t state = type == kCityNames || type == kCityPhonetics ? 2 : 0;
  const unsigned lengthMask = type == kStreetStandards || type == kStreetPhonetics ? 0x7F : 0xFF;
  return at + kNameAt[type] + name.size() <= in.file.size() &&
         (in.file[at + kLengthAt[type]] & lengthMask) + state == name.size() &&
         std::memcmp(in.file.data() + at + kNameAt[type], name.data(), name.size()) == 0;
}

// The number of a name, in memory and on disk; in a sound index both are the same one of the
// index's numbers, with the name at it. It may be a number of another type: an entry tells its
// type in part only.
void search(Search& in, const Index& index, const builder::HashName& name, bool sound) {
  const auto length = static_cast<std::int32_t>(name.name.size());
  const std::uint32_t found = dbHashFind(bytesOf(name.name), length, name.type, &in.proc);
  const std::uint32_t off = dbHashFindOff(bytesOf(name.name), length, name.type, &in.proc);
  if (!sound) return;
  if (found != off) finding("memory and disk find different names");
  for (const builder::HashName& other : index.names)
    if (other.number == found && hasName(in, name.type, found, name.name)) return;
  finding("an indexed name is not found");
}

void searchOther(Search& in, Input& input) {
  const std::string name(input.text(input.below(64)));
  const std::uint32_t type = input.u8() % 8;
  const auto length = static_cast<std::int32_t>(name.size());
  dbHashFind(bytesOf(name), length, type, &in.proc);
  dbHashFindOff(bytesOf(name), length, type, &in.proc);
}

// What is found must not change with an index beside the file's, whatever the file's holds.
void searchIndexed(Search& in, const Index& index) {
  std::vector<std::uint32_t> found;
  const auto find = [&in](const builder::HashName& name) {
    return dbHashFind(bytesOf(name.name), static_cast<std::int32_t>(name.name.size()), name.type,
                      &in.proc);
  };
  for (const builder::HashName& name : index.names) found.push_back(find(name));
  for (std::uint32_t type = 0; type < kTypes; ++type) dbHashIndexNames(type, &in.proc);
  for (std::size_t i = 0; i < found.size(); ++i)
    if (find(index.names[i]) != found[i]) finding("an index of names gives another answer");
}

void renumber(Search& in, const Index& index, std::uint32_t newNumber) {
  for (const builder::HashName& name : index.names) {
    const auto length = static_cast<std::int32_t>(name.name.size());
    const std::uint32_t before = dbHashFind(bytesOf(name.name), length, name.type, &in.proc);
    const std::int32_t old = zapHashedName(bytesOf(name.name), length, name.type, newNumber);
    if (static_cast<std::uint32_t>(old) != before) finding("renumbered another name than is found");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quietProcess();
  Input input(data, size);
  DiskLimits limits;
  limits.blockBytes = std::uint64_t{256} << 10;
  diskStart(limits);
  const std::uint8_t bits = input.u8();
  Index index = makeIndex(input);
  {
    // A power of two that suits, or (unsound) any number of slots.
    const std::uint32_t slots = bits < 128 ? 0 : bits < 192 ? 1U << (bits % 9) : bits - 191U;
    Search searched(index, slots);
    std::size_t damages = input.below(8);
    const bool sound = damages == 0 && bits < 192;
    for (; damages > 0; --damages) searched.damage(input);
    searched.open();
    for (const builder::HashName& name : index.names) search(searched, index, name, sound);
    for (std::size_t left = input.below(8); left > 0; --left) searchOther(searched, input);
    searchIndexed(searched, index);
    renumber(searched, index, input.u32());
    dbHashDropIndexes();
  }
  expectNothingLeft("an index that was released");
  return 0;
}
