#include "engine/source_window.h"

#include <algorithm>
#include <limits>

namespace velmora::engine {
namespace {

/// What is given up at a time where the source cannot be read: a sector of today's disks.
constexpr std::size_t kBadPiece = 4096;

}  // namespace

std::optional<std::size_t> ReadFromSource(EngineState& state, std::uint64_t offset, std::span<std::byte> out) {
  if (offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return std::nullopt;
  auto delivered = state.source->ReadAt(offset, out);
  if (delivered) return *delivered;
  if (!state.readFailure) state.readFailure = delivered.error();
  return std::nullopt;
}

ByteView SourceWindow::ReadPiece(std::uint64_t offset, std::size_t length) {
  piece_.resize(std::max(piece_.size(), length));
  const std::span<std::byte> piece(piece_.data(), length);
  return ByteView(piece.first(ReadFromSource(state_, offset, piece).value_or(0)));
}

void SourceWindow::Load(std::uint64_t offset, std::size_t length) {
  buffer_.resize(std::max(kWindowBytes, length));
  std::size_t filled = 0;
  if (const auto delivered = ReadFromSource(state_, offset, buffer_)) {
    filled = *delivered;
  } else {
    const std::uint64_t size = state_.source->Size();
    const std::size_t wanted = offset >= size ? 0 : std::min<std::uint64_t>(buffer_.size(), size - offset);
    for (; filled < wanted; filled += std::min(kBadPiece, wanted - filled)) {
      const auto piece = std::span(buffer_).subspan(filled, std::min(kBadPiece, wanted - filled));
      const std::size_t read = ReadFromSource(state_, offset + filled, piece).value_or(0);
      std::fill(piece.begin() + static_cast<std::ptrdiff_t>(read), piece.end(), std::byte{0});
    }
  }
  base_ = offset;
  bytes_ = std::span(buffer_).first(filled);
  atEnd_ = filled < buffer_.size();
}

}  // namespace velmora::engine
