// What bytes prove of a page of one of the two trees.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/evidence/evidence.h"
#include "store/format/little_endian.h"

namespace velmora::engine {

/// No tree of the format has more levels: at 20 entries a page that is more than any file can hold.
inline constexpr std::uint8_t kMostLevels = 8;

/// The head of a page of that type if its entries lie in it and are not smaller than those of the format.
std::optional<BtPageHead> SoundHead(PageView page, PageType type, const Generation& layout);

/// The key of an entry, of whichever level.
std::uint64_t KeyOf(std::span<const std::byte> entry, PageType type, const Generation& layout);

/// The entries of which one may have the key that breaks the order of the others, two of them at either end of a page;
/// none where the keys ascend. Nothing if more than one key is out of order.
std::optional<std::vector<std::size_t>> OddEntries(PageView page, PageType type, const BtPageHead& head,
                                                   const Generation& layout);

/// Puts the one bit right that is wrong in a page or its checksum. False where more of it is.
bool MendPage(std::span<std::byte> page, const Generation& layout);

/// Whether the end of a page, of which these are the last bytes, says that it belongs to a tree. In place, since it is
/// asked for every sector of a file.
inline bool EndsLikeTreePage(std::span<const std::byte> tail, const Generation& layout) {
  const auto word = Load<std::uint16_t>(tail, tail.size() - (layout.pageSize - layout.offPageType));
  return word == TypeWord(PageType::kBbt) || word == TypeWord(PageType::kNbt);
}

/// The page that was written at `offset` (which is where it is said to stand) and consists of these bytes. Proven when
/// checksum and signature fit, one wrong bit put right, moved with the checksum alone. With the signature alone it is
/// what is left of a page that was written over, or one with bits flipped: hurt, if its keys ascend but for one at
/// most. Nothing otherwise.
std::optional<FoundPage> GradePage(PageView page, std::uint64_t offset, const Generation& layout);

}  // namespace velmora::engine
