// Every block and page ends at a known step of the store, and its trailer tells where it begins. So each end is sought
// at its place less as many bytes as are lost so far, and up to so many less as may be lost since the last thing that
// was found: one for each LF in between. What is signed there and does not have its checksum lost some of them itself.
#include "engine/evidence/text_copy.h"

#include <algorithm>
#include <optional>

#include "engine/evidence/block_evidence.h"
#include "engine/evidence/mend_text.h"
#include "engine/evidence/stretch.h"
#include "engine/source_window.h"
#include "store/format/checksum.h"
#include "store/format/page.h"

namespace velmora::engine {
namespace {

/// That are sought however few LF there are: a copy may lose other bytes too. And however many there are: no block
/// holds more.
constexpr std::uint64_t kLostAtOnce = 256;
constexpr std::uint64_t kMostLostAtOnce = 32768;

/// Places at which something may end that are tried beyond kLostAtOnce for each end: for each byte of the source, and
/// besides.
constexpr std::uint64_t kTimesTried = 2;
constexpr std::uint64_t kTriedAtLeast = std::uint64_t{1} << 26;

/// Bytes without any finding, by which this is given up: no block is as long, and what is lost ahead of the next one
/// may be more than is sought.
constexpr std::uint64_t kMostInVain = 64ull << 20;

/// How much slower it is to tell which bytes are lost than to sum them.
constexpr std::uint64_t kTimesSlower = 8;

/// A block or page by its trailer, at whose end a signature fits its place.
struct SignedThing {
  std::uint64_t start = 0;  ///< where it was written
  std::size_t covered = 0;  ///< bytes from there that the checksum is of
  std::uint32_t sum = 0;
};

class LostByteSeeker {
 public:
  LostByteSeeker(const Source& source, std::uint64_t from, const Generation& layout)
      : source_(source), window_(source), layout_(layout), found_(from / layout.slotSize * layout.slotSize) {}

  LostBytes Run(RunContext& run) {
    const std::uint64_t size = source_.Size();
    for (std::uint64_t end = found_ + layout_.slotSize; end - lost_ <= size + MostLost() && end < found_ + kMostInVain;
         end += layout_.slotSize) {
      const std::uint64_t nearest = end - lost_;
      if (nearest > stretch_.base + stretch_.bytes.size()) {
        run.control.PausePoint();
        stretch_.base = nearest - std::min(nearest, kReachOfPass);
        stretch_.bytes = window_.Read(stretch_.base, nearest - stretch_.base + kStep).Bytes();
      }
      ends_ += CountEnds(nearest, layout_.slotSize);
      Seek(end, nearest);
    }
    return std::move(result_);
  }

 private:
  std::uint64_t CountEnds(std::uint64_t end, std::uint64_t length) const {
    return static_cast<std::uint64_t>(std::ranges::count(stretch_.Ending(end, length), std::byte{'\n'}));
  }

  /// What was written to end at `end`: at `nearest` or ahead of it.
  void Seek(std::uint64_t end, std::uint64_t nearest) {
    const std::uint64_t size = layout_.blockTrailerSize;
    const std::uint64_t endOfSource = std::min(nearest, source_.Size());
    if (endOfSource < size || nearest - endOfSource > MostLost()) return;
    const std::uint64_t least = nearest - endOfSource;
    const std::uint64_t most = std::min(MostLost(), nearest - size);
    tried_ += most - std::min(most, kLostAtOnce);
    const auto tails = stretch_.Ending(endOfSource, most - least + size);
    for (std::uint64_t lost = least; !tails.empty() && lost <= most; ++lost) {
      const auto tail = tails.subspan(most - lost, size);
      if (const auto block = SignedBlock(tail, end); block && Take(*block, end, lost)) return;
    }
    for (std::uint64_t lost = least; end % kSector == 0 && lost <= most; ++lost) {
      const auto page = SignedPage(stretch_.Ending(nearest - lost, layout_.pageSize), end);
      if (page && Take(*page, end, lost)) return;
    }
  }

  std::uint64_t MostLost() const {
    return tried_ > mostTried_ ? kLostAtOnce : std::clamp(ends_, kLostAtOnce, kMostLostAtOnce);
  }

