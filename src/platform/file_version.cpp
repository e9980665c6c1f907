#include "platform/file_version.h"

#include <algorithm>
#include <vector>

#include "platform/file.h"

namespace velmora::platform {
namespace {

constexpr std::size_t kBlockSize = sizeof(FileVersionBlock);
constexpr std::uint64_t kLargestProgram = 256u << 20;
constexpr std::size_t kPieceSize = 1 << 20;

std::uint32_t U32(const std::byte* at) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | std::to_integer<std::uint32_t>(at[i]);
  return value;
}

}  // namespace

std::optional<FileVersion> ReadFileVersion(const std::filesystem::path& file) {
  const auto source = OpenForReading(file);
  if (!source || (*source)->Size() > kLargestProgram) return std::nullopt;
  std::vector<std::byte> piece(kPieceSize);
  // Pieces overlap by less than one block, so that no block is missed and none is seen twice.
  for (std::uint64_t offset = 0;; offset += kPieceSize - kBlockSize + 1) {
    const auto delivered = (*source)->ReadAt(offset, piece);
    if (!delivered || *delivered < kBlockSize) return std::nullopt;
    for (const std::byte* at = piece.data(); at + kBlockSize <= piece.data() + *delivered; ++at) {
      // The structure's own version tells it from a constant in the code.
      if (U32(at) != FileVersionBlock{}.signature || U32(at + 4) != FileVersionBlock{}.structureVersion) continue;
      const std::uint32_t high = U32(at + 8), low = U32(at + 12);
      if (high == 0 && low == 0) continue;  // a block that nobody filled
      return FileVersion{static_cast<std::uint16_t>(high >> 16), static_cast<std::uint16_t>(high),
                         static_cast<std::uint16_t>(low >> 16), static_cast<std::uint16_t>(low)};
    }
  }
}

}  // namespace velmora::platform
