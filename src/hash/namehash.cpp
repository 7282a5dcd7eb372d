#include "hash/namehash.h"

#include <array>
#include <cstring>

#include "dbfiles/apiutil.h"
#include "dbfiles/controlrec.h"
#include "dbfiles/stream.h"
#include "tables/refpointers.h"
#include "tables/rows.h"

namespace statecut {

namespace {

// What the search compares a name with: a stored name's length and bytes, or no match at all.
struct Candidate {
  bool valid = false;
  std::int32_t length = 0;
  const unsigned char* name = nullptr;
};

// Where a name can be: its slot and the check value that its entry must hold.
struct Probe {
  std::uint32_t slot;
  std::uint32_t check;
};

constexpr std::int32_t kStateBytes = 2;  // types 2 and 5 hash the state abbreviation, then the name

Probe probeFor(const unsigned char* name, std::int32_t length, std::uint32_t type,
               const RefControlRec& record) {
  const unsigned char* kept = refPointers[kSlotHashMask].bytes;
  if (le::get<4>(kept) == 0 && le::get<4>(kept + 4) == 0) {
    keepHashMask(record.get(RefControlRec::hashTableCount));
  }
  const std::uint32_t mask = le::get<4>(kept);
  const std::uint32_t complement = le::get<4>(kept + 4);
  const std::uint32_t hash = fnv_32_buf_backward(name, length, kFnvOffsetBasis + type);
  return {hash & mask, type | ((hash & complement) >> 16)};
}

bool equal(const Candidate& candidate, const unsigned char* name, std::int32_t length) {
  if (!candidate.valid || candidate.length != length) return false;
  return length == 0 || std::memcmp(candidate.name, name, static_cast<std::size_t>(length)) == 0;
}

// The number of records or bytes of the name table of `type`; a number at or above it names
// nothing.
std::uint32_t nameBound(std::uint32_t type, const RefControlRec& record) {
  switch (type) {
    case kFirmNames:
      return record.get(RefControlRec::firmsBytes);
    case kStreetNames:
      return record.get(RefControlRec::streetNamesBytes);
    case kCityNames:
      return record.get(RefControlRec::cityNamesCount);
    case kStreetStandards:
      return record.get(RefControlRec::streetStandardsBytes);
    case kStreetPhonetics:
      return record.get(RefControlRec::streetPhoneticsBytes);
    case kCityPhonetics:
      return record.get(RefControlRec::cityPhoneticsCount);
    default:
      return 0;
  }
}

constexpr std::uint64_t kLengthByteAt = 4;  // of an entry of types 3 and 4

// True when `number` names an entry of the table of `type`.
bool inTable(std::uint32_t type, std::uint32_t number, const RefControlRec& record) {
  const bool standard = type == kStreetStandards || type == kStreetPhonetics;
  return std::uint64_t{number} + (standard ? kLengthByteAt : 0) < nameBound(type, record);
}

Candidate packedName(const unsigned char* lengthByte) {
  return {true, static_cast<signed char>(*lengthByte), lengthByte + 1};
}

Candidate maskedName(const unsigned char* lengthByte) {
  return {true, *lengthByte & 0x7F, lengthByte + 1};
}

// The length byte is unsigned, so the name may run on past its own record.
Candidate cityName(const unsigned char* record) {
  return {true, record[CityNameRow::nameLength.at] + kStateBytes, record + CityNameRow::state.at};
}

Candidate cityPhonetic(const unsigned char* record) {
  return {true, record[CityPhoneticRow::keyLength.at] + kStateBytes,
          record + CityPhoneticRow::state.at};
}

Candidate candidateIn(std::uint32_t type, std::uint32_t number, const RefControlRec& record) {
  if (type > kCityPhonetics) return {true, 0, nullptr};  // matches a name of length 0 only
  constexpr std::array<SlotNumber, 6> kTables = {kSlotFirms,           kSlotStreetNames,
                                                 kSlotCityNames,       kSlotStreetStandards,
                                                 kSlotStreetPhonetics, kSlotCityPhonetics};
  const unsigned char* table = refPointers[kTables[type]].table;
  if (table == nullptr || !inTable(type, number, record)) return {};
  switch (type) {
    case kFirmNames:
    case kStreetNames:
      return packedName(table + number);
    case kCityNames:
      return cityName(table + std::uint64_t{number} * CityNameRow::size);
    case kStreetStandards:
    case kStreetPhonetics:
      return maskedName(table + number + kLengthByteAt);
    default:
      return cityPhonetic(table + std::uint64_t{number} * CityPhoneticRow::size);
  }
}

// The number field of the name's entry in the loaded index, or null.
unsigned char* findIn(const unsigned char* name, std::int32_t length, std::uint32_t type) {
  const RefControlRec* record = pProcObj == nullptr ? nullptr : pProcObj->refControlRec;
  if (record == nullptr || length < 0 || (name == nullptr && length > 0)) return nullptr;
  const Probe probe = probeFor(name, length, type, *record);
  unsigned char* slots = refPointers[kSlotHashTable].table;
  if (slots == nullptr || probe.slot >= record->get(RefControlRec::hashTableCount)) return nullptr;

  unsigned char* slot = slots + std::uint64_t{probe.slot} * HashSlotRow::size;
  const std::uint32_t count = slot[HashSlotRow::count.at];
  unsigned char* number = slot + HashSlotRow::number.at;
  if (count == 0) return nullptr;
  if (count == 1) {
    if (le::get<2>(slot + HashSlotRow::check.at) != probe.check) return nullptr;
    return equal(candidateIn(type, le::get<4>(number), *record), name, length) ? number : nullptr;
  }
  unsigned char* overflow = refPointers[kSlotHashOverflow].table;
  if (overflow == nullptr) return nullptr;
  const std::uint64_t first = le::get<4>(number);
  const std::uint64_t end = record->get(RefControlRec::hashOverflowCount);
  for (std::uint64_t at = first; at < first + count && at < end; ++at) {
    unsigned char* entry = overflow + at * HashOverflowRow::size;
    if (le::get<2>(entry + HashOverflowRow::check.at) != probe.check) continue;
    number = entry + HashOverflowRow::number.at;
    if (equal(candidateIn(type, le::get<4>(number), *record), name, length)) return number;
  }
  return nullptr;
}

constexpr std::int32_t kFirmRead = 41;
constexpr std::int32_t kStreetRead = 29;

// A short read leaves what `to` held; the result is not looked at. Nothing is read without a file
// and behind a read error, where the reader would stop the program.
void readReference(ProcObj* proc, std::uint32_t rba, std::int32_t count, unsigned char* to) {
  Stream* file = proc->files == nullptr ? nullptr : proc->files->reference;
  if (file != nullptr && !streamError(file)) dbReadFile(file, rba, count, to, proc);
}

// Reads candidate names from the file.
struct FileNames {
  ProcObj* proc;
  const RefControlRec& record;
  std::array<unsigned char, kFirmRead> buffer{};

