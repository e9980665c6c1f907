#include "store/messaging/folders/row_spool.h"

#include <algorithm>
#include <cstring>

namespace velmora::messaging {
namespace {

constexpr std::size_t kPieceSize = 64 * 1024;

template <class Number>
void AppendNumber(Bytes& out, Number number) {
  const auto bytes = std::as_bytes(std::span(&number, 1));
  out.insert(out.end(), bytes.begin(), bytes.end());
}

/// Takes a number from the front. The bytes are this program's own, written in the same run.
template <class Number>
Number TakeNumber(std::span<const std::byte>& bytes) {
  Number number;
  std::memcpy(&number, bytes.data(), sizeof number);
  bytes = bytes.subspan(sizeof number);
  return number;
}

}  // namespace

platform::Result<std::uint64_t> RowSpool::Append(std::span<const ltp::PropertyView> cells) {
  const std::uint64_t place = file_.Size() + pending_.size();
  std::size_t size = 0;
  for (const ltp::PropertyView& cell : cells) size += 2 * sizeof(std::uint32_t) + cell.value.size();
  AppendNumber(pending_, static_cast<std::uint32_t>(size));
  for (const ltp::PropertyView& cell : cells) {
    AppendNumber(pending_, cell.tag);
    AppendNumber(pending_, static_cast<std::uint32_t>(cell.value.size()));
    pending_.insert(pending_.end(), cell.value.begin(), cell.value.end());
  }
  if (pending_.size() >= kPieceSize) {
    if (auto appended = file_.Append(pending_); !appended) return tl::unexpected(appended.error());
    pending_.clear();
  }
  return place;
}

platform::Result<std::span<const std::byte>> RowSpool::BytesAt(std::uint64_t place, std::size_t size) {
  if (place >= file_.Size()) return std::span(pending_).subspan(place - file_.Size(), size);
  if (place < windowAt_ || place + size > windowAt_ + window_.size()) {
    window_.resize(std::max(size, kPieceSize));
    const auto read = file_.ReadAt(place, window_);
    if (!read) return tl::unexpected(read.error());
    window_.resize(*read);
    windowAt_ = place;
    if (window_.size() < size) {
      return tl::unexpected(
          platform::Failure{platform::FailureKind::kInputOutput, "temporary file", place, "it was cut"});
    }
  }
  return std::span(window_).subspan(place - windowAt_, size);
}

platform::Result<std::span<const ltp::PropertyView>> RowSpool::Read(std::uint64_t place) {
  auto head = BytesAt(place, sizeof(std::uint32_t));
  if (!head) return tl::unexpected(head.error());
  const auto size = TakeNumber<std::uint32_t>(*head);
  auto row = BytesAt(place + sizeof size, size);
  if (!row) return tl::unexpected(row.error());
  cells_.clear();
  while (!row->empty()) {
    const auto tag = TakeNumber<std::uint32_t>(*row);
    const auto length = TakeNumber<std::uint32_t>(*row);
    cells_.push_back({tag, row->first(length)});
    *row = row->subspan(length);
  }
  return std::span<const ltp::PropertyView>(cells_);
}

}  // namespace velmora::messaging
