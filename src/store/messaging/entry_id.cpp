#include "store/messaging/entry_id.h"

#include <algorithm>
#include <string>

#include "store/format/little_endian.h"
#include "store/messaging/stored_text.h"

namespace velmora::messaging {
namespace {

constexpr std::size_t kNodeEntryIdSize = 24;
constexpr std::size_t kRecordKeyAt = 4;
constexpr std::size_t kNidAt = 20;

// Published constant: the provider of addresses that stand in no book.
constexpr std::uint8_t kOneOffProvider[] = {0x81, 0x2B, 0x1F, 0xA4, 0xBE, 0xA3, 0x10, 0x19,
                                            0x9D, 0x6E, 0x00, 0xDD, 0x01, 0x0F, 0x54, 0x02};
constexpr std::uint16_t kUnicodeWithoutRichInfo = 0x8001;

}  // namespace

Bytes NodeEntryId(const Uid& recordKey, Nid nid) {
  ByteWriter out;
  out.U32(0);
  out.Raw(recordKey);
  out.U32(Value(nid));
  return out.Take();
}

std::optional<Nid> NodeOfEntryId(std::span<const std::byte> entryId, const Uid& recordKey) {
  if (entryId.size() != kNodeEntryIdSize) return std::nullopt;
  if (!std::ranges::equal(entryId.subspan(kRecordKeyAt, recordKey.size()), recordKey)) return std::nullopt;
  return LoadNid(entryId, kNidAt);
}

Bytes OneOffEntryId(text::TextView name, text::TextView type, text::TextView address) {
  ByteWriter out;
  out.U32(0);
  out.Raw(std::as_bytes(std::span(kOneOffProvider)));
  out.U16(0);
  out.U16(kUnicodeWithoutRichInfo);
  for (const text::TextView part : {name, type, address}) {
    out.Units(part);
    out.U16(0);
  }
  return out.Take();
}

Bytes AddressSearchKey(text::TextView type, text::TextView address) {
  const std::string key = text::ToUtf8(AsciiUpper(type)) + ":" + text::ToUtf8(AsciiUpper(address));
  const auto bytes = std::as_bytes(std::span(key.c_str(), key.size() + 1));
  return {bytes.begin(), bytes.end()};
}

}  // namespace velmora::messaging
