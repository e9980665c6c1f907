#include "engine/source_window.h"

#include <algorithm>
#include <limits>

namespace velmora::engine {
namespace {

/// What is given up at a time where the source cannot be read: a sector of today's disks.
constexpr std::size_t kBadPiece = 4096;

/// No file has an offset with the top bit set.
bool IsOffset(std::uint64_t offset) {
  return offset <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
}

/// Bytes from the offset to the end of the source, `most` at most.
std::size_t Available(const platform::ByteSource& source, std::uint64_t offset, std::size_t most) {
  return offset >= source.Size() ? 0 : std::min<std::uint64_t>(most, source.Size() - offset);
}

}  // namespace

std::optional<std::size_t> ReadFromSource(EngineState& state, std::uint64_t offset, std::span<std::byte> out) {
  if (!IsOffset(offset)) return std::nullopt;
  auto delivered = state.source->ReadAt(offset, out);
  if (delivered) return *delivered;
  if (!state.readFailure) state.readFailure = delivered.error();
  state.badRanges.Add(offset, Available(*state.source, offset, out.size()));
  return std::nullopt;
}

ByteView SourceWindow::ReadPiece(std::uint64_t offset, std::size_t length) {
  piece_.resize(std::max(piece_.size(), length));
  const std::span<std::byte> piece(piece_.data(), length);
  return ByteView(piece.first(Fill(offset, piece)));
}

void SourceWindow::Load(std::uint64_t offset, std::size_t length) {
  buffer_.resize(std::max(kWindowBytes, length));
  const std::size_t filled = Fill(offset, buffer_);
  base_ = offset;
  bytes_ = std::span(buffer_).first(filled);
  atEnd_ = filled < buffer_.size();
}

std::size_t SourceWindow::Fill(std::uint64_t offset, std::span<std::byte> out) {
  if (!IsOffset(offset)) return 0;
  if (const auto delivered = state_.source->ReadAt(offset, out)) return *delivered;
  const std::size_t wanted = Available(*state_.source, offset, out.size());
  for (std::size_t at = 0; at < wanted; at += kBadPiece) {
    const auto piece = out.subspan(at, std::min(kBadPiece, wanted - at));
    const std::size_t read = ReadFromSource(state_, offset + at, piece).value_or(0);
    std::fill(piece.begin() + static_cast<std::ptrdiff_t>(read), piece.end(), std::byte{0});
  }
  return wanted;
}

}  // namespace velmora::engine
