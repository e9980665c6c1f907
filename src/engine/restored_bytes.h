// A file from which single bytes were lost, as it was.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/file.h"

namespace velmora::engine {

/// Puts back the CR that a copy in text mode lost.
class RestoredBytes : public platform::ByteSource {
 public:
  /// They stand at `places` of the result, ascending, of which none is behind its end.
  RestoredBytes(std::shared_ptr<const platform::ByteSource> file, std::vector<std::uint64_t> places)
      : file_(std::move(file)), places_(std::move(places)) {}

  std::uint64_t Size() const override { return file_->Size() + places_.size(); }

  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (offset >= Size()) return std::size_t{0};
    out = out.first(std::min<std::uint64_t>(out.size(), Size() - offset));
    const auto first = std::ranges::lower_bound(places_, offset);
    const auto last = std::lower_bound(first, places_.end(), offset + out.size());
    // What there is goes to the end, and from there piece by piece to its place.
    const auto lost = static_cast<std::size_t>(last - first);
    const std::span<std::byte> kept = out.subspan(lost);
    if (!kept.empty()) {
      const auto read = file_->ReadAt(offset - static_cast<std::uint64_t>(first - places_.begin()), kept);
      if (!read || *read != kept.size()) return read;
    }
    std::size_t at = 0;
    for (auto place = first; place != last; ++place) {
      const std::size_t next = static_cast<std::size_t>(*place - offset);
      const std::size_t put = static_cast<std::size_t>(place - first);
      std::memmove(out.data() + at, out.data() + at + lost - put, next - at);
      out[next] = std::byte{'\r'};
      at = next + 1;
    }
    return out.size();
  }

 private:
  std::shared_ptr<const platform::ByteSource> file_;
  std::vector<std::uint64_t> places_;
};

}  // namespace velmora::engine
