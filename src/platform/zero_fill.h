// Room on a disk that nobody promises.
#pragma once

#include <algorithm>
#include <array>

#include "platform/file.h"

namespace velmora::platform {

/// Lengthens a file by bytes that are written: where a file system cannot set room aside, bytes that are there have
/// theirs.
inline Result<void> FillWithZerosTo(ByteStore& file, std::uint64_t size) {
  static constexpr std::array<std::byte, 0x10000> kZeros{};
  while (file.Size() < size) {
    const std::size_t length = std::min<std::uint64_t>(kZeros.size(), size - file.Size());
    if (auto written = file.WriteAt(file.Size(), std::span(kZeros).first(length)); !written) return written;
  }
  return {};
}

}  // namespace velmora::platform
