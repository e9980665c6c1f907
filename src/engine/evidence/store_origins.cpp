#include "engine/evidence/store_origins.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <span>

#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

/// Beginnings that are followed, as each mark is held against them; of these, those that headers and maps tell.
constexpr std::size_t kMostOrigins = 256;
constexpr std::size_t kMostTold = 128;

/// Marks without an origin that are looked at together, and how many of the first of them are asked for theirs.
constexpr std::size_t kWindow = 256;
constexpr std::size_t kAsked = 4;
constexpr std::size_t kMostWindows = 1024;

/// Marks that have to agree: by their signatures alone the beginnings that fit two of them are often several.
constexpr std::size_t kAgreeing = 4;

/// What may be missing from the front of a file, as it is read from its beginning: zeros cost time as bytes do.
constexpr std::uint64_t kMissingAnyway = std::uint64_t{4} << 30;
constexpr std::uint64_t kMissingTimes = 4;

std::uint16_t FoldedSig(const Mark& mark) { return static_cast<std::uint16_t>(mark.sig ^ ComputeSig(0, mark.id)); }

class OriginSearch {
 public:
  OriginSearch(const std::vector<Mark>& marks, std::uint64_t fileSize)
      : marks_(marks), mostMissing_(kMissingAnyway + kMissingTimes * fileSize) {
    found_.of.resize(marks.size(), kNoOrigin);
  }

  MarkedOrigins Find() {
    Add(0);
    AddTold();
    Assign();
    AskSignatures();
    return std::move(found_);
  }

 private:
  bool IsPossible(Origin origin) const { return origin >= 0 || static_cast<std::uint64_t>(-origin) <= mostMissing_; }

  void Add(Origin origin) {
    if (found_.origins.size() == kMostTold || !IsPossible(origin)) return;
    if (std::ranges::find(found_.origins, origin) == found_.origins.end()) found_.origins.push_back(origin);
  }

  /// What headers and maps tell, the most told first.
  void AddTold() {
    std::map<Origin, std::uint64_t> votes;
    for (const Mark& mark : marks_) {
      if (mark.kind == MarkKind::kHeader) ++votes[static_cast<Origin>(mark.place)];
      if (mark.kind == MarkKind::kMap && mark.id <= static_cast<std::uint64_t>(std::numeric_limits<Origin>::max())) {
        ++votes[static_cast<Origin>(mark.place) - static_cast<Origin>(mark.id)];
      }
    }
    std::vector<std::pair<std::uint64_t, Origin>> byVotes;
    for (const auto& [origin, count] : votes) byVotes.emplace_back(count, -origin);
    std::ranges::sort(byVotes, std::greater());
    for (const auto& [count, negative] : byVotes) Add(-negative);
  }

  /// Neighbors are commonly of one store, so the origin of the last one is tried first.
  void Assign() {
    std::size_t last = 0;
    for (std::size_t i = 0; i < marks_.size(); ++i) {
      if (!MayBeOf(marks_[i], found_.origins[last])) {
        const auto fits = std::ranges::find_if(found_.origins, [&](Origin at) { return MayBeOf(marks_[i], at); });
        if (fits == found_.origins.end()) continue;
        last = static_cast<std::size_t>(fits - found_.origins.begin());
      }
      found_.of[i] = last;
    }
  }

  void AskSignatures() {
    std::vector<std::size_t> left;
    for (std::size_t i = 0; i < marks_.size(); ++i) {
      const bool isSigned = marks_[i].kind == MarkKind::kPage || marks_[i].kind == MarkKind::kBlock;
      if (isSigned && found_.of[i] == kNoOrigin) left.push_back(i);
    }
    std::size_t begin = 0;
    for (std::size_t windows = 0; windows < kMostWindows && begin + kAgreeing <= left.size(); ++windows) {
      const auto window = std::span(left).subspan(begin, std::min(kWindow, left.size() - begin));
      const std::optional<Origin> origin = Agreed(window);
      if (!origin || found_.origins.size() == kMostOrigins) {
        begin += kAsked;
        continue;
      }
      found_.origins.push_back(*origin);
      std::erase_if(left, [&](std::size_t i) {
        if (!MayBeOf(marks_[i], *origin)) return false;
        found_.of[i] = found_.origins.size() - 1;
        return true;
      });
      begin = 0;
    }
  }

  /// The beginning that fits most of them, if it fits enough.
  std::optional<Origin> Agreed(std::span<const std::size_t> window) const {
    std::size_t most = kAgreeing - 1;
    std::optional<Origin> best;
    for (std::size_t i = 0; i < std::min(kAsked, window.size()); ++i) {
      ForEachOriginOf(marks_[window[i]], [&](Origin origin) {
        const std::size_t fitting = Fitting(window, origin, most);
        if (fitting < most || fitting < kAgreeing || (fitting == most && best && *best >= origin)) return;
        most = fitting;
        best = origin;
      });
    }
    return best;
  }

  /// How many fit; less than that where they cannot be as many as `wanted`.
  std::size_t Fitting(std::span<const std::size_t> window, Origin origin, std::size_t wanted) const {
    std::size_t fitting = 0;
    for (std::size_t i = 0; i < window.size() && fitting + window.size() - i >= wanted; ++i) {
      fitting += MayBeOf(marks_[window[i]], origin) ? 1 : 0;
    }
    return fitting;
  }

  /// Each offset below 4 GiB that the signature allows: its halves, combined, give the signature without the id.
  template <class Visit>
  void ForEachOriginOf(const Mark& mark, const Visit& visit) const {
    const std::uint32_t folded = FoldedSig(mark);
    const std::uint32_t step = StepOf(mark);
    for (std::uint32_t high = folded % step; high <= UINT16_MAX; high += step) {
      const std::uint64_t offset = std::uint64_t{high} << 16 | (high ^ folded);
      const Origin origin = static_cast<Origin>(mark.place) - static_cast<Origin>(offset);
      if (IsPossible(origin)) visit(origin);
    }
  }

  const std::vector<Mark>& marks_;
  std::uint64_t mostMissing_;
  MarkedOrigins found_;
};

}  // namespace

MarkedOrigins FindOrigins(const std::vector<Mark>& marks, std::uint64_t fileSize) {
  return OriginSearch(marks, fileSize).Find();
}

}  // namespace velmora::engine