  const unsigned char* read(std::uint32_t rba, std::int32_t count) {
    readReference(proc, rba, count, buffer.data());
    return buffer.data();
  }

  Candidate at(std::uint32_t type, std::uint32_t number) {
    if (type > kCityPhonetics) return {true, 0, nullptr};
    if (!inTable(type, number, record)) return {};
    switch (type) {
      case kFirmNames:
        return bounded(packedName(read(record.get(RefControlRec::firmsRba) + number, kFirmRead)),
                       kFirmRead - 1);
      case kStreetNames:
        return bounded(
            packedName(read(record.get(RefControlRec::streetNamesRba) + number, kStreetRead)),
            kStreetRead - 1);
      case kCityNames:
        return bounded(cityName(read(record.get(RefControlRec::cityNamesRba) + 34 * number, 34)),
                       34 - 4);
      case kStreetStandards:
        return bounded(maskedName(read(record.get(RefControlRec::streetStandardsRba) + number + 4,
                                       kStreetRead)),
                       kStreetRead - 1);
      case kStreetPhonetics:
        return bounded(maskedName(read(record.get(RefControlRec::streetPhoneticsRba) + number + 4,
                                       kStreetRead)),
                       kStreetRead - 1);
      default:
        return bounded(
            cityPhonetic(read(record.get(RefControlRec::cityPhoneticsRba) + 26 * number, 26)),
            26 - 2);
    }
  }

  // A name longer than the bytes read for it matches nothing.
  static Candidate bounded(Candidate candidate, std::int32_t bytesRead) {
    candidate.valid = candidate.length <= bytesRead;
    return candidate;
  }
};

}  // namespace

void keepHashMask(std::uint32_t slotCount) {
  unsigned char* kept = refPointers[kSlotHashMask].bytes;
  le::put<4>(kept, slotCount - 1);
  le::put<4>(kept + 4, ~(slotCount - 1));
}

std::uint32_t dbHashFind(const unsigned char* name, std::int32_t length, std::uint32_t type,
                         ProcObj* /*context*/) {
  const unsigned char* number = findIn(name, length, type);
  return number == nullptr ? kNotFound : le::get<4>(number);
}

std::int32_t zapHashedName(const unsigned char* name, std::int32_t length, std::uint32_t type,
                           std::uint32_t newNumber) {
  unsigned char* number = findIn(name, length, type);
  if (number == nullptr) return -1;
  const std::uint32_t old = le::get<4>(number);
  le::put<4>(number, newNumber);
  return static_cast<std::int32_t>(old);
}

std::uint32_t dbHashFindOff(const unsigned char* name, std::int32_t length, std::uint32_t type,
                            ProcObj* proc) {
  const RefControlRec* record = proc == nullptr ? nullptr : proc->refControlRec;
  if (record == nullptr || length < 0 || (name == nullptr && length > 0)) return kNotFound;
  const Probe probe = probeFor(name, length, type, *record);
  if (probe.slot >= record->get(RefControlRec::hashTableCount)) return kNotFound;

  HashSlotRow slot{};
  readReference(proc, record->get(RefControlRec::hashTableRba) + 7 * probe.slot, 7,
                slot.bytes.data());
  FileNames names{proc, *record};
  const std::uint32_t count = slot.get(HashSlotRow::count);
  const std::uint32_t number = slot.get(HashSlotRow::number);
  if (count == 0) return kNotFound;
  if (count == 1) {
    if (slot.get(HashSlotRow::check) != probe.check) return kNotFound;
    return equal(names.at(type, number), name, length) ? number : kNotFound;
  }
  // Reads 7 bytes an entry although an entry has 6. This is meant.
  std::array<unsigned char, 255 * 7> entries{};
  readReference(proc, record->get(RefControlRec::hashOverflowRba) + 6 * number,
                static_cast<std::int32_t>(count * 7), entries.data());
  for (std::uint32_t i = 0; i < count; ++i) {
    const unsigned char* entry = entries.data() + i * HashOverflowRow::size;
    if (le::get<2>(entry) != probe.check) continue;
    const std::uint32_t found = le::get<4>(entry + HashOverflowRow::number.at);
    if (equal(names.at(type, found), name, length)) return found;
  }
  return kNotFound;
}

}  // namespace statecut
