// The streams of a map of names, as they stand in its properties: sets, entries, texts.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "store/format/name_map.h"
#include "store/messaging/values/identity.h"
#include "text/text.h"

namespace velmora::messaging {

/// The sets of the published kind {0006wxyz-0000-0000-C000-000000000046}, and those of the same tail.
constexpr Uid SetOf(std::uint32_t data1) {
  Uid set{};
  for (std::size_t i = 0; i < sizeof data1; ++i) set[i] = static_cast<std::byte>(data1 >> (8 * i));
  set[8] = std::byte{0xC0};
  set[15] = std::byte{0x46};
  return set;
}

// The map names three sets by fixed numbers, no set at all among them; the stream of sets counts on from
// kFirstSetNumber.
inline constexpr Uid kNoSet{};
inline constexpr Uid kMapiSet = SetOf(0x00020328);
inline constexpr Uid kPublicStringsSet = SetOf(0x00020329);
inline constexpr std::uint16_t kPublicStringsNumber = 2;
inline constexpr std::uint16_t kFirstSetNumber = 3;

/// A name in the stream of entries or in a bucket.
struct NameEntry {
  std::uint32_t number = 0;  ///< of a name that is a text: its place among the texts; in a bucket its hash
  std::uint16_t setAndKind = 0;
  std::uint16_t index = 0;  ///< of its identifier, above name_map::kFirstNamedId

  bool IsText() const { return (setAndKind & 1) != 0; }
  std::uint16_t SetNumber() const { return static_cast<std::uint16_t>(setAndKind >> 1); }
  friend auto operator<=>(const NameEntry&, const NameEntry&) = default;
};

/// All whole entries of a stream or a bucket.
std::vector<NameEntry> ReadNameEntries(std::span<const std::byte> stream);

/// By which a bucket knows a name that is a text.
std::uint32_t HashOfName(text::TextView name);

/// The set of that number; nothing where it has none. `sets`: the stream of sets.
std::optional<Uid> SetOfNumber(std::span<const std::byte> sets, std::uint32_t number);

/// The text at that place among the texts; empty where none is.
text::Text NameTextAt(std::span<const std::byte> texts, std::size_t at);

/// All texts from the first to one that cannot be read.
std::vector<text::Text> AllNameTexts(std::span<const std::byte> texts);

}  // namespace velmora::messaging
