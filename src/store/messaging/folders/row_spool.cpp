#include "store/messaging/folders/row_spool.h"

#include <algorithm>

#include "store/format/failures.h"
#include "store/format/little_endian.h"

namespace velmora::messaging {
namespace {

constexpr std::size_t kPieceSize = 64 * 1024;

/// Takes a number from the front. The bytes are this program's own, written in the same run.
std::uint32_t TakeNumber(std::span<const std::byte>& bytes) {
  const auto number = Load<std::uint32_t>(bytes, 0);
  bytes = bytes.subspan(sizeof number);
  return number;
}

}  // namespace

std::uint64_t RowSpool::Append(std::span<const ltp::PropertyView> cells) {
  const std::uint64_t place = file_.Size() + pending_.size();
  std::size_t size = 0;
  for (const ltp::PropertyView& cell : cells) size += 2 * sizeof(std::uint32_t) + cell.value.size();
  ::velmora::Append(pending_, static_cast<std::uint32_t>(size));
  for (const ltp::PropertyView& cell : cells) {
    ::velmora::Append(pending_, cell.tag);
    ::velmora::Append(pending_, static_cast<std::uint32_t>(cell.value.size()));
    ::velmora::Append(pending_, cell.value);
  }
  if (pending_.size() >= kPieceSize) {
    ValueOrRaise(file_.Append(pending_));
    pending_.clear();
  }
  return place;
}

std::span<const std::byte> RowSpool::BytesAt(std::uint64_t place, std::size_t size) {
  if (place >= file_.Size()) return std::span(pending_).subspan(place - file_.Size(), size);
  if (place < windowAt_ || place + size > windowAt_ + window_.size()) {
    window_.resize(std::max(size, kPieceSize));
    window_.resize(ValueOrRaise(file_.ReadAt(place, window_)));
    windowAt_ = place;
    if (window_.size() < size) Raise(FailureKind::kInputOutput, "temporary file", place, "it was cut");
  }
  return std::span(window_).subspan(place - windowAt_, size);
}

std::span<const ltp::PropertyView> RowSpool::Read(std::uint64_t place) {
  auto head = BytesAt(place, sizeof(std::uint32_t));
  const auto size = TakeNumber(head);
  auto row = BytesAt(place + sizeof size, size);
  cells_.clear();
  while (!row.empty()) {
    const auto tag = TakeNumber(row);
    const auto length = TakeNumber(row);
    cells_.push_back({tag, row.first(length)});
    row = row.subspan(length);
  }
  return cells_;
}

}  // namespace velmora::messaging
