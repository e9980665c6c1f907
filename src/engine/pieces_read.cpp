#include "engine/pieces_read.h"

#include <algorithm>
#include <iterator>

namespace velmora::engine {
namespace {

/// No two blocks begin in one unit of this size, whatever the generation.
constexpr std::size_t kUnit = 64;

}  // namespace

void PiecesRead::Read(std::uint64_t begin, std::uint64_t end) {
  const auto length = static_cast<std::size_t>(end - begin);
  Piece piece{std::make_unique_for_overwrite<std::byte[]>(length), 0, {}};
  piece.size = source_.ReadAround(begin, std::span(piece.bytes.get(), length));
  piece.claimed.resize(length / kUnit + 1);
  pieces_.emplace(begin, std::move(piece));
}

std::uint64_t PiecesRead::NextBegin(std::uint64_t offset) const {
  const auto next = pieces_.lower_bound(offset);
  return next == pieces_.end() ? UINT64_MAX : next->first;
}

bool PiecesRead::Holds(std::uint64_t offset, std::size_t size) const {
  const auto behind = pieces_.upper_bound(offset);
  if (behind == pieces_.begin()) return false;
  const auto& [begin, piece] = *std::prev(behind);
  return offset - begin <= piece.size && size <= piece.size - (offset - begin);
}

std::span<std::byte> PiecesRead::Claim(std::uint64_t offset, std::size_t size) {
  if (size == 0 || !Holds(offset, size)) return {};
  auto& [begin, piece] = *std::prev(pieces_.upper_bound(offset));
  const auto at = static_cast<std::size_t>(offset - begin);
  const auto units = std::span(piece.claimed).subspan(at / kUnit, (at + size - 1) / kUnit - at / kUnit + 1);
  if (std::ranges::find(units, 1) != units.end()) return {};
  std::ranges::fill(units, 1);
  return std::span(piece.bytes.get() + at, size);
}

}  // namespace velmora::engine
