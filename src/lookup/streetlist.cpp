// The ambiguous lists: a count of entries, each a street key with the SCF keys where it occurs.

#include "lookup/streetlist.h"

#include "lookup/inmemory.h"
#include "lookup/refaccess.h"
#include "lookup/street.h"
#include "tables/rows.h"

namespace statecut {

std::array<std::uint32_t, kKeyListMax> keyList{};

namespace {

constexpr std::size_t kCountBytes = StreetListRow::size;
constexpr std::size_t kKeyBytes = StreetListEntryRow::streetKey.width;
constexpr std::size_t kScfBytes = KeyRow::size;
constexpr std::uint32_t kMaxEntryBytes = StreetListEntryRow::size + 127 * KeyRow::size;

// The SCF keys behind an entry; a negative count stands for none.
std::uint32_t scfKeysOf(std::uint8_t scfCount) {
  const auto keys = static_cast<std::int8_t>(scfCount);
  return keys < 0 ? 0 : static_cast<std::uint32_t>(keys);
}

// True when an entry is in the list whatever its SCF keys are.
bool unfiltered(std::int32_t filter, std::uint8_t scfCount) { return filter == 0 || scfCount == 0; }

bool full(std::int32_t count) { return count < 0 || count >= kKeyListMax; }

// A list on disk at a running RBA. A short read leaves the value of the same width read before.
class ListFile {
 public:
  explicit ListFile(std::uint32_t rba) : rba_(rba) {}

  std::uint32_t readCount() { return read<kCountBytes>(count_); }
  std::uint32_t readKey() { return read<kKeyBytes>(key_); }
  std::uint8_t readScfCount() { return static_cast<std::uint8_t>(read<1>(scfCount_)); }
  std::uint32_t readScf() { return read<kScfBytes>(scf_); }
  void skipScfs(std::uint32_t count) { rba_ += count * static_cast<std::uint32_t>(kScfBytes); }

  // True when a read failed; what was read since is no list.
  [[nodiscard]] bool failed() const { return failed_; }
  // True when the last read did not get all its bytes.
  [[nodiscard]] static bool wasShort() { return streamEof(refStream(pProcObj)); }
  [[nodiscard]] bool startsOverWithin(std::uint64_t bytes) const {
    return rba_ + bytes > 0xFFFFFFFFu;
  }

 private:
  template <std::size_t Width>
  std::uint32_t read(std::array<unsigned char, Width>& held) {
    failed_ = !readDirect(rba_, Width, held.data()) || failed_;
    rba_ += static_cast<std::uint32_t>(Width);
    return le::get<Width>(held.data());
  }

  std::uint32_t rba_;
  bool failed_ = false;
  std::array<unsigned char, kCountBytes> count_{};
  std::array<unsigned char, kKeyBytes> key_{};
  std::array<unsigned char, 1> scfCount_{};
  std::array<unsigned char, kScfBytes> scf_{};
};

// Reads the SCF keys of one entry on disk up to the wanted one and skips the rest.
bool servedOnDisk(ListFile& file, std::uint32_t keys, const std::uint16_t* scfKey) {
  for (std::uint32_t i = 0; i < keys && scfKey != nullptr; ++i) {
    if (file.readScf() != *scfKey) continue;
    file.skipScfs(keys - i - 1);
    return true;
  }
  if (scfKey == nullptr) file.skipScfs(keys);
  return false;
}

}  // namespace

void addStreetKey(std::uint32_t key, std::int32_t* count) {
  if (full(*count)) return;
  keyList[static_cast<std::size_t>(*count)] = key;
  ++*count;
}

const std::uint32_t* ambgsStreetMatch(std::span<const unsigned char> list,
                                      const std::uint16_t* scfKey, std::int32_t filter,
                                      std::int32_t* count) {
  memory::StreetWalk walk(list, filter != 0, scfKey);
  for (std::uint32_t key = 0; walk.next(&key);) addStreetKey(key, count);
  return keyList.data();
}

const std::uint32_t* ambgsStreetMatchOff(std::uint32_t rba, const std::uint16_t* scfKey,
                                         std::int32_t filter, std::int32_t* count) {
  ListFile file(rba);
  const std::int32_t before = *count;
  const std::uint32_t entries = file.readCount();
  bool wasShort = false;
  for (std::uint32_t i = 0; i < entries && !full(*count) && !file.failed(); ++i) {
    const std::uint32_t key = file.readKey();
    const bool isShort = ListFile::wasShort();
    const std::uint8_t scfCount = file.readScfCount();
    const std::uint32_t keys = scfKeysOf(scfCount);
    if (unfiltered(filter, scfCount)) {
      file.skipScfs(keys);
      addStreetKey(key, count);
    } else if (servedOnDisk(file, keys, scfKey)) {
      addStreetKey(key, count);
    } else if (isShort && wasShort &&
               !file.startsOverWithin(std::uint64_t{entries - i} * kMaxEntryBytes)) {
      break;  // behind the end of the file every further entry is this one
    }
    wasShort = isShort;
  }
  if (!file.failed()) return keyList.data();
  *count = before;
  return nullptr;
}

}  // namespace statecut
