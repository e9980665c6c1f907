#include "engine/evidence/step_look.h"

#include <optional>

#include "engine/evidence/page_evidence.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

class Look {
 public:
  Look(const Stretch& stretch, const Generation& layout, std::uint64_t bytes)
      : stretch_(stretch), layout_(layout), allowance_(bytes), found_{Sights(layout), {}} {}

  /// What ends in the sector that ends at `end`.
  void LookAt(std::uint64_t end) {
    if (const auto page = stretch_.Ending(end, layout_.pageSize); !page.empty()) {
      if (const auto found = GradePage(page, end - layout_.pageSize, layout_)) found_.sights.TakePage(*found);
    }
    for (std::uint64_t slot = end - kSector + layout_.slotSize; slot <= end; slot += layout_.slotSize) {
      LookForBlock(slot);
    }
  }

  StepSights Take() { return std::move(found_); }

 private:
  void LookForBlock(std::uint64_t end) {
    Sights& sights = found_.sights;
    const auto tail = stretch_.Ending(end, layout_.blockTrailerSize);
    if (tail.empty()) return;
    if (Load<std::uint64_t>(tail, tail.size() - 8) != 0) ++sights.usedSlots;
    const std::optional<SeenTrailer> seen = SeeTrailer(tail, end, layout_);
    if (!seen) return;
    if (!seen->isSigned) {
      if (seen->trailer.dwCRC != 0) found_.maybeMoved.push_back({*seen, end, sights.usedSlots});
      return;
    }
    const auto stored = allowance_.Stored(stretch_, *seen, end);
    if (stored.empty()) return;
    if (seen->trailer.dwCRC == WeakCrc(stored)) {
      sights.TakeWhole(*seen, seen->start, Grade::kProven, stored, sights.usedSlots);
    } else {
      sights.TakeHurt(*seen, stored);
    }
  }

  const Stretch& stretch_;
  const Generation& layout_;
  SumAllowance allowance_;
  StepSights found_;
};

}  // namespace

std::span<const std::byte> SumAllowance::Stored(const Stretch& stretch, const SeenTrailer& seen, std::uint64_t end) {
  const std::uint64_t cb = seen.trailer.cb;
  const auto onDisk = stretch.Ending(end, end - seen.start);
  if (cb > left_ || onDisk.empty()) return {};
  left_ -= cb;
  return onDisk.first(cb);
}

StepSights LookAtStep(const Stretch& stretch, std::uint64_t begin, std::uint64_t end, const Generation& layout) {
  Look look(stretch, layout, stretch.bytes.size());
  for (std::uint64_t at = begin + kSector; at < end + kSector; at += kSector) look.LookAt(at);
  return look.Take();
}

}  // namespace velmora::engine
