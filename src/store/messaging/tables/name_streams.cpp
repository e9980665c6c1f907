#include "store/messaging/tables/name_streams.h"

#include <algorithm>

#include "store/format/checksum.h"
#include "store/format/little_endian.h"
#include "store/ltp/multi_value.h"

namespace velmora::messaging {
namespace {

constexpr std::size_t kTextHead = 4;   ///< its length in bytes
constexpr std::size_t kTextAlign = 4;  ///< of the places of texts

}  // namespace

std::vector<NameEntry> ReadNameEntries(std::span<const std::byte> stream) {
  std::vector<NameEntry> entries;
  for (std::size_t at = 0; at + name_map::kEntrySize <= stream.size(); at += name_map::kEntrySize) {
    entries.push_back({Load<std::uint32_t>(stream, at), Load<std::uint16_t>(stream, at + 4),
                       Load<std::uint16_t>(stream, at + name_map::kOffEntryId)});
  }
  return entries;
}

std::uint32_t HashOfName(text::TextView name) { return WeakCrc(std::as_bytes(std::span(name))); }

std::optional<Uid> SetOfNumber(std::span<const std::byte> sets, std::uint32_t number) {
  if (number == 0) return kNoSet;
  if (number == 1) return kMapiSet;
  if (number == kPublicStringsNumber) return kPublicStringsSet;
  const std::size_t at = (number - kFirstSetNumber) * name_map::kSetSize;
  if (at + name_map::kSetSize > sets.size()) return std::nullopt;
  Uid set;
  std::ranges::copy(sets.subspan(at, name_map::kSetSize), set.begin());
  return set;
}

text::Text NameTextAt(std::span<const std::byte> texts, std::size_t at) {
  const std::size_t size = Load<std::uint32_t>(texts, at);
  if (at + kTextHead > texts.size() || size > texts.size() - at - kTextHead) return {};
  return ltp::DecodeText(texts.subspan(at + kTextHead, size));
}

std::vector<text::Text> AllNameTexts(std::span<const std::byte> texts) {
  std::vector<text::Text> all;
  for (std::size_t at = 0; at < texts.size();) {
    text::Text text = NameTextAt(texts, at);
    if (text.empty()) break;
    at += kTextHead + text.size() * sizeof(char16_t);
    at = (at + kTextAlign - 1) / kTextAlign * kTextAlign;
    all.push_back(std::move(text));
  }
  return all;
}

}  // namespace velmora::messaging
