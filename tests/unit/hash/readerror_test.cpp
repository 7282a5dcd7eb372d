// The search on a file with a part that cannot be read: the process's own memory, in which the page
// behind the mapped one is the damaged part.

#include <sys/mman.h>

#include <algorithm>

#include "base/stream.h"
#include "hash/namehash.h"
#include "unit/hash/indexfixture.h"

namespace {

using namespace statecut;
using namespace statecut::test;

constexpr std::uint32_t kFileAt = 0x50000000;  // RBAs are memory addresses: below 4 GiB
constexpr std::uint32_t kPage = 4096;
constexpr std::uint32_t kDamagedAt = kFileAt + kPage;
constexpr std::uint32_t kOverflowOffset = kFileAt + 1000;
constexpr std::uint32_t kNamesAt = kFileAt + 2000;

class DamagedFile : public IndexFixture {
 protected:
  DamagedFile() {
    void* at =
        ::mmap(reinterpret_cast<void*>(std::uintptr_t{kFileAt}), std::size_t{2} * kPage,
               PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    EXPECT_NE(at, MAP_FAILED);
    ::munmap(static_cast<unsigned char*>(at) + kPage, kPage);
    page_ = static_cast<unsigned char*>(at);
    record.set(RefControlRec::hashTableRba, kFileAt);
    record.set(RefControlRec::streetNamesRba, kNamesAt);
    record.set(RefControlRec::streetNamesBytes, kPage);
    put(kNamesAt, packed({"MAIN"}));
    makeIndex(1, 2);
    setSlot(0, 2, 0, 0);
    setOverflow(0, checkOf("MAIN", kStreetNames), 0);
    setOverflow(1, checkOf("MAIN", kStreetNames), 0);
    put(kFileAt, {slotBytes(0), slotBytes(0) + 7});
  }
  ~DamagedFile() override {
    ::munmap(page_, kPage);
    streamClose(proc.files->reference);
  }

  // As many of the bytes as the page holds.
  void put(std::uint32_t rba, const Bytes& bytes) {
    const std::size_t room = kDamagedAt - rba;
    std::copy_n(bytes.begin(), std::min(room, bytes.size()), page_ + (rba - kFileAt));
  }
  void putOverflow(std::uint32_t rba) {
    record.set(RefControlRec::hashOverflowRba, rba);
    const unsigned char* entries = refPointers[kSlotHashOverflow].table;
    put(rba, {entries, entries + 12});
  }

  std::uint32_t findMain() {
    streamClose(proc.files->reference);
    proc.files->reference = streamOpen("/proc/self/mem", "rb");
    return dbHashFindOff(reinterpret_cast<const unsigned char*>("MAIN"), 4, kStreetNames, &proc);
  }

 private:
  unsigned char* page_ = nullptr;
};

TEST_F(DamagedFile, DamageInTheOverflowEntriesIsNotFound) {
  putOverflow(kOverflowOffset);
  ASSERT_EQ(findMain(), 0u);
  putOverflow(kDamagedAt - 6);  // the first entry comes, the second does not
  EXPECT_EQ(findMain(), kNotFound);
  EXPECT_TRUE(streamError(proc.files->reference));
}

TEST_F(DamagedFile, DamageInTheNamesEndsTheirReading) {
  setOverflow(0, checkOf("MAIN", kStreetNames), kDamagedAt - kNamesAt);
  putOverflow(kOverflowOffset);
  record.set(RefControlRec::streetNamesBytes, kPage - 2000);  // bounds the damaged offset away
  ASSERT_EQ(findMain(), 0u);
  record.set(RefControlRec::streetNamesBytes, kPage);
  EXPECT_EQ(findMain(), kNotFound);
  EXPECT_TRUE(streamError(proc.files->reference));
}

TEST_F(DamagedFile, DamageInsideTheSlotIsNotFound) {
  putOverflow(kOverflowOffset);
  ASSERT_EQ(findMain(), 0u);
  record.set(RefControlRec::hashTableRba, kDamagedAt - 1);
  put(kDamagedAt - 1, {2});
  EXPECT_EQ(findMain(), kNotFound);
}

TEST_F(DamagedFile, NoFileIsNotFound) {
  putOverflow(kOverflowOffset);
  ASSERT_EQ(findMain(), 0u);
  streamClose(proc.files->reference);
  proc.files->reference = nullptr;
  EXPECT_EQ(dbHashFindOff(reinterpret_cast<const unsigned char*>("MAIN"), 4, kStreetNames, &proc),
            kNotFound);
}

}  // namespace