  std::optional<SignedThing> SignedBlock(std::span<const std::byte> tail, std::uint64_t end) const {
    const std::optional<SeenTrailer> seen = SeeTrailer(tail, end, layout_);
    if (!seen || !seen->isSigned || seen->trailer.dwCRC == 0) return std::nullopt;
    return SignedThing{seen->start, seen->trailer.cb, seen->trailer.dwCRC};
  }

  /// Only of the trees; its first bytes may be those of something else, if it lost some.
  std::optional<SignedThing> SignedPage(PageView page, std::uint64_t end) const {
    if (page.empty() || end < page.size()) return std::nullopt;
    const auto word = Load<std::uint16_t>(page, layout_.offPageType);
    if (word != TypeWord(PageType::kBbt) && word != TypeWord(PageType::kNbt)) return std::nullopt;
    const std::uint64_t start = end - page.size();
    if (Load<std::uint16_t>(page, layout_.offPageSig) != ComputeSig(start, layout_.LoadWord(page, layout_.offPageId)))
      return std::nullopt;
    return SignedThing{start, layout_.offPageType, Load<std::uint32_t>(page, layout_.offPageCrc)};
  }

  /// Whether its checksum fits, if so many bytes were lost since the last thing that was found, ahead of it or in it.
  bool Take(const SignedThing& thing, std::uint64_t end, std::uint64_t lost) {
    if (thing.start < found_) return false;
    if (lost <= thing.start - found_ && TakeWith(0, thing, end, lost)) return true;
    const std::uint64_t mostAhead = std::min({lost, thing.start - found_, EndsAhead(thing)});
    for (std::uint64_t inside = std::max(lost - mostAhead, std::uint64_t{1}); inside <= lost; ++inside) {
      if (TakeWith(inside, thing, end, lost)) return true;
    }
    return false;
  }

  bool TakeWith(std::uint64_t inside, const SignedThing& thing, std::uint64_t end, std::uint64_t lost) {
    const auto stored = stretch_.Ending(end - lost_ - lost, end - thing.start - inside);
    if (stored.empty() || inside > thing.covered) return false;
    const auto places = PlacesIn(stored.first(thing.covered - inside), inside, thing.sum);
    if (!places) return false;
    for (std::uint64_t i = lost - inside; i > 0; --i) result_.places.push_back(thing.start - i);
    for (const std::size_t place : *places) result_.places.push_back(thing.start + place);
    ++result_.things;
    lost_ += lost;
    found_ = end;
    ends_ = 0;
    return true;
  }

  /// LF between it and the last thing that was found.
  std::uint64_t EndsAhead(const SignedThing& thing) {
    const std::uint64_t ahead = thing.start - found_;
    if (summed_ > mostSummed_) return 0;
    summed_ += ahead;
    return CountEnds(thing.start - lost_, ahead);
  }

  std::optional<std::vector<std::size_t>> PlacesIn(std::span<const std::byte> stored, std::uint64_t lost,
                                                   std::uint32_t sum) {
    if (summed_ > mostSummed_) return std::nullopt;
    if (lost != 0) {
      summed_ += kTimesSlower * stored.size();
      return MendText(stored, lost, sum);
    }
    summed_ += stored.size();
    if (WeakCrc(stored) != sum) return std::nullopt;
    return std::vector<std::size_t>();
  }

  const Source& source_;
  SourceWindow window_;
  Stretch stretch_;
  const Generation& layout_;
  const std::uint64_t mostSummed_ = source_.Size() * kTimesSummed;
  std::uint64_t summed_ = 0;
  const std::uint64_t mostTried_ = source_.Size() * kTimesTried + kTriedAtLeast;
  std::uint64_t tried_ = 0;
  std::uint64_t found_;     ///< the end of the last thing that was found, where it was written
  std::uint64_t lost_ = 0;  ///< ahead of that
  std::uint64_t ends_ = 0;  ///< LF behind it
  LostBytes result_;
};

}  // namespace

LostBytes FindLostBytes(const Source& source, std::uint64_t from, const Generation& layout, RunContext& run) {
  return LostByteSeeker(source, from, layout).Run(run);
}

}  // namespace velmora::engine
