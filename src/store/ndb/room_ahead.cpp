#include "store/ndb/room_ahead.h"

#include <algorithm>

#include "store/ndb/allocation_map.h"

namespace velmora::ndb {
namespace {

/// Bytes that are taken at a time: as much as is gathered before it is written. More take so long that other writes
/// have to wait.
constexpr std::uint64_t kAhead = 4 * kAreaSize;

/// Where so many are left the next are taken: early enough that nobody has to wait for them, and no more than a share
/// of the file, since others may need what a disk has left.
std::uint64_t LowMark(std::uint64_t size) { return std::clamp(size / 16, kAhead / 2, 2 * kAhead); }

}  // namespace

platform::Result<void> RoomAhead::Require(std::uint64_t size) {
  if (size > have_) Await();
  if (size > have_) {
    if (auto reserved = file_.Reserve(size); !reserved) return reserved;
    have_ = size;
  }
  const auto isLow = [&] { return have_ - size < LowMark(size); };
  if (isLow() && step_ != nullptr && step_->Now() == platform::Workers::Step::State::kDone) Await();
  if (workers_.Jobs() > 1 && isLow() && !isNearlyFull_ && step_ == nullptr) {
    asked_ = have_ + kAhead;
    step_ = workers_.Start([this] { given_ = file_.Reserve(asked_); });
  }
  return {};
}

platform::Result<void> RoomAhead::Clear() {
  Await();
  have_ = 0;
  return file_.Resize(0);
}

platform::Result<void> RoomAhead::Trim(std::uint64_t size) {
  Await();
  if (file_.Size() <= size) return {};
  have_ = size;
  return file_.Resize(size);
}

void RoomAhead::Await() {
  if (step_ == nullptr) return;
  step_->Wait();
  step_.reset();
  isNearlyFull_ = !given_;
  if (given_) have_ = asked_;
}

}  // namespace velmora::ndb
