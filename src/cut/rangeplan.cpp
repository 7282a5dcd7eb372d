#include "cut/rangeplan.h"

#include <algorithm>

#include "cut/openfiles.h"

namespace statecut {

namespace {

constexpr std::uint64_t kLookAhead = 8 * 1024 * 1024;
constexpr std::uint64_t kAnnounced = 1024 * 1024;  // at once

}  // namespace

RangePlan::RangePlan(const CopyPath& path)
    : path_(path), sourceBytes_(path.from == nullptr ? 0 : streamSize(path.from)) {}

// What is not in one piece, or has no bytes, is left to the block copier.
bool RangePlan::inSource(std::uint32_t rba, std::uint32_t bytes) const {
  return static_cast<std::int32_t>(bytes) > 0 && inOnePiece(rba, bytes, sourceBytes_);
}

void RangePlan::add(std::uint32_t rba, std::uint32_t bytes) {
  if (static_cast<std::int32_t>(bytes) <= 0) return;
  const bool inside = inSource(rba, bytes);
  if (inside && joinable_ && runs_.back().end == rba) {
    runs_.back().end += bytes;
  } else if (inside) {
    runs_.push_back({rba, rba, rba, std::uint64_t{rba} + bytes});
  }
  joinable_ = inside;
  planned_ += bytes;
}

// Not more than the source has: in a damaged one partitions can lie over each other.
void RangePlan::reserve() const { reserveOutput(path_.to, std::min(planned_, sourceBytes_)); }

std::int32_t RangePlan::copy(std::uint32_t rba, std::uint32_t bytes) {
  if (!inSource(rba, bytes) || current_ == runs_.size() || runs_[current_].next != rba) {
    return copyRest(path_, rba, bytes, 0);
  }
  Run& run = runs_[current_];
  const std::uint64_t end = std::uint64_t{rba} + bytes;
  while (run.moved < end && advance(run)) {
  }
  const auto moved = static_cast<std::uint32_t>(std::min(run.moved, end) - rba);
  const std::int32_t status = copyRest(path_, rba, bytes, moved);
  run.next = end;
  if (run.moved < end) {
    moved_ += end - run.moved;
    run.moved = end;
  }
  if (run.next == run.end) ++current_;
  return status;
}

// Moves a piece of the run. False when none moved. Nothing is announced as long as all pages are
// in memory; behind the first that is not, the rest of the plan is.
bool RangePlan::advance(Run& run) {
  std::uint64_t put = 0;
  if (!announces_) put = moveAtOnce(path_, run.moved, run.end - run.moved, Pages::kPresent);
  if (put == 0) {
    if (announces_ || !streamIsPresent(path_.from, run.moved, run.end - run.moved)) announce(run);
    put = moveAtOnce(path_, run.moved, run.end - run.moved, Pages::kAny);
  }
  run.moved += put;
  moved_ += put;
  return put != 0;
}

void RangePlan::announce(const Run& run) {
  if (!announces_) {
    announces_ = true;
    announced_ = current_;
    announcedInRun_ = run.moved - run.begin;
    announcedBytes_ = moved_;
  }
  lookAhead();
}

void RangePlan::lookAhead() {
  while (announced_ < runs_.size() && announcedBytes_ < moved_ + kLookAhead) {
    const Run& run = runs_[announced_];
    const std::uint64_t piece = std::min(run.end - run.begin - announcedInRun_, kAnnounced);
    streamWillNeed(path_.from, run.begin + announcedInRun_, piece);
    announcedBytes_ += piece;
    announcedInRun_ += piece;
    if (run.begin + announcedInRun_ < run.end) continue;
    ++announced_;
    announcedInRun_ = 0;
  }
}

}  // namespace statecut
