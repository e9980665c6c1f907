#include "engine/source_window.h"

#include <algorithm>

namespace velmora::engine {

ByteView SourceWindow::ReadPiece(std::uint64_t offset, std::size_t length) {
  piece_.resize(std::max(piece_.size(), length));
  const std::span<std::byte> piece(piece_.data(), length);
  return ByteView(piece.first(source_.ReadAround(offset, piece)));
}

void SourceWindow::Load(std::uint64_t offset, std::size_t length) {
  buffer_.resize(std::max(buffer_.size(), length));
  const std::span<std::byte> window = std::span(buffer_).first(length);
  const std::size_t filled = source_.ReadAround(offset, window);
  base_ = offset;
  bytes_ = window.first(filled);
  atEnd_ = filled < window.size();
}

}  // namespace velmora::engine
