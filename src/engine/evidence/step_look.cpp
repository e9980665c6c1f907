#include "engine/evidence/step_look.h"

#include <utility>

#include "engine/evidence/page_evidence.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

/// The layout's figures are constants here: the loop below asks for them at every unit of the file.
template <const Generation& kLayout>
class Look {
 public:
  explicit Look(const Stretch& stretch)
      : stretch_(stretch), allowance_(stretch.bytes.size()), found_{Sights(kLayout), {}} {}

  StepSights Through(std::uint64_t begin, std::uint64_t end) && {
    for (std::uint64_t at = begin; at < end; at += kSector) LookAt(at);
    return std::move(found_);
  }

 private:
  /// What ends in the sector at `begin`, of which the end of the source may cut off a part.
  void LookAt(std::uint64_t begin) {
    const auto sector = stretch_.UpTo(begin, kSector);
    if (sector.size() == kSector && EndsLikeTreePage(sector, kLayout)) LookForPage(begin + kSector);
    for (std::size_t slotEnd = kLayout.slotSize; slotEnd <= sector.size(); slotEnd += kLayout.slotSize) {
      const auto tail = sector.subspan(slotEnd - kLayout.blockTrailerSize, kLayout.blockTrailerSize);
      found_.sights.usedSlots += Load<std::uint64_t>(tail, tail.size() - 8) != 0 ? 1 : 0;
      if (const auto seen = SeeTrailer(tail, begin + slotEnd, kLayout)) LookAtBlock(*seen, begin + slotEnd);
    }
  }

  void LookForPage(std::uint64_t end) {
    const auto page = stretch_.Ending(end, kLayout.pageSize);
    if (page.empty()) return;
    if (const auto found = GradePage(page, end - kLayout.pageSize, kLayout)) found_.sights.TakePage(*found);
  }

  void LookAtBlock(const SeenTrailer& seen, std::uint64_t end) {
    Sights& sights = found_.sights;
    if (!seen.isSigned) {
      if (seen.trailer.dwCRC != 0) found_.maybeMoved.push_back({seen, end, sights.usedSlots});
      return;
    }
    const auto stored = allowance_.Stored(stretch_, seen, end);
    if (stored.empty()) return;
    if (seen.trailer.dwCRC == WeakCrc(stored)) {
      sights.TakeWhole(seen, seen.start, Grade::kProven, stored, sights.usedSlots);
    } else {
      sights.TakeHurt(seen, stored);
    }
  }

  const Stretch& stretch_;
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
  if (layout.formatId == FORMAT_ANSI) return Look<generations::kAnsi>(stretch).Through(begin, end);
  if (layout.formatId == FORMAT_UNICODE) return Look<generations::kUnicode>(stretch).Through(begin, end);
  return Look<generations::kUnicode4k>(stretch).Through(begin, end);
}

}  // namespace velmora::engine
