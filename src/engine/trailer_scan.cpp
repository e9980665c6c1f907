#include "engine/trailer_scan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <type_traits>

#include "engine/zero_runs.h"
#include "store/format/little_endian.h"
#include "store/format/signature.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kSlot = 16;

/// Bytes read at a time where a run of zeros reaches back out of the window.
constexpr std::size_t kBackStep = 16384;

/// The first place at which a block of this size may begin whose last byte that is not 0 lies at `last`.
/// Wraps below the start of the file, as the signature does.
std::uint64_t FirstCandidate(std::uint64_t last, std::uint32_t size) { return (last - size + 15) & ~std::uint64_t{15}; }

}  // namespace

void TrailerScan::ScanSlots(std::uint64_t offset, std::uint32_t length) {
  const std::size_t begin = offset - window_.Base();
  const std::size_t held = window_.Bytes().size();
  if (begin >= held) return;
  const std::size_t end = begin + std::min<std::size_t>(length, held - begin);
  if (layout_.idWidth == 4) {
    ScanWindow<4>(begin, end);
  } else {
    ScanWindow<8>(begin, end);
  }
}

// Every 16 bytes of the file come through here, so the common case is settled in place: in a wide store
// with encoded blocks nearly every slot holds a plausible size, hardly any a place that fits, and the byte
// before the slot is rarely 0.
template <std::size_t kIdWidth>
void TrailerScan::ScanWindow(std::size_t begin, std::size_t end) {
  using Id = std::conditional_t<kIdWidth == 4, std::uint32_t, std::uint64_t>;
  const bool smart = collector_.IsSmart();
  for (std::size_t at = begin; at < end; at += kSlot) {
    std::array<std::byte, kSlot> partial{};
    auto bytes = window_.Bytes().subspan(at, std::min(kSlot, end - at));
    if (bytes.size() < kSlot) {
      std::ranges::copy(bytes, partial.begin());
      bytes = partial;
    }
    const auto slot = bytes.first<kSlot>();
    const auto size = Load<std::uint16_t>(slot, kIdWidth);
    const std::uint64_t id = Load<Id>(slot, 8);
    if (size == 0 || size >= kMostBlockData || static_cast<std::uint32_t>(id) == 0) continue;
    const auto signature = Load<std::uint16_t>(slot, kIdWidth + 2);

    const std::uint64_t offset = window_.Base() + at;
    const std::uint64_t before = at >= 8 ? Load<std::uint64_t>(window_.Bytes(), at - 8) : 0;
    if (before == 0) {
      if (const auto last = LastNonZeroBefore(offset)) RecoverFromTrailer(offset, *last, {id, size, signature});
      continue;
    }
    const auto last = offset - 1 - static_cast<std::uint64_t>(std::countl_zero(before)) / 8;
    const std::uint64_t first = FirstCandidate(last, size);
    const bool fits = signature == ComputeSig(first, id) || signature == ComputeSig(first + kSlot, id);
    if (fits || smart) RecoverFromTrailer(offset, last, {id, size, signature});
  }
}

void TrailerScan::RecoverFromTrailer(std::uint64_t slot, std::uint64_t last, const Trailer& trailer) {
  const std::uint64_t first = FirstCandidate(last, trailer.size);
  const std::uint64_t moves = 1 + slot - last;
  for (std::uint64_t k = 0; k <= moves / kSlot + 1; ++k) {
    const std::uint64_t candidate = first + k * kSlot;
    if (trailer.signature != ComputeSig(candidate, trailer.id)) continue;
    if (candidate < fileSize_) {
      collector_.Keep({trailer.id, trailer.size, candidate});
    } else {
      collector_.KeepAgain();
    }
  }
  if (collector_.IsSmart()) collector_.Propose({trailer.id, trailer.size, first});
}

std::optional<std::uint64_t> TrailerScan::LastNonZeroBefore(std::uint64_t end) {
  std::uint64_t rest = window_.Base();
  if (const auto found = LastNonZero(window_.Bytes(), end - rest)) return rest + *found;
  while (rest > 0) {
    const std::size_t step = std::min<std::uint64_t>(kBackStep, rest);
    rest -= step;
    const auto piece = window_.Peek(rest, step).Bytes();
    if (const auto found = LastNonZero(piece, piece.size())) return rest + *found;
  }
  return std::nullopt;
}

}  // namespace velmora::engine
