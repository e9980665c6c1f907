// A source front to back in pieces, which the threads of a run look at ahead of the one that takes them in their order.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <utility>

#include "engine/source.h"
#include "engine/source_window.h"
#include "platform/workers.h"
#include "store/format/byte_view.h"

namespace velmora::engine {

/// How a source is cut, in bytes.
struct PieceCut {
  std::uint64_t first = 0;       ///< where the first piece begins
  std::uint64_t size = 0;        ///< of a piece; the last one ends with the source
  std::uint64_t lead = 0;        ///< read again ahead of each piece, but nothing ahead of the first
  std::uint64_t passedOver = 0;  ///< pieces at the front that nobody wants
};

/// The bytes of the source from `begin` to before `end`, and those of the lead from `base` on.
struct Piece {
  std::uint64_t base = 0;
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  ByteView bytes;  ///< from `base` to `end`; what of it cannot be read is zeros
};

/// `Shown` is what a look at a piece gives; the look sees nothing but its piece, so the same is shown for any number of
/// threads. How far a bad stretch is passed over depends on what was read ahead of it, so pieces that have one are read
/// anew, in their order, by the thread that takes them; and once there was one, nothing is read ahead any more: a
/// failing disk takes seconds to say so.
template <class Shown>
class PiecesAhead {
 public:
  using Look = std::function<Shown(const Piece&)>;

  /// Source and workers must outlive it.
  PiecesAhead(const Source& source, const PieceCut& cut, Look look, platform::Workers& workers)
      : source_(source), cut_(cut), look_(std::move(look)), workers_(workers), next_(cut.passedOver) {
    const std::size_t ahead = workers.Jobs() == 1 ? 1 : std::min<std::size_t>(kPiecesOfJob * workers.Jobs(), kMost);
    while (pieces_.size() < ahead && HasNext()) Start(std::make_unique<AheadPiece>(source));
  }

  PiecesAhead(const PiecesAhead&) = delete;
  PiecesAhead& operator=(const PiecesAhead&) = delete;

  bool IsEmpty() const { return pieces_.empty(); }

  /// Returns when the front was looked at; works on others meanwhile.
  void Await() {
    AheadPiece& front = *pieces_.front();
    front.work->WorkUntilDone();
    Piece& piece = front.piece;
    if (front.isRead && !source_.IsBadWithin(piece.base, piece.end)) return;
    piece.bytes = front.window.ReadAnew(piece.base, piece.end - piece.base);
    front.shown = look_(piece);
    front.isRead = true;
  }

  /// The front, and what it shows; they live until Pop.
  const Piece& Front() const { return pieces_.front()->piece; }
  const Shown& FrontShown() const { return pieces_.front()->shown; }

  void Pop() {
    std::unique_ptr<AheadPiece> piece = std::move(pieces_.front());
    pieces_.pop_front();
    if (HasNext()) Start(std::move(piece));  // its memory is as good for another one
  }

 private:
  /// Under work or waiting to be, for each job, so that nobody has to wait for the next; and the most, as each takes
  /// its memory.
  static constexpr std::size_t kPiecesOfJob = 2;
  static constexpr std::size_t kMost = 8;

  struct AheadPiece {
    explicit AheadPiece(const Source& source) : window(source) {}

    SourceWindow window;
    Piece piece;
    bool isRead = false;  ///< and looked at
    Shown shown;
    std::unique_ptr<platform::Workers::Step> work;  ///< goes first
  };

  bool HasNext() const { return cut_.first + next_ * cut_.size < source_.Size(); }

  void Start(std::unique_ptr<AheadPiece> ahead) {
    const std::uint64_t begin = cut_.first + next_++ * cut_.size;
    const std::uint64_t base = begin - std::min(begin - cut_.first, cut_.lead);
    ahead->piece = {base, begin, std::min(begin + cut_.size, source_.Size()), {}};
    ahead->isRead = false;
    ahead->work = workers_.Start([this, ahead = ahead.get()] { LookAhead(*ahead); });
    pieces_.push_back(std::move(ahead));
  }

  void LookAhead(AheadPiece& ahead) {
    Piece& piece = ahead.piece;
    if (isFailing_ || source_.IsBadWithin(piece.base, piece.end)) return;
    const auto bytes = ahead.window.ReadIfSound(piece.base, piece.end - piece.base);
    if (!bytes) {
      isFailing_ = true;
      return;
    }
    piece.bytes = *bytes;
    ahead.shown = look_(piece);
    ahead.isRead = true;
  }

  const Source& source_;
  const PieceCut cut_;
  const Look look_;
  platform::Workers& workers_;
  std::uint64_t next_;
  std::atomic<bool> isFailing_ = false;
  std::deque<std::unique_ptr<AheadPiece>> pieces_;
};

}  // namespace velmora::engine
