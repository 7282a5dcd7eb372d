// The stage buffers, in which pieces that span cache entries are put together.

#include <utility>

#include "base/system.h"
#include "dbfiles/controlrec.h"
#include "log/utllgmsg.h"
#include "lookup/cache.h"

namespace statecut {

namespace {

constexpr LogSource kCacheSource{"cache", 2000};

constexpr std::int64_t kOverheadsStaged = 13;
constexpr std::int64_t kStageMargin = 2048;
constexpr std::int64_t kMaxStage = 2147483647;
constexpr std::int64_t kAlternateBytes = 4096;

void freeBuffers(CacheControlBlock* block) {
  sys::release(std::exchange(block->stage, nullptr));
  sys::release(std::exchange(block->alternate, nullptr));
  sys::release(std::exchange(block->rangeOverhead, nullptr));
  block->stageSize = 0;
}

// A buffer of `size` bytes, logged under `name`, or null.
unsigned char* newBuffer(ProcObj* proc, const char* name, std::int64_t size) {
  const auto bytes = static_cast<std::size_t>(size > 0 ? size : 1);
  auto* buffer = static_cast<unsigned char*>(sys::allocateZeroed(bytes));
  if (buffer != nullptr)
    utlWriteLogMsg(proc, kCacheSource.name, kCacheSource.line(__LINE__), kInfo, "Info Message",
                   kReasonNone, kMsgSize, name, static_cast<std::int32_t>(size));
  return buffer;
}

}  // namespace

unsigned char* chCreateStageBuffer(ProcObj* proc, std::int32_t minimumSize) {
  if (proc == nullptr || proc->cache == nullptr) return nullptr;
  CacheControlBlock* block = proc->cache;
  freeBuffers(block);
  std::int64_t size = 0;
  if (proc->rngControlRec != nullptr)
    size = kOverheadsStaged * proc->rngControlRec->get(RngControlRec::maxRangeOverheads);
  if (size < minimumSize) size = minimumSize + kStageMargin;
  if (size > kMaxStage) return nullptr;
  block->stage = newBuffer(proc, "Stage Buffer", size);
  if (block->stage == nullptr) return nullptr;
  block->stageSize = static_cast<std::int32_t>(size);
  block->rangeOverhead = newBuffer(proc, "Range Overhead Buff", size);
  if (block->rangeOverhead == nullptr) return nullptr;
  block->alternate = newBuffer(proc, "Alternate Buff", kAlternateBytes);
  if (block->alternate == nullptr) return nullptr;
  block->stageFill = 0;
  return block->stage;
}

void chFreeStageBuffer() {
  if (pProcObj != nullptr && pProcObj->cache != nullptr) freeBuffers(pProcObj->cache);
}

}  // namespace statecut
