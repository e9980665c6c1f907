#include "engine/source_window.h"

#include <algorithm>

namespace velmora::engine {

ByteView SourceWindow::ReadPiece(std::uint64_t offset, std::size_t length) {
  piece_.resize(std::max(piece_.size(), length));
  const std::span<std::byte> piece(piece_.data(), length);
  return ByteView(piece.first(source_.ReadAround(offset, piece)));
}

std::span<std::byte> SourceWindow::Room(std::size_t length) {
  buffer_.resize(std::max(buffer_.size(), length));
  return std::span(buffer_).first(length);
}

void SourceWindow::Hold(std::uint64_t offset, std::span<const std::byte> room, std::size_t filled) {
  base_ = offset;
  bytes_ = room.first(filled);
  atEnd_ = filled < room.size();
}

void SourceWindow::Load(std::uint64_t offset, std::size_t length) {
  const auto room = Room(length);
  Hold(offset, room, source_.ReadAround(offset, room));
}

std::optional<ByteView> SourceWindow::ReadIfSound(std::uint64_t offset, std::size_t length) {
  const auto room = Room(length);
  const auto filled = source_.ReadIfSound(offset, room);
  Hold(offset, room, filled.value_or(0));
  return filled ? std::optional(ByteView(bytes_)) : std::nullopt;
}

}  // namespace velmora::engine
